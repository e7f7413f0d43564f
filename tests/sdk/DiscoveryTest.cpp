#include "SpineTestSupport.h"

#include <Orvan/OrvanApi.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

using SpineTest::CameraSetup;
using SpineTest::Capture;
using SpineTest::Outcome;

namespace {

class Discovery : public ::testing::Test {
protected:
    void Open() { system = Orvan::OpenSystem(); }
    void TearDown() override {
        if (system)
            Orvan::CloseSystem(system);
        OrvanTC_Reset();
    }

    Orvan::ISystem* system = nullptr;
};

// The virtual camera numbered `model` at `index` has serial "OV<model><index, 5 digits>", IPv4
// 169.254.<model>.<index + 1>/16 and MAC 02:4f:56:<model>:<index, 2 bytes>.
void ExpectCameraRecord(const Orvan::DeviceInfo& info, uint32_t index, uint32_t interfaceIndex) {
    std::string serial = info.SerialNumber().c_str();
    ASSERT_EQ(serial.compare(0, 2, "OV"), 0) << serial;
    unsigned model = static_cast<unsigned>(std::stoul(serial.substr(2, serial.size() - 7)));
    char text[32];
    std::snprintf(text, sizeof(text), "OV%u%05u", model, index);
    EXPECT_EQ(serial, text);
    EXPECT_EQ(info.VendorName(), "Orvan");
    EXPECT_FALSE(info.ModelName().empty());
    EXPECT_EQ(info.DeviceVersion(), "1.0");
    EXPECT_EQ(info.UserDefinedName(), "");
    EXPECT_EQ(info.IpAddress(), 0xA9FE0000u | model << 8 | (index + 1));
    std::snprintf(text, sizeof(text), "169.254.%u.%u", model, index + 1);
    EXPECT_EQ(info.IpAddressStr(), text);
    EXPECT_EQ(info.MacAddress(), 0x024F56000000ull | uint64_t(model) << 16 | index);
    std::snprintf(text, sizeof(text), "02:4f:56:%02x:00:%02x", model, index);
    EXPECT_EQ(info.MacAddressStr(), text);
    EXPECT_EQ(info.SubnetMask(), 0xFFFF0000u);
    EXPECT_EQ(info.SubnetMaskStr(), "255.255.0.0");
    EXPECT_EQ(info.DefaultGateway(), 0u);
    EXPECT_EQ(info.DefaultGatewayStr(), "0.0.0.0");
    EXPECT_FALSE(info.IsDHCPConfigurationEnabled());
    EXPECT_FALSE(info.IsPersistentIpConfigurationEnabled());
    EXPECT_TRUE(info.IsLLAConfigurationEnabled());
    EXPECT_FALSE(info.DeviceId().empty());
    EXPECT_EQ(info.InterfaceMacAddress(), 0x024F52560000ull | interfaceIndex);
    EXPECT_EQ(info.InterfaceIpAddress(), 0x7F000001u | interfaceIndex << 8);
}

} // namespace

TEST(AddressText, AddressesAreWrittenInTheUsualNotation) {
    Orvan::InterfaceInfo info("if", 0xC0A8000Au, 0xFFFFFF00u, 0x02005E0A12ABull);
    EXPECT_EQ(info.IpAddressStr(), "192.168.0.10");
    EXPECT_EQ(info.SubnetMaskStr(), "255.255.255.0");
    EXPECT_EQ(info.MacAddressStr(), "02:00:5e:0a:12:ab");
    Orvan::InterfaceInfo extremes("if", 0xFFFFFFFFu, 0, 0xFFFFFFFFFFFFull);
    EXPECT_EQ(extremes.IpAddressStr(), "255.255.255.255");
    EXPECT_EQ(extremes.SubnetMaskStr(), "0.0.0.0");
    EXPECT_EQ(extremes.MacAddressStr(), "ff:ff:ff:ff:ff:ff");
}

TEST_F(Discovery, InterfacesAreDescribedInProducerOrder) {
    CameraSetup cameras({"Mono", "Color"}, 2);
    Open();
    std::vector<Orvan::InterfaceInfo> interfaces = system->GetInterfaces();
    ASSERT_EQ(interfaces.size(), 2u);
    EXPECT_EQ(interfaces[0].IpAddressStr(), "127.0.0.1");
    EXPECT_EQ(interfaces[1].IpAddressStr(), "127.0.1.1");
    EXPECT_EQ(interfaces[1].MacAddressStr(), "02:4f:52:56:00:01");
    EXPECT_EQ(interfaces[0].SubnetMaskStr(), "255.0.0.0");
    EXPECT_NE(system->GetTLSystemNodeMap(), nullptr);
}

TEST_F(Discovery, DevicesCarryEveryFieldOfTheirCameraAndInterface) {
    CameraSetup cameras({"Mono", "Color", "Mono"}, 2);
    Open();
    system->UpdateDevices(100);
    std::vector<Orvan::DeviceInfo> devices = system->GetDevices();
    // Ordered by interface, then by the producer's device index: cameras 0 and 2 sit on the
    // first interface, camera 1 on the second.
    ASSERT_EQ(devices.size(), 3u);
    ExpectCameraRecord(devices[0], 0, 0);
    ExpectCameraRecord(devices[1], 2, 0);
    ExpectCameraRecord(devices[2], 1, 1);
    EXPECT_NE(devices[0].ModelName(), devices[2].ModelName());

    // Records are plain values.
    Orvan::DeviceInfo copy = devices[2];
    copy = devices[0];
    EXPECT_EQ(copy.SerialNumber(), devices[0].SerialNumber());
    EXPECT_EQ(copy.DeviceId(), devices[0].DeviceId());
}

