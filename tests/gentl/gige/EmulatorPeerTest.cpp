// The transport through the GenTL calls against our own camera emulator, for what the Aravis
// emulator cannot show: unicast discovery, FORCEIP, a camera lost and found again.
#include "EmulatedCamera.h"
#include "GigeTestSupport.h"
#include "gige/GevProtocol.h"
#include "gige/GvcpChannel.h"

#include <chrono>
#include <thread>

using namespace GenTL;
using Orvan::Emulator::EmulatedCamera;
using Orvan::Emulator::EmulatorOptions;

namespace {

constexpr uint32_t kLoopback2 = 0x7F000002; // 127.0.0.2

class EmulatorPeer : public GigeTest::LoopbackFixture {
protected:
    // A Mono camera on a free port of `ip` (0: every address); discovery is pointed at it.
    void StartCamera(uint32_t ip, uint32_t heartbeatMs = 3000) {
        EmulatorOptions options;
        options.bindIp = ip;
        options.port = 0;
        options.index = 7;
        options.heartbeatTimeoutMs = heartbeatMs;
        m_camera = std::make_unique<EmulatedCamera>(options);
        ASSERT_TRUE(m_camera->Start()) << m_camera->Error();
        m_serial = m_camera->Identity().serialNumber;
        OpenLoopback(m_camera->ControlEndpoint().port);
    }

    bool Connected() {
        bool8_t connected = 0;
        INFO_DATATYPE type{};
        size_t size = sizeof(connected);
        EXPECT_EQ(DevGetInfo(m_device, DEVICE_INFO_ORVAN_CONNECTED, &type, &connected, &size),
                  GC_ERR_SUCCESS);
        return connected != 0;
    }

    std::unique_ptr<EmulatedCamera> m_camera;
    std::string m_serial;
};

uint32_t ReadRegister(PORT_HANDLE port, uint64_t address, GC_ERROR expected = GC_ERR_SUCCESS) {
    uint8_t bytes[4] = {};
    size_t size = sizeof(bytes);
    EXPECT_EQ(GCReadPort(port, address, bytes, &size), expected);
    return uint32_t(bytes[0]) << 24 | uint32_t(bytes[1]) << 16 | uint32_t(bytes[2]) << 8 | bytes[3];
}

} // namespace

TEST_F(EmulatorPeer, TheUnicastListReachesACameraTheBroadcastDoesNot) {
    StartCamera(kLoopback2);
    EXPECT_EQ(FindBySerial(m_serial, 300), "");
    ASSERT_EQ(IFAddUnicastDiscoveryDevice(m_interface, kLoopback2), GC_ERR_SUCCESS);
    const std::string id = FindBySerial(m_serial, 500);
    ASSERT_FALSE(id.empty());
    EXPECT_EQ(DeviceValue<uint32_t>(id, DEVICE_INFO_ORVAN_GEV_IP_ADDRESS), kLoopback2);
    EXPECT_EQ(uint64_t(DeviceValue<int64_t>(id, DEVICE_INFO_ORVAN_GEV_MAC_ADDRESS)),
              m_camera->Identity().mac);
    EXPECT_EQ(DeviceText(id, DEVICE_INFO_MODEL), m_camera->Identity().model);
    EXPECT_EQ(DeviceValue<uint32_t>(id, DEVICE_INFO_ORVAN_GEV_SUBNET_MASK), 0xFF000000u);
    // The emulator runs on a link-local configuration.
    EXPECT_FALSE(DeviceValue<bool8_t>(id, DEVICE_INFO_ORVAN_GEV_DHCP_ENABLED));
    EXPECT_FALSE(DeviceValue<bool8_t>(id, DEVICE_INFO_ORVAN_GEV_PERSISTENT_IP_ENABLED));
    EXPECT_TRUE(DeviceValue<bool8_t>(id, DEVICE_INFO_ORVAN_GEV_LLA_ENABLED));
    ASSERT_EQ(IFRemoveUnicastDiscoveryDevice(m_interface, kLoopback2), GC_ERR_SUCCESS);
    EXPECT_EQ(FindBySerial(m_serial, 300), "");
}

