// Ctrl-C while streaming: the handler only raises a flag, and the acquisition loop, which wakes
// at least every few hundred milliseconds, sees it and stops the stream in order.
#ifndef ORVAN_TOOLS_ORVAN_INTERRUPTFLAG_H
#define ORVAN_TOOLS_ORVAN_INTERRUPTFLAG_H

#include <csignal>

namespace Orvan {
namespace Cli {

class InterruptFlag {
public:
    // Catches SIGINT and SIGTERM for the flag's lifetime; the previous handlers come back after.
    InterruptFlag();
    ~InterruptFlag();
    InterruptFlag(const InterruptFlag&) = delete;
    InterruptFlag& operator=(const InterruptFlag&) = delete;

    bool Raised() const;

private:
    struct sigaction m_previousInt {};
    struct sigaction m_previousTerm {};
};

} // namespace Cli
} // namespace Orvan

#endif
