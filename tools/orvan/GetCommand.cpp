// orvan get CAMERA FEATURE...: one "name=value" line per feature, in the order asked.
#include "CameraScope.h"
#include "Commands.h"
#include "FeatureAccess.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace Orvan {
namespace Cli {

namespace {

struct GetOptions {
    std::string camera;
    std::vector<std::string> features;
};

} // namespace

void AddGetCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<GetOptions>();
    CLI::App* command = app.add_subcommand("get", "Print the values of camera features");
    command->add_option("camera", options->camera, "Serial number, name, index or IP address")
        ->required();
    command->add_option("features", options->features, "Feature names")->required();
    command->callback([options, &exitCode] {
        CameraScope scope;
        GenApi::INodeMap* nodeMap = scope.Open(options->camera).GetNodeMap();
        // All values are read before any is printed, so a bad name leaves no partial output.
        std::vector<std::string> lines;
        for (const std::string& name : options->features)
            lines.push_back(name + "=" + ReadFeature(FindFeature(nodeMap, name)));
        for (const std::string& line : lines)
            std::cout << line << '\n';
        exitCode = 0;
    });
}

} // namespace Cli
} // namespace Orvan
