// orvan load-features CAMERA FILE: writes a feature file's values back into the camera.
#include "CameraScope.h"
#include "Commands.h"
#include "ToolError.h"

#include <Base/GCException.h>
#include <Orvan/FeatureStream.h>

#include <fstream>
#include <iostream>
#include <memory>
#include <string>

namespace Orvan {
namespace Cli {

namespace {

struct LoadOptions {
    std::string camera;
    std::string file;
};

} // namespace

void AddLoadFeaturesCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<LoadOptions>();
    CLI::App* command =
        app.add_subcommand("load-features", "Load feature values from a file into the camera");
    command->add_option("camera", options->camera, "Serial number, name, index or IP address")
        ->required();
    command->add_option("file", options->file, "Feature file written by save-features")->required();
    command->callback([options, &exitCode] {
        // Checked before the camera is opened: a typo should not cost a discovery.
        if (!std::ifstream(options->file))
            throw ToolError("cannot read '" + options->file + "'");
        CameraScope scope;
        GenApi::INodeMap* nodeMap = scope.Open(options->camera).GetNodeMap();
        try {
            FeatureStream(nodeMap).Read(options->file.c_str());
        } catch (const GenICam::GenericException& e) {
            throw ToolError("cannot load '" + options->file + "': " + e.GetDescription());
        }
        std::cout << "loaded features from " << options->file << " into "
                  << scope.OpenedInfo().SerialNumber().c_str() << '\n';
        exitCode = 0;
    });
}

} // namespace Cli
} // namespace Orvan
