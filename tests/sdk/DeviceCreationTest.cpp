// Opening and giving back devices, the device's construction-time settings, and the system's
// network operations.
#include "DeviceTestSupport.h"

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include <unistd.h>

using DeviceTest::DeviceFixture;
using SpineTest::Capture;

namespace {

class Creation : public DeviceFixture {};

} // namespace

TEST_F(Creation, DevicesAreFoundOnTheirInterfaceAndOpenedOnce) {
    Open({"Mono", "Color"}, 2);
    Orvan::IDevice* color = Create(1);
    EXPECT_NE(color->GetNodeMap(), nullptr);
    EXPECT_NE(color->GetTLDeviceNodeMap(), nullptr);
    EXPECT_NE(color->GetTLStreamNodeMap(0), nullptr);
    EXPECT_EQ(color->GetTLInterfaceNodeMap(), system->GetTLInterfaceNodeMap(devices[1]));
    EXPECT_NE(color->GetTLInterfaceNodeMap(), system->GetTLInterfaceNodeMap(devices[0]));
    EXPECT_EQ(Orvan::GetNodeValue<GenICam::gcstring>(color->GetNodeMap(), "DeviceModelName"),
              "VirtualColor");
    EXPECT_EQ(Capture([&] { system->CreateDevice(devices[1]); })
                  .message.rfind(
                      "LogicalErrorException (GC_ERR_RESOURCE_IN_USE): Failure opening device due "
                      "to device already being open (System, CreateDevice; GenTL::IFOpenDevice)",
                      0),
              0u);
    Destroy(color);
    Destroy(Create(1));
    EXPECT_EQ(Capture([&] { system->DestroyDevice(nullptr); }).message,
              "InvalidArgumentException: Device is null (System, DestroyDevice)");
}

TEST_F(Creation, ARecordOfNoInterfaceIsRefused) {
    Open({"Mono"}, 1);
    EXPECT_EQ(Capture([&] { system->CreateDevice(Orvan::DeviceInfo()); }).message,
              "LogicalErrorException: Camera Interface not found (System, CreateDevice)");
    EXPECT_EQ(Capture([&] { system->GetTLInterfaceNodeMap(Orvan::DeviceInfo()); }).message,
              "LogicalErrorException: Camera Interface not found (System, "
              "GetTLInterfaceNodeMap)");
}

TEST_F(Creation, EventSensorRateIsCappedToItsLink) {
    Open({"EventSensor"});
    Orvan::IDevice* device = system->CreateDevice(devices[0]);
    owned.push_back(device);
    GenApi::INodeMap* nodeMap = device->GetNodeMap();
    // 125 000 000 bytes per second carry at most 20 million events per second.
    EXPECT_DOUBLE_EQ(Orvan::GetNodeValue<double>(nodeMap, "ErcRateLimit"), 20.0);
    EXPECT_TRUE(Orvan::GetNodeValue<bool>(nodeMap, "ErcEnable"));
    EXPECT_FALSE(Orvan::GetNodeValue<bool>(device->GetTLDeviceNodeMap(),
                                           "MultipartFeaturesImplementedEnable"));
    EXPECT_EQ(device->GetTLStreamNodeMap(), device->GetTLStreamNodeMap(3));
}

TEST_F(Creation, TheDescriptionIsWrittenUnderTheSerialNumber) {
    Open({"Color"});
    Orvan::IDevice* device = Create();
    char scratch[] = "/tmp/orvan-device-XXXXXX";
    ASSERT_NE(mkdtemp(scratch), nullptr);
    char previous[4096];
    ASSERT_NE(getcwd(previous, sizeof(previous)), nullptr);
    ASSERT_EQ(chdir(scratch), 0);
    device->DownloadXml();
    ASSERT_EQ(chdir(previous), 0);
    const std::string path =
        std::string(scratch) + "/" + devices[0].SerialNumber().c_str() + ".xml";
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    EXPECT_NE(text.str().find("DeviceScanType"), std::string::npos);
    std::remove(path.c_str());
    rmdir(scratch);
}

TEST_F(Creation, ForceIpMovesTheCameraAndRefusesBadAddresses) {
    Open({"Mono"});
    EXPECT_EQ(Capture([&] {
                  system->ForceIp("00:11:22:33:44", "10.0.0.2", "255.0.0.0", "0.0.0.0");
              }).message,
              "InvalidArgumentException: Bad MAC address (System, ForceIp)");
    EXPECT_EQ(Capture([&] {
                  system->ForceIp("00:11:22:33:44:55:66", "10.0.0.2", "255.0.0.0", "0.0.0.0");
              }).message,
              "InvalidArgumentException: Bad MAC address (System, ForceIp)");
    system->ForceIp(devices[0].MacAddressStr().c_str(), "10.1.2.3", "255.255.0.0", "10.1.0.1");
    system->UpdateDevices(1000);
    const Orvan::DeviceInfo moved = system->GetDevices().at(0);
    EXPECT_EQ(moved.IpAddressStr(), "10.1.2.3");
    EXPECT_EQ(moved.SubnetMaskStr(), "255.255.0.0");
    EXPECT_EQ(moved.DefaultGatewayStr(), "10.1.0.1");
    EXPECT_EQ(Capture([&] { system->ForceIp(0x0200DEADBEEFull, 1, 2, 3); }).className,
              "InvalidArgumentException");
}

TEST_F(Creation, UnicastAddressesGoToTheInterfaceThatRoutesThem) {
    Open({"Mono"});
    for (const char* bad : {"0.0.0.0", "255.255.255.255"})
        EXPECT_EQ(Capture([&] { system->AddUnicastDiscoveryDevice(bad); }).message,
                  "InvalidArgumentException: Invalid IP address specified. (System, "
                  "AddUnicastDiscoveryDevice)");
    EXPECT_EQ(Capture([&] { system->RemoveUnicastDiscoveryDevice("camera"); })
                  .message.rfind("InvalidArgumentException: Unable to parse remote IP address. "
                                 "Error: [",
                                 0),
              0u);
    system->AddUnicastDiscoveryDevice("127.0.0.7");
    system->AddUnicastDiscoveryDevice("127.0.0.9");
    EXPECT_EQ(system->GetUnicastDiscoveryDevices(),
              (std::vector<GenICam::gcstring>{"127.0.0.7", "127.0.0.9"}));
    system->RemoveUnicastDiscoveryDevice("127.0.0.7");
    EXPECT_EQ(system->GetUnicastDiscoveryDevices(), std::vector<GenICam::gcstring>{"127.0.0.9"});
    ASSERT_EQ(OrvanTC_FailCall("IFAddUnicastDiscoveryDevice", 1, GenTL::GC_ERR_IO, "x"), 0);
    EXPECT_EQ(Capture([&] { system->AddUnicastDiscoveryDevice("127.0.0.8"); }).message,
              "LogicalErrorException: GenTL::System::RemoveUnicastDiscoveryDevice() failed. "
              "Error: [-1010]. (System, AddUnicastDiscoveryDevice)");
    ASSERT_EQ(OrvanTC_FailCall("IFGetUnicastDiscoveryDevices", 1, GenTL::GC_ERR_IO, "x"), 0);
    EXPECT_EQ(Capture([&] { system->GetUnicastDiscoveryDevices(); }).message,
              "LogicalErrorException: GenTL::System::GetUnicastDiscoveryDevices() failed. "
              "Error: [-1010]. (System, GetUnicastDiscoveryDevices)");
}
