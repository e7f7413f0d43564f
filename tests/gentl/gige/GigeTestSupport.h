// Opens the producer with network discovery confined to loopback, and finds cameras there
// through the GenTL calls.
#ifndef ORVAN_TESTS_GENTL_GIGE_GIGETESTSUPPORT_H
#define ORVAN_TESTS_GENTL_GIGE_GIGETESTSUPPORT_H

#include <GenTL/GenTL.h>
#include <GenTL/GenTLExtensions.h>
#include <GenTL/OrvanTestControl.h>

#include <gtest/gtest.h>

#include <string>

namespace GigeTest {

// No virtual cameras; GigE Vision on one host interface only, cameras addressed on `port`
// (0: 3956).
inline void UseInterfaceOnly(const char* name, uint32_t port) {
    OrvanTC_Reset();
    OrvanTC_SetVirtualCameras(nullptr, 0, 1);
    OrvanTC_EnableGigE(1);
    OrvanTC_SetGigEDiscovery(name, port);
}
inline void UseLoopbackOnly(uint32_t port) {
    UseInterfaceOnly("lo", port);
}

class LoopbackFixture : public ::testing::Test {
protected:
    // GCInitLib, TLOpen and the loopback interface (GEV::lo), or another host interface.
    void OpenLoopback(uint32_t port) { OpenInterface("lo", port); }
    void OpenInterface(const std::string& name, uint32_t port);
    void TearDown() override;

    // Refreshes the device list and returns the id of the device with that serial number, or
    // "" when none answered.
    std::string FindBySerial(const std::string& serial, uint64_t timeoutMs = 1000);
    std::string DeviceText(const std::string& id, GenTL::DEVICE_INFO_CMD cmd);
    template <typename T>
    T DeviceValue(const std::string& id, GenTL::DEVICE_INFO_CMD cmd) {
        T value{};
        GenTL::INFO_DATATYPE type{};
        size_t size = sizeof(value);
        EXPECT_EQ(GenTL::IFGetDeviceInfo(m_interface, id.c_str(), cmd, &type, &value, &size),
                  GenTL::GC_ERR_SUCCESS);
        return value;
    }

    GenTL::TL_HANDLE m_system = nullptr;
    GenTL::IF_HANDLE m_interface = nullptr;
    GenTL::DEV_HANDLE m_device = nullptr;
};

} // namespace GigeTest

#endif