TEST_F(Discovery, InterfacesWithoutCamerasListNoDevices) {
    CameraSetup cameras({}, 2);
    Open();
    EXPECT_TRUE(system->GetDevices().empty());
    EXPECT_NO_THROW(system->UpdateDevices(10));
    EXPECT_TRUE(system->GetDevices().empty());
    EXPECT_EQ(system->GetInterfaces().size(), 2u);
}

TEST_F(Discovery, OneInterfaceCanBeRefreshedAlone) {
    CameraSetup cameras({"Mono", "Mono"}, 2);
    Open();
    std::vector<Orvan::InterfaceInfo> interfaces = system->GetInterfaces();
    ASSERT_EQ(interfaces.size(), 2u);
    // The producer lists an interface's devices only once that interface has been refreshed.
    system->UpdateDevices(interfaces[1], 10);
    EXPECT_EQ(system->GetDevices().size(), 1u);
    OrvanTC_FailCall("IFUpdateDeviceList", 1, GenTL::GC_ERR_TIMEOUT, "no answer");
    Outcome outcome = Capture([&] { system->UpdateDevices(interfaces[0], 10); });
    EXPECT_EQ(outcome.className, "TimeoutException");
    EXPECT_EQ(outcome.message, "TimeoutException (GC_ERR_TIMEOUT): Unable to update list of "
                               "devices (System, UpdateDevices; GenTL::IFUpdateDeviceList); no "
                               "answer");
}

TEST_F(Discovery, UpdatingAnUnknownInterfaceIsRefused) {
    Open();
    Outcome outcome =
        Capture([&] { system->UpdateDevices(Orvan::InterfaceInfo("NoSuchIF", 0, 0, 0), 10); });
    EXPECT_EQ(outcome.className, "InvalidArgumentException");
    EXPECT_EQ(outcome.message,
              "InvalidArgumentException: Interface not found (System, UpdateDevices)");
}

TEST_F(Discovery, DiscoveryFailuresNameTheirCallAndCarryTheProducerText) {
    Open();
    system->UpdateDevices(10);
    struct Row {
        const char* call;
        uint32_t nth;
        int32_t code;
        std::function<void()> operation;
        const char* expected;
    };
    auto devices = [&] { system->GetDevices(); };
    // The device ID takes two calls (its size, then its text); the device's info items are read
    // in the order model, vendor, serial number, IP address, ...
    const Row rows[] = {
        {"TLUpdateInterfaceList", 1, GenTL::GC_ERR_BUSY, [&] { system->GetInterfaces(); },
         "RuntimeException (GC_ERR_BUSY): Unable to update list of interfaces (System, "
         "GetInterfaces; GenTL::TLUpdateInterfaceList); injected"},
        {"TLUpdateInterfaceList", 1, GenTL::GC_ERR_NOT_INITIALIZED,
         [&] { system->UpdateDevices(10); },
         "LogicalErrorException (GC_ERR_NOT_INITIALIZED): Unable to update list of interfaces "
         "(System, UpdateDevices; GenTL::TLUpdateInterfaceList); injected"},
        {"IFGetNumDevices", 1, GenTL::GC_ERR_ERROR, devices,
         "GenericException (GC_ERR_ERROR): Unable to get number of devices (System, GetDevices; "
         "GenTL::IFGetNumDevices); injected"},
        {"IFGetDeviceID", 2, GenTL::GC_ERR_INVALID_INDEX, devices,
         "OutOfRangeException (GC_ERR_INVALID_INDEX): Unable to get device ID (System, "
         "GetDevices; GenTL::IFGetDeviceID); injected"},
        {"IFGetDeviceInfo", 1, GenTL::GC_ERR_INVALID_ID, devices,
         "InvalidArgumentException (GC_ERR_INVALID_ID): Unable to get device information "
         "(System, GetInfoString; GenTL::IFGetDeviceInfo); injected"},
        {"IFGetDeviceInfo", 4, -10001, devices,
         "GenericException (GC_ERR_ERROR): Unable to get buffer information (System, GetInfo; "
         "GenTL::IFGetDeviceInfo); injected"},
        {"IFGetInfo", 1, GenTL::GC_ERR_ACCESS_DENIED, devices,
         "AccessException (GC_ERR_ACCESS_DENIED): Unable to get buffer information (System, "
         "GetInfo; GenTL::IFGetInfo); injected"},
    };
    for (const Row& row : rows) {
        OrvanTC_FailCall(row.call, row.nth, row.code, "injected");
        EXPECT_EQ(Capture(row.operation).message, row.expected);
    }
}

TEST_F(Discovery, ProducerTextIsTakenAsGivenOrReplacedWhenUnavailable) {
    Open();
    const std::string head = "GenericException (GC_ERR_ERROR): Unable to get number of devices "
                             "(System, GetDevices; GenTL::IFGetNumDevices); ";
    auto failure = [&](const std::string& text) {
        OrvanTC_FailCall("IFGetNumDevices", 1, GenTL::GC_ERR_ERROR, text.c_str());
        return Capture([&] { system->GetDevices(); }).message;
    };
    EXPECT_EQ(failure(""), head);
    // The text is fetched into a buffer of 2048 bytes. A producer may cut a longer text to fit
    // or refuse to hand it over; either way the message stays bounded.
    const std::string longText(3000, 'x');
    std::string message = failure(longText);
    EXPECT_TRUE(message == head + longText.substr(0, 2047) ||
                message == head + "Unable to get error from GenTL layer.")
        << message.size();
    OrvanTC_FailCall("GCGetLastError", 1, GenTL::GC_ERR_ERROR, "unused");
    EXPECT_EQ(failure("lost"), head + "Unable to get error from GenTL layer.");
}
