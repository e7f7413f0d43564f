// The tests' own producer reached through ours, through the SDK end to end.
#include "BridgeFixture.h"

#include <GenTL/GenTL.h>

#include <cstdlib>
#include <functional>
#include <map>

using BridgeTest::BridgeFixture;
using BridgeTest::FailNext;

namespace {

constexpr uint64_t kWaitMs = 2000;

class TestProducerBridge : public BridgeFixture {
protected:
    void SetUp() override { Open("good"); }
};

TEST_F(TestProducerBridge, ListsTheForeignCamerasUnderThePrefixedInterface) {
    std::vector<Orvan::DeviceInfo> cameras = CamerasOf("TestProducer::");
    ASSERT_EQ(cameras.size(), 2u);
    for (size_t i = 0; i < cameras.size(); ++i) {
        EXPECT_EQ(cameras[i].InterfaceId(), "TestProducer::TestIF");
        EXPECT_EQ(cameras[i].DeviceId(), ("TestCam" + std::to_string(i)).c_str());
        EXPECT_EQ(cameras[i].SerialNumber(), ("TW-000" + std::to_string(i)).c_str());
        EXPECT_EQ(cameras[i].VendorName(), "TestWorks");
        // Our network items mean nothing to another maker's producer: not available.
        EXPECT_EQ(cameras[i].IpAddress(), 0u);
        EXPECT_EQ(cameras[i].MacAddress(), 0u);
    }
}

TEST_F(TestProducerBridge, FeaturesReachTheForeignCamerasRegisters) {
    Orvan::IDevice* device = OpenCamera("TestProducer::", 1);
    GenApi::INodeMap* features = device->GetNodeMap();
    Orvan::SetNodeValue<int64_t>(features, "Width", 32);
    EXPECT_EQ(Orvan::GetNodeValue<int64_t>(features, "Width"), 32);
    EXPECT_EQ(Orvan::GetNodeValue<int64_t>(features, "PayloadSize"), 32 * 48);
    EXPECT_TRUE(device->IsConnected());
}

TEST_F(TestProducerBridge, StreamsAThousandImagesWithNoneLost) {
    Orvan::IDevice* device = OpenCamera("TestProducer::");
    // The SDK asks the producer for as many images as it announces buffers.
    device->StartStream(1000);
    for (uint64_t frame = 0; frame < 1000; ++frame) {
        Orvan::IImage* image = device->GetImage(kWaitMs);
        ASSERT_EQ(image->GetFrameId(), frame);
        ASSERT_EQ(image->GetSizeFilled(), 64u * 48u);
        const uint8_t* pixels = image->GetData();
        for (size_t i = 0; i < image->GetSizeFilled(); ++i)
            ASSERT_EQ(pixels[i], uint8_t(frame + i)) << "frame " << frame << " byte " << i;
        device->RequeueBuffer(image);
    }
    device->StopStream();
}

struct FailureCase {
    const char* function;
    GenTL::GC_ERROR code;
    std::function<void(Orvan::IDevice*)> call;
};

TEST_F(TestProducerBridge, AFailedForeignCallReportsTheProducersCodeAndText) {
    const FailureCase cases[] = {
        {"GCWritePort", GenTL::GC_ERR_ACCESS_DENIED,
         [](Orvan::IDevice* d) { Orvan::SetNodeValue<int64_t>(d->GetNodeMap(), "Width", 16); }},
        {"DSStartAcquisition", GenTL::GC_ERR_BUSY, [](Orvan::IDevice* d) { d->StartStream(4); }},
    };
    Orvan::IDevice* device = OpenCamera("TestProducer::");
    for (const FailureCase& failure : cases) {
        const std::string text = std::string("test failure of ") + failure.function;
        FailNext(failure.function, failure.code, text.c_str());
        std::string message;
        try {
            failure.call(device);
        } catch (const GenICam::GenericException& error) {
            message = error.GetDescription();
        }
        EXPECT_NE(message.find(text), std::string::npos) << failure.function << ": " << message;
        GenTL::GC_ERROR code = GenTL::GC_ERR_SUCCESS;
        char last[256] = {};
        size_t size = sizeof(last);
        GenTL::GCGetLastError(&code, last, &size);
        EXPECT_EQ(code, failure.code) << failure.function;
        EXPECT_EQ(std::string(last), text);
    }
}

class MixedProducers : public BridgeFixture {
protected:
    void SetUp() override { Open("good:mixed"); }
};

TEST_F(MixedProducers, ProducersThatCannotServeAreSkippedWithTheirReason) {
    const std::map<std::string, std::string> expected = {
        {"FailsInit.cti", "GCInitLib failed with -1001: no frame grabber found"},
        {"LacksOpen.cti", "lacks the GenTL functions IFOpenDevice"},
        {"NotALibrary.cti", "not a loadable library"},
    };
    GenApi::INodeMap* node = system->GetTLSystemNodeMap();
    ASSERT_EQ(Orvan::GetNodeValue<int64_t>(node, "ProducerSkippedCount"), 3);
    for (int64_t i = 0; i < 3; ++i) {
        Orvan::SetNodeValue<int64_t>(node, "ProducerSkippedSelector", i);
        const std::string path =
            Orvan::GetNodeValue<GenICam::gcstring>(node, "ProducerSkippedPath").c_str();
        const std::string file = path.substr(path.rfind('/') + 1);
        ASSERT_EQ(expected.count(file), 1u) << path;
        EXPECT_NE(std::string(
                      Orvan::GetNodeValue<GenICam::gcstring>(node, "ProducerSkippedReason").c_str())
                      .find(expected.at(file)),
                  std::string::npos)
            << file;
    }
    EXPECT_EQ(CamerasOf("TestProducer::").size(), 2u);
}

TEST_F(MixedProducers, AProducerWithoutStreamFunctionsServesItsCamerasForControl) {
    Orvan::IDevice* device = OpenCamera("ControlOnly::");
    Orvan::SetNodeValue<int64_t>(device->GetNodeMap(), "Height", 10);
    EXPECT_EQ(Orvan::GetNodeValue<int64_t>(device->GetNodeMap(), "PayloadSize"), 64 * 10);
    EXPECT_THROW(device->StartStream(4), GenICam::GenericException);
}

TEST(ProducerPathUnderTestControl, TheEnvironmentsProducersStayOut) {
    setenv("GENICAM_GENTL64_PATH", BridgeTest::Folder("good").c_str(), 1);
    const char* models[] = {"Mono"};
    OrvanTC_SetVirtualCameras(models, 1, 1);
    Orvan::ISystem* system = Orvan::OpenSystem();
    for (const Orvan::InterfaceInfo& info : system->GetInterfaces())
        EXPECT_EQ(std::string(info.Id().c_str()).find("TestProducer"), std::string::npos);
    Orvan::CloseSystem(system);
    unsetenv("GENICAM_GENTL64_PATH");
    OrvanTC_Reset();
}

} // namespace
