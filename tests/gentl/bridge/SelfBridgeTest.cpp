// This project's producer loaded a second time, as another producer: every call the SDK makes
// must come through the bridge with the same result as on the camera reached directly.
#include "BridgeFixture.h"

using BridgeTest::BridgeFixture;

namespace {

constexpr uint64_t kWaitMs = 5000;
const char* const kMono[] = {"Mono"};

class SelfBridge : public BridgeFixture {
protected:
    void SetUp() override {
        // The copy is configured through its own test control before ours loads it.
        m_copy =
            dlopen((BridgeTest::Folder("self") + "/OrvanCopy.cti").c_str(), RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(m_copy, nullptr) << dlerror();
        CopyControl<int32_t (*)(const char* const*, uint32_t, uint32_t)>(
            "OrvanTC_SetVirtualCameras")(kMono, 1, 1);
        Open("self", {kMono[0]});
    }
    void TearDown() override {
        BridgeFixture::TearDown();
        CopyControl<int32_t (*)()>("OrvanTC_Reset")();
        dlclose(m_copy);
    }

    template <typename Function>
    Function CopyControl(const char* name) {
        return reinterpret_cast<Function>(dlsym(m_copy, name));
    }

    std::string DirectPrefix() { return system->GetInterfaces().at(0).Id().c_str(); }

private:
    void* m_copy = nullptr;
};

TEST_F(SelfBridge, ACopyIsAnotherProducerAndALinkIsOurselves) {
    std::vector<std::string> ids;
    for (const Orvan::InterfaceInfo& info : system->GetInterfaces())
        ids.push_back(info.Id().c_str());
    ASSERT_EQ(ids.size(), 2u);
    EXPECT_EQ(ids[1], "OrvanCopy::" + ids[0]);
    EXPECT_EQ(Orvan::GetNodeValue<int64_t>(system->GetTLSystemNodeMap(), "ProducerSkippedCount"),
              0);
}

TEST_F(SelfBridge, TheBridgedCameraReportsWhatTheDirectOneReports) {
    const Orvan::DeviceInfo direct = CamerasOf(DirectPrefix()).at(0);
    const Orvan::DeviceInfo bridged = CamerasOf("OrvanCopy::").at(0);
    EXPECT_EQ(bridged.DeviceId(), direct.DeviceId());
    EXPECT_EQ(bridged.SerialNumber(), direct.SerialNumber());
    EXPECT_EQ(bridged.ModelName(), direct.ModelName());
    EXPECT_EQ(bridged.DeviceVersion(), direct.DeviceVersion());
    // Custom items reach a producer of ours.
    EXPECT_EQ(bridged.IpAddress(), direct.IpAddress());
    EXPECT_EQ(bridged.MacAddress(), direct.MacAddress());
    EXPECT_EQ(bridged.SubnetMask(), direct.SubnetMask());
    EXPECT_EQ(bridged.IsLLAConfigurationEnabled(), direct.IsLLAConfigurationEnabled());
    EXPECT_EQ(bridged.InterfaceMacAddress(), direct.InterfaceMacAddress());
}

// The two are the same camera model with the same ids: each must reach its own camera.
TEST_F(SelfBridge, BridgedAndDirectCamerasStreamSideBySide) {
    Orvan::IDevice* direct = OpenCamera(DirectPrefix());
    Orvan::IDevice* bridged = OpenCamera("OrvanCopy::");
    Orvan::SetNodeValue<int64_t>(direct->GetNodeMap(), "Width", 640);
    Orvan::SetNodeValue<int64_t>(bridged->GetNodeMap(), "Width", 320);
    direct->StartStream(4);
    bridged->StartStream(4);
    for (uint64_t frame = 0; frame < 20; ++frame) {
        for (auto [device, width] : {std::pair{direct, 640u}, std::pair{bridged, 320u}}) {
            Orvan::IImage* image = device->GetImage(kWaitMs);
            EXPECT_EQ(image->GetWidth(), width);
            EXPECT_FALSE(image->IsIncomplete());
            device->RequeueBuffer(image);
        }
    }
    direct->StopStream();
    bridged->StopStream();
}

TEST_F(SelfBridge, AnUnplugReachesTheSdkThroughTheBridge) {
    const Orvan::DeviceInfo info = CamerasOf("OrvanCopy::").at(0);
    Orvan::IDevice* device = OpenCamera("OrvanCopy::");
    EXPECT_TRUE(device->IsConnected());
    CopyControl<int32_t (*)(const char*, int32_t)>("OrvanTC_SetDeviceConnected")(
        info.DeviceId().c_str(), 0);
    EXPECT_FALSE(device->IsConnected());
}

} // namespace
