// orvan list: every interface and every camera found behind it.
#include "CameraScope.h"
#include "Commands.h"
#include "TextTable.h"

#include <Base/GCException.h>
#include <Orvan/GenApiCustom.h>

#include <iostream>

namespace Orvan {
namespace Cli {

namespace {

// The interface knows whether a camera is free or already opened (by this or another program);
// the device record does not carry it.
std::string AccessStatus(ISystem& system, const DeviceInfo& device) {
    try {
        GenApi::INodeMap* nodeMap = system.GetTLInterfaceNodeMap(device);
        const int64_t last = GetNodeMax<int64_t>(nodeMap, "DeviceSelector");
        for (int64_t i = 0; i <= last; ++i) {
            SetNodeValue<int64_t>(nodeMap, "DeviceSelector", i);
            if (GetNodeValue<GenICam::gcstring>(nodeMap, "DeviceID") == device.DeviceId())
                return GetNodeValue<GenICam::gcstring>(nodeMap, "DeviceAccessStatus").c_str();
        }
    } catch (const GenICam::GenericException&) {
        // An interface without these features cannot say; the rest of the row still can.
    }
    return "Unknown";
}

// The producer file behind the camera's interface, as the system's node map lists it: ours for
// our own interfaces, a maker's .cti for the interfaces of the producers we load.
std::string Producer(ISystem& system, const DeviceInfo& device) {
    try {
        GenApi::INodeMap* nodeMap = system.GetTLSystemNodeMap();
        const int64_t last = GetNodeMax<int64_t>(nodeMap, "InterfaceSelector");
        for (int64_t i = 0; i <= last; ++i) {
            SetNodeValue<int64_t>(nodeMap, "InterfaceSelector", i);
            if (GetNodeValue<GenICam::gcstring>(nodeMap, "InterfaceID") == device.InterfaceId()) {
                const std::string path =
                    GetNodeValue<GenICam::gcstring>(nodeMap, "InterfaceProducer").c_str();
                return path.substr(path.rfind('/') + 1);
            }
        }
    } catch (const GenICam::GenericException&) {
    }
    return "Unknown";
}

// Producers found on GENICAM_GENTL64_PATH that could not be used, each with the reason.
void PrintSkippedProducers(ISystem& system) {
    try {
        GenApi::INodeMap* nodeMap = system.GetTLSystemNodeMap();
        const int64_t count = GetNodeValue<int64_t>(nodeMap, "ProducerSkippedCount");
        for (int64_t i = 0; i < count; ++i) {
            SetNodeValue<int64_t>(nodeMap, "ProducerSkippedSelector", i);
            std::cout << "Skipped producer "
                      << GetNodeValue<GenICam::gcstring>(nodeMap, "ProducerSkippedPath") << ": "
                      << GetNodeValue<GenICam::gcstring>(nodeMap, "ProducerSkippedReason") << '\n';
        }
    } catch (const GenICam::GenericException&) {
    }
}

void PrintInterfaces(CameraScope& scope) {
    TextTable table({"INTERFACE", "IP", "MASK", "MAC"});
    for (const InterfaceInfo& info : scope.System().GetInterfaces())
        table.AddRow({info.Id().c_str(), info.IpAddressStr().c_str(), info.SubnetMaskStr().c_str(),
                      info.MacAddressStr().c_str()});
    table.Print(std::cout);
}

void PrintCameras(CameraScope& scope) {
    if (scope.Devices().empty()) {
        std::cout << "No cameras found.\n";
        return;
    }
    TextTable table({"#", "MODEL", "SERIAL", "VENDOR", "IP", "MAC", "ACCESS", "NAME", "PRODUCER"});
    size_t index = 0;
    for (const DeviceInfo& info : scope.Devices())
        table.AddRow({std::to_string(index++), info.ModelName().c_str(),
                      info.SerialNumber().c_str(), info.VendorName().c_str(),
                      info.IpAddressStr().c_str(), info.MacAddressStr().c_str(),
                      AccessStatus(scope.System(), info), info.UserDefinedName().c_str(),
                      Producer(scope.System(), info)});
    table.Print(std::cout);
}

} // namespace

void AddListCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("list", "List interfaces and the cameras behind them");
    command->callback([&exitCode] {
        CameraScope scope;
        PrintInterfaces(scope);
        std::cout << '\n';
        PrintCameras(scope);
        PrintSkippedProducers(scope.System());
        exitCode = 0;
    });
}

} // namespace Cli
} // namespace Orvan
