// orvan save-features CAMERA FILE: the camera's streamable features as a GenApi persistence file.
#include "CameraScope.h"
#include "Commands.h"
#include "ToolError.h"

#include <Orvan/FeatureStream.h>

#include <fstream>
#include <iostream>
#include <memory>
#include <string>

namespace Orvan {
namespace Cli {

namespace {

struct SaveOptions {
    std::string camera;
    std::string file;
};

} // namespace

void AddSaveFeaturesCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<SaveOptions>();
    CLI::App* command =
        app.add_subcommand("save-features", "Save the camera's feature values to a file");
    command->add_option("camera", options->camera, "Serial number, name, index or IP address")
        ->required();
    command->add_option("file", options->file, "Feature file to write")->required();
    command->callback([options, &exitCode] {
        CameraScope scope;
        GenApi::INodeMap* nodeMap = scope.Open(options->camera).GetNodeMap();
        // The feature stream passes over a file it cannot create; the user must hear of it.
        if (!std::ofstream(options->file, std::ios::trunc))
            throw ToolError("cannot write '" + options->file + "'");
        FeatureStream(nodeMap).Write(options->file.c_str());
        std::cout << "saved features of " << scope.OpenedInfo().SerialNumber().c_str() << " to "
                  << options->file << '\n';
        exitCode = 0;
    });
}

} // namespace Cli
} // namespace Orvan