TEST_F(EmulatorPeer, ACameraAnotherHostControlsIsReadOnlyAndRefusesControl) {
    StartCamera(kLoopback2);
    ASSERT_EQ(IFAddUnicastDiscoveryDevice(m_interface, kLoopback2), GC_ERR_SUCCESS);
    const std::string id = FindBySerial(m_serial, 300);
    ASSERT_FALSE(id.empty());
    Orvan::Producer::GvcpChannel other(kLoopback2, m_camera->ControlEndpoint().port, 0, {});
    ASSERT_EQ(other.WriteRegister(Orvan::Gev::Reg::ControlChannelPrivilege,
                                  Orvan::Gev::kPrivilegeControl),
              GC_ERR_SUCCESS);
    EXPECT_EQ(DeviceValue<int32_t>(id, DEVICE_INFO_ACCESS_STATUS), DEVICE_ACCESS_STATUS_READONLY);
    EXPECT_NE(IFOpenDevice(m_interface, id.c_str(), DEVICE_ACCESS_CONTROL, &m_device),
              GC_ERR_SUCCESS);
    m_device = nullptr;
    char text[256] = {};
    size_t size = sizeof(text);
    GC_ERROR code = GC_ERR_SUCCESS;
    ASSERT_EQ(GCGetLastError(&code, text, &size), GC_ERR_SUCCESS);
    EXPECT_NE(std::string(text).find(id), std::string::npos) << text;
    ASSERT_EQ(other.WriteRegister(Orvan::Gev::Reg::ControlChannelPrivilege, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(IFOpenDevice(m_interface, id.c_str(), DEVICE_ACCESS_CONTROL, &m_device),
              GC_ERR_SUCCESS);
}

TEST_F(EmulatorPeer, AForcedAddressIsTakenAndTheSameDeviceAnswersFromIt) {
    StartCamera(0);
    const std::string id = FindBySerial(m_serial, 500);
    ASSERT_FALSE(id.empty());
    const uint32_t forced = 0x7F0A0B0C; // 127.10.11.12
    ASSERT_EQ(IFForceIp(m_interface, m_camera->Identity().mac, forced, 0xFF000000, 0),
              GC_ERR_SUCCESS);
    EXPECT_EQ(DeviceValue<uint32_t>(id, DEVICE_INFO_ORVAN_GEV_IP_ADDRESS), forced);
    ASSERT_EQ(IFOpenDevice(m_interface, id.c_str(), DEVICE_ACCESS_CONTROL, &m_device),
              GC_ERR_SUCCESS);
    PORT_HANDLE port = nullptr;
    ASSERT_EQ(DevGetPort(m_device, &port), GC_ERR_SUCCESS);
    EXPECT_EQ(ReadRegister(port, 0x0024), forced);
    // Nobody answers for a MAC that is not on the network.
    EXPECT_EQ(IFForceIp(m_interface, 0x02AABBCCDDEEull, forced, 0xFF000000, 0), GC_ERR_TIMEOUT);
}

TEST_F(EmulatorPeer, ALostCameraIsNoticedWithinItsHeartbeatAndComesBackAfterARestart) {
    constexpr uint32_t kHeartbeatMs = 1000;
    StartCamera(kLoopback2, kHeartbeatMs);
    ASSERT_EQ(IFAddUnicastDiscoveryDevice(m_interface, kLoopback2), GC_ERR_SUCCESS);
    const std::string id = FindBySerial(m_serial, 300);
    ASSERT_FALSE(id.empty());
    ASSERT_EQ(IFOpenDevice(m_interface, id.c_str(), DEVICE_ACCESS_CONTROL, &m_device),
              GC_ERR_SUCCESS);
    EVENT_HANDLE errors = nullptr;
    ASSERT_EQ(GCRegisterEvent(m_device, EVENT_ERROR, &errors), GC_ERR_SUCCESS);
    PORT_HANDLE port = nullptr;
    ASSERT_EQ(DevGetPort(m_device, &port), GC_ERR_SUCCESS);
    ASSERT_TRUE(Connected());

    const auto lost = std::chrono::steady_clock::now();
    m_camera->Stop();
    char data[256];
    size_t size = sizeof(data);
    // The heartbeat notices within the camera's timeout; the margin covers a loaded machine.
    ASSERT_EQ(EventGetData(errors, data, &size, 4 * kHeartbeatMs), GC_ERR_SUCCESS);
    const auto noticed = std::chrono::steady_clock::now() - lost;
    EXPECT_LE(noticed, std::chrono::milliseconds(2 * kHeartbeatMs));
    EXPECT_FALSE(Connected());
    ReadRegister(port, 0x0024, GC_ERR_IO);

    ASSERT_TRUE(m_camera->Start()) << m_camera->Error();
    EXPECT_EQ(FindBySerial(m_serial, 300), id);
    EXPECT_TRUE(Connected());
    EXPECT_EQ(ReadRegister(port, 0x0024), kLoopback2);
    EXPECT_EQ(GCUnregisterEvent(m_device, EVENT_ERROR), GC_ERR_SUCCESS);
}
