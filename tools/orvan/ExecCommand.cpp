// orvan exec CAMERA COMMAND: runs a command feature and waits until the camera has done it.
#include "CameraScope.h"
#include "Commands.h"
#include "FeatureAccess.h"

#include <iostream>
#include <memory>
#include <string>

namespace Orvan {
namespace Cli {

namespace {

struct ExecOptions {
    std::string camera;
    std::string command;
};

} // namespace

void AddExecCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<ExecOptions>();
    CLI::App* command = app.add_subcommand("exec", "Execute a command feature");
    command->add_option("camera", options->camera, "Serial number, name, index or IP address")
        ->required();
    command->add_option("command", options->command, "Command feature name")->required();
    command->callback([options, &exitCode] {
        CameraScope scope;
        GenApi::INodeMap* nodeMap = scope.Open(options->camera).GetNodeMap();
        ExecuteFeature(FindFeature(nodeMap, options->command));
        std::cout << options->command << ": done\n";
        exitCode = 0;
    });
}

} // namespace Cli
} // namespace Orvan
