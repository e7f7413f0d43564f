// orvan log PORT: the log viewer, as orvan-logview.
#include "Commands.h"
#include "logview/LogView.h"

#include <cstdint>
#include <memory>

namespace Orvan {
namespace Cli {

void AddLogCommand(CLI::App& app, int& exitCode) {
    auto port = std::make_shared<uint16_t>(0);
    CLI::App* command = app.add_subcommand(
        "log", "Print the log records sent to a UDP port on this machine until Ctrl-C");
    command->add_option("port", *port, "UDP port the logger sends to")
        ->required()
        ->check(CLI::Range(1, 65535));
    command->callback([port, &exitCode] { exitCode = Tools::RunLogView(*port, "orvan: error: "); });
}

} // namespace Cli
} // namespace Orvan
