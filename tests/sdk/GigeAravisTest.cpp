// The SDK on Debian's Aravis camera emulator over loopback: discovery, features through the
// camera's own description, and a long stream checked image by image.
#include "AravisFakeCamera.h"
#include "GigeTestSupport.h"

#include <GenApi/GenApi.h>
#include <Orvan/OrvanApi.h>
#include <gtest/gtest.h>

#include <algorithm>

using GigeTest::AravisFakeCamera;

namespace {

const char* const kSerial = "ORVSDK01";
constexpr int kImages = 1000;

class SdkOnAravis : public ::testing::Test {
protected:
    void TearDown() override {
        if (device)
            system->DestroyDevice(device);
        if (system)
            Orvan::CloseSystem(system);
        OrvanTC_Reset();
    }

    Orvan::ISystem* system = nullptr;
    Orvan::IDevice* device = nullptr;
};

} // namespace

TEST_F(SdkOnAravis, FeaturesAndAThousandImagesWithNoneLostOrDamaged) {
    AravisFakeCamera camera(kSerial);
    if (!camera.Running())
        GTEST_SKIP() << "Another emulator kept GVCP port 3956 of 127.0.0.1 busy";
    GigeTest::UseLoopbackOnly(0);
    system = Orvan::OpenSystem();
    system->UpdateDevices(1000);

    std::vector<Orvan::InterfaceInfo> interfaces = system->GetInterfaces();
    ASSERT_EQ(interfaces.size(), 2u);
    EXPECT_EQ(interfaces[1].Id(), "GEV::lo");
    EXPECT_EQ(interfaces[1].IpAddressStr(), "127.0.0.1");
    EXPECT_EQ(interfaces[1].SubnetMaskStr(), "255.0.0.0");

    std::vector<Orvan::DeviceInfo> devices = system->GetDevices();
    auto found = std::find_if(devices.begin(), devices.end(), [](const Orvan::DeviceInfo& info) {
        return info.SerialNumber() == kSerial;
    });
    ASSERT_NE(found, devices.end());
    EXPECT_EQ(found->IpAddressStr(), "127.0.0.1");
    device = system->CreateDevice(*found);

    GenApi::INodeMap* nodes = device->GetNodeMap();
    Orvan::SetNodeValue<int64_t>(nodes, "Width", 128);
    Orvan::SetNodeValue<int64_t>(nodes, "Height", 64);
    EXPECT_EQ(Orvan::GetNodeValue<int64_t>(nodes, "Width"), 128);
    EXPECT_EQ(Orvan::GetNodeValue<int64_t>(nodes, "Height"), 64);
    EXPECT_EQ(
        Orvan::GetNodeValue<GenICam::gcstring>(device->GetTLDeviceNodeMap(), "DeviceSerialNumber"),
        kSerial);
    auto* rate = dynamic_cast<GenApi::IFloat*>(nodes->GetNode("AcquisitionFrameRate"));
    ASSERT_NE(rate, nullptr);
    // Paced, with 0.4 s of buffers: a busy machine may stall the test for a while.
    rate->SetValue(std::min(rate->GetMax(), 250.0));

    device->StartStream(); // the automatic count, on a camera that states no throughput
    int64_t first = -1;
    for (int i = 0; i < kImages; ++i) {
        Orvan::IImage* image = device->GetImage(5000);
        ASSERT_EQ(image->GetWidth(), 128u);
        ASSERT_EQ(image->GetHeight(), 64u);
        const size_t size = 128 * 64;
        const int64_t frame = AravisFakeCamera::IntactFrame(image->GetData(), size);
        ASSERT_GE(frame, 0) << "image " << i << " damaged";
        if (first < 0)
            first = frame;
        ASSERT_EQ(frame, first + i) << "an image was lost";
        device->RequeueBuffer(image);
    }
    device->StopStream();
    GenApi::INodeMap* stream = device->GetTLStreamNodeMap();
    EXPECT_EQ(Orvan::GetNodeValue<int64_t>(stream, "StreamLostFrameCount"), 0);
    EXPECT_EQ(Orvan::GetNodeValue<int64_t>(stream, "StreamIncompleteFrameCount"), 0);
    EXPECT_GE(Orvan::GetNodeValue<int64_t>(stream, "StreamReceivedPacketCount"), kImages);
}
