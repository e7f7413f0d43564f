// orvan set CAMERA FEATURE=VALUE...: writes the values in the order given and prints each as the
// camera holds it afterwards, which shows any rounding to the feature's increment.
#include "CameraScope.h"
#include "Commands.h"
#include "FeatureAccess.h"
#include "ToolError.h"

#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Orvan {
namespace Cli {

namespace {

struct SetOptions {
    std::string camera;
    std::vector<std::string> assignments;
};

std::pair<std::string, std::string> SplitAssignment(const std::string& text) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0)
        throw UsageError("expected FEATURE=VALUE, got '" + text + "'");
    return {text.substr(0, equals), text.substr(equals + 1)};
}

} // namespace

void AddSetCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<SetOptions>();
    CLI::App* command = app.add_subcommand("set", "Write camera features, in the order given");
    command->add_option("camera", options->camera, "Serial number, name, index or IP address")
        ->required();
    command->add_option("assignments", options->assignments, "FEATURE=VALUE pairs")->required();
    command->callback([options, &exitCode] {
        // The whole command line is checked before the camera is touched.
        std::vector<std::pair<std::string, std::string>> assignments;
        for (const std::string& text : options->assignments)
            assignments.push_back(SplitAssignment(text));
        CameraScope scope;
        GenApi::INodeMap* nodeMap = scope.Open(options->camera).GetNodeMap();
        for (const auto& [name, value] : assignments) {
            GenApi::INode& node = FindFeature(nodeMap, name);
            WriteFeature(node, value);
            std::cout << name << '=' << ReadFeature(node) << '\n';
        }
        exitCode = 0;
    });
}

} // namespace Cli
} // namespace Orvan
