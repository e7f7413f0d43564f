// The two ways a subcommand fails: the command line itself is wrong (exit 2), or the camera or
// the system refused what was asked (exit 1). main() turns either into one line on stderr.
#ifndef ORVAN_TOOLS_ORVAN_TOOLERROR_H
#define ORVAN_TOOLS_ORVAN_TOOLERROR_H

#include <stdexcept>
#include <string>

namespace Orvan {
namespace Cli {

constexpr int kExitRuntimeError = 1;
constexpr int kExitUsageError = 2;
// 128 + SIGINT, as shells report a program stopped by Ctrl-C, so scripts can tell an interrupted
// stream from a completed one.
constexpr int kExitInterrupted = 130;

class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class ToolError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace Cli
} // namespace Orvan

#endif
