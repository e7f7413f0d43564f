// The subcommands of the orvan tool. Each adds itself to the application with its options;
// its callback runs the command and leaves the process exit code in exitCode. Failures leave as
// UsageError, ToolError or GenICam exceptions, which main() reports.
#ifndef ORVAN_TOOLS_ORVAN_COMMANDS_H
#define ORVAN_TOOLS_ORVAN_COMMANDS_H

#include <CLI/CLI.hpp>

namespace Orvan {
namespace Cli {

void AddListCommand(CLI::App& app, int& exitCode);
void AddInfoCommand(CLI::App& app, int& exitCode);
void AddGetCommand(CLI::App& app, int& exitCode);
void AddSetCommand(CLI::App& app, int& exitCode);
void AddExecCommand(CLI::App& app, int& exitCode);
void AddStreamCommand(CLI::App& app, int& exitCode);
void AddSaveFeaturesCommand(CLI::App& app, int& exitCode);
void AddLoadFeaturesCommand(CLI::App& app, int& exitCode);
void AddXmlCommand(CLI::App& app, int& exitCode);
void AddLogCommand(CLI::App& app, int& exitCode);
void AddViewCommand(CLI::App& app, int& exitCode);

} // namespace Cli
} // namespace Orvan

#endif
