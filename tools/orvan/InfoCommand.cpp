// orvan info CAMERA: who the camera is and the tree of its features.
#include "CameraScope.h"
#include "Commands.h"
#include "FeatureTree.h"

#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Orvan {
namespace Cli {

namespace {

struct InfoOptions {
    std::string camera;
    FeatureTreeOptions tree;
    bool json = false;
};

std::vector<std::pair<std::string, std::string>> Identity(const DeviceInfo& info) {
    return {{"model", info.ModelName().c_str()},      {"vendor", info.VendorName().c_str()},
            {"serial", info.SerialNumber().c_str()},  {"version", info.DeviceVersion().c_str()},
            {"name", info.UserDefinedName().c_str()}, {"ip", info.IpAddressStr().c_str()},
            {"mac", info.MacAddressStr().c_str()}};
}

void PrintText(const DeviceInfo& info, const std::vector<FeatureEntry>& tree) {
    for (const auto& [key, value] : Identity(info))
        if (!value.empty())
            std::cout << key << ": " << value << '\n';
    std::cout << '\n';
    PrintFeatureTree(std::cout, tree);
}

void PrintJson(const DeviceInfo& info, const std::vector<FeatureEntry>& tree) {
    nlohmann::json camera = nlohmann::json::object();
    for (const auto& [key, value] : Identity(info))
        camera[key] = value;
    const nlohmann::json document = {{"camera", camera}, {"features", FeatureTreeToJson(tree)}};
    std::cout << document.dump(2) << '\n';
}

} // namespace

void AddInfoCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<InfoOptions>();
    CLI::App* command =
        app.add_subcommand("info", "Show the camera's identity and its feature tree");
    command->add_option("camera", options->camera, "Serial number, name, index or IP address")
        ->required();
    command->add_flag("--values", options->tree.values, "Show the current value of each feature");
    command->add_option("--filter", options->tree.filter,
                        "Show only features whose name contains this text (any case)");
    command->add_flag("--json", options->json, "Print JSON instead of text");
    command->callback([options, &exitCode] {
        CameraScope scope;
        GenApi::INodeMap* nodeMap = scope.Open(options->camera).GetNodeMap();
        const std::vector<FeatureEntry> tree = BuildFeatureTree(nodeMap, options->tree);
        if (options->json)
            PrintJson(scope.OpenedInfo(), tree);
        else
            PrintText(scope.OpenedInfo(), tree);
        exitCode = 0;
    });
}

} // namespace Cli
} // namespace Orvan
