#include "GigeTestSupport.h"

#include <vector>

using namespace GenTL;

namespace GigeTest {

void LoopbackFixture::OpenInterface(const std::string& name, uint32_t port) {
    UseInterfaceOnly(name.c_str(), port);
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    ASSERT_EQ(TLOpen(&m_system), GC_ERR_SUCCESS);
    uint32_t count = 0;
    ASSERT_EQ(TLGetNumInterfaces(m_system, &count), GC_ERR_SUCCESS);
    // The virtual interface comes first whatever the host's network looks like.
    ASSERT_EQ(count, 2u);
    char id[64];
    size_t size = sizeof(id);
    ASSERT_EQ(TLGetInterfaceID(m_system, 1, id, &size), GC_ERR_SUCCESS);
    ASSERT_EQ(std::string(id), "GEV::" + name);
    ASSERT_EQ(TLOpenInterface(m_system, id, &m_interface), GC_ERR_SUCCESS);
}

void LoopbackFixture::TearDown() {
    if (m_device)
        DevClose(m_device);
    if (m_interface)
        IFClose(m_interface);
    if (m_system)
        TLClose(m_system);
    GCCloseLib();
    OrvanTC_Reset();
}

std::string LoopbackFixture::FindBySerial(const std::string& serial, uint64_t timeoutMs) {
    EXPECT_EQ(IFUpdateDeviceList(m_interface, nullptr, timeoutMs), GC_ERR_SUCCESS);
    uint32_t count = 0;
    EXPECT_EQ(IFGetNumDevices(m_interface, &count), GC_ERR_SUCCESS);
    for (uint32_t i = 0; i < count; ++i) {
        char id[128];
        size_t size = sizeof(id);
        EXPECT_EQ(IFGetDeviceID(m_interface, i, id, &size), GC_ERR_SUCCESS);
        if (DeviceText(id, DEVICE_INFO_SERIAL_NUMBER) == serial)
            return id;
    }
    return "";
}

std::string LoopbackFixture::DeviceText(const std::string& id, DEVICE_INFO_CMD cmd) {
    INFO_DATATYPE type{};
    size_t size = 0;
    EXPECT_EQ(IFGetDeviceInfo(m_interface, id.c_str(), cmd, &type, nullptr, &size), GC_ERR_SUCCESS);
    std::vector<char> text(size + 1, '\0');
    EXPECT_EQ(IFGetDeviceInfo(m_interface, id.c_str(), cmd, &type, text.data(), &size),
              GC_ERR_SUCCESS);
    return text.data();
}

} // namespace GigeTest
