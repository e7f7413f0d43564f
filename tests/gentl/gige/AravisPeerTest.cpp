// The transport through the GenTL calls against Debian's Aravis camera emulator: an
// implementation nobody here wrote finds, describes, opens and releases it.
#include "AravisFakeCamera.h"
#include "GigeTestSupport.h"

#include <memory>
#include <strings.h>

using namespace GenTL;
using GigeTest::AravisFakeCamera;

namespace {

const char* const kSerial = "ORVGT01";

class AravisPeer : public GigeTest::LoopbackFixture {
protected:
    void SetUp() override {
        m_camera = std::make_unique<AravisFakeCamera>(kSerial);
        if (!m_camera->Running())
            GTEST_SKIP() << "Another emulator kept GVCP port 3956 of 127.0.0.1 busy";
        OpenLoopback(0);
    }

    std::unique_ptr<AravisFakeCamera> m_camera;
};

uint32_t ReadBootstrap(PORT_HANDLE port, uint64_t address) {
    uint8_t bytes[4] = {};
    size_t size = sizeof(bytes);
    EXPECT_EQ(GCReadPort(port, address, bytes, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(size, 4u);
    return uint32_t(bytes[0]) << 24 | uint32_t(bytes[1]) << 16 | uint32_t(bytes[2]) << 8 | bytes[3];
}

} // namespace

TEST_F(AravisPeer, DiscoveryFindsTheEmulatorWithItsIdentityAndKeepsItsId) {
    const std::string id = FindBySerial(kSerial);
    ASSERT_FALSE(id.empty());
    EXPECT_EQ(DeviceText(id, DEVICE_INFO_TLTYPE), "GEV");
    EXPECT_FALSE(DeviceText(id, DEVICE_INFO_VENDOR).empty());
    EXPECT_FALSE(DeviceText(id, DEVICE_INFO_MODEL).empty());
    EXPECT_EQ(DeviceValue<uint32_t>(id, DEVICE_INFO_ORVAN_GEV_IP_ADDRESS), 0x7F000001u);
    // Nobody holds the control privilege: the camera itself says so.
    EXPECT_EQ(DeviceValue<int32_t>(id, DEVICE_INFO_ACCESS_STATUS), DEVICE_ACCESS_STATUS_READWRITE);
    bool8_t changed = 1;
    ASSERT_EQ(IFUpdateDeviceList(m_interface, &changed, 500), GC_ERR_SUCCESS);
    EXPECT_FALSE(changed);
    EXPECT_EQ(FindBySerial(kSerial, 500), id);
}

TEST_F(AravisPeer, AnOpenDeviceReadsItsRegistersAndHoldsControlUntilClosed) {
    const std::string id = FindBySerial(kSerial);
    ASSERT_FALSE(id.empty());
    ASSERT_EQ(IFOpenDevice(m_interface, id.c_str(), DEVICE_ACCESS_CONTROL, &m_device),
              GC_ERR_SUCCESS);
    PORT_HANDLE port = nullptr;
    ASSERT_EQ(DevGetPort(m_device, &port), GC_ERR_SUCCESS);
    // The bootstrap registers hold what discovery reported.
    EXPECT_EQ(ReadBootstrap(port, 0x0024), 0x7F000001u);
    char serial[16] = {};
    size_t size = sizeof(serial);
    ASSERT_EQ(GCReadPort(port, 0x00D8, serial, &size), GC_ERR_SUCCESS);
    EXPECT_STREQ(serial, kSerial);
    EXPECT_EQ(DeviceValue<int32_t>(id, DEVICE_INFO_ACCESS_STATUS),
              DEVICE_ACCESS_STATUS_OPEN_READWRITE);

    uint32_t urls = 0;
    ASSERT_EQ(GCGetNumPortURLs(port, &urls), GC_ERR_SUCCESS);
    ASSERT_GE(urls, 1u);
    char url[512] = {};
    INFO_DATATYPE type{};
    size = sizeof(url);
    ASSERT_EQ(GCGetPortURLInfo(port, 0, URL_INFO_URL, &type, url, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(strncasecmp(url, "local:", 6), 0) << url;

    ASSERT_EQ(DevClose(m_device), GC_ERR_SUCCESS);
    m_device = nullptr;
    EXPECT_EQ(DeviceValue<int32_t>(id, DEVICE_INFO_ACCESS_STATUS), DEVICE_ACCESS_STATUS_READWRITE);
}
