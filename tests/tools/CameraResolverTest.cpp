// Camera names as users type them, against virtual cameras whose user-defined names were set
// through their own DeviceUserID feature, as on real cameras. The names are chosen to collide
// with the other kinds of name, so that the order in which the kinds are tried shows.
#include "CameraResolver.h"
#include "ToolError.h"

#include <GenTL/OrvanTestControl.h>
#include <Orvan/OrvanApi.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Orvan::Cli::ResolveCamera;

class CameraResolver : public ::testing::Test {
protected:
    void SetUp() override {
        const std::vector<const char*> models = {"Mono", "Color", "Mono", "LineScan"};
        OrvanTC_SetVirtualCameras(models.data(), static_cast<uint32_t>(models.size()), 1);
        system = Orvan::OpenSystem();
        system->UpdateDevices(1000);
        const char* const names[] = {"dup", "dup", "0", "OV100000"};
        std::vector<Orvan::DeviceInfo> found = system->GetDevices();
        ASSERT_EQ(found.size(), 4u);
        for (size_t i = 0; i < found.size(); ++i) {
            Orvan::IDevice* device = system->CreateDevice(found[i]);
            Orvan::SetNodeValue<GenICam::gcstring>(device->GetNodeMap(), "DeviceUserID", names[i]);
            system->DestroyDevice(device);
        }
        system->UpdateDevices(1000);
        devices = system->GetDevices();
    }

    void TearDown() override {
        if (system)
            Orvan::CloseSystem(system);
        OrvanTC_Reset();
    }

    Orvan::ISystem* system = nullptr;
    std::vector<Orvan::DeviceInfo> devices;
};

TEST_F(CameraResolver, EachKindOfNameFindsItsCameraInPrecedenceOrder) {
    ASSERT_EQ(devices[2].UserDefinedName(), "0");
    EXPECT_EQ(ResolveCamera(devices, "OV100000"), 0u) << "a serial number beats a user name";
    EXPECT_EQ(ResolveCamera(devices, "0"), 2u) << "a user name beats an index";
    EXPECT_EQ(ResolveCamera(devices, devices[1].IpAddressStr().c_str()), 1u);
    EXPECT_EQ(ResolveCamera(devices, "3"), 3u);
    EXPECT_EQ(ResolveCamera(devices, devices[3].SerialNumber().c_str()), 3u);
}

TEST_F(CameraResolver, SharedOrUnknownNamesAreRefused) {
    try {
        ResolveCamera(devices, "dup");
        FAIL() << "a shared user name resolved";
    } catch (const Orvan::Cli::ToolError& e) {
        EXPECT_STREQ(e.what(),
                     "camera name 'dup' is ambiguous (2 cameras share it); use a serial number");
    }
    EXPECT_THROW(ResolveCamera(devices, "4"), Orvan::Cli::ToolError);
    EXPECT_THROW(ResolveCamera(devices, "ov100000"), Orvan::Cli::ToolError);
    EXPECT_THROW(ResolveCamera(devices, ""), Orvan::Cli::UsageError);
}

} // namespace
