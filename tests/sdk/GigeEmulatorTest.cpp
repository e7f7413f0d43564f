// The SDK on our own GigE Vision camera emulator over loopback: long streams through packet
// loss (multipart ones too), camera events, action commands and a camera that drops off the network
// and returns.
#include "DeviceTestSupport.h"
#include "EmulatedCamera.h"
#include "GigeTestSupport.h"

#include <GenApi/NodeCallback.h>
#include <Orvan/IDisconnectCallback.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

using DeviceTest::IntactFrame;
using Orvan::Emulator::EmulatedCamera;
using Orvan::Emulator::EmulatorOptions;
using namespace std::chrono_literals;

namespace {

constexpr uint64_t kWaitMs = 5000;

class Disconnects : public Orvan::IDisconnectCallback {
public:
    void OnDeviceDisconnected(Orvan::IDevice* device) override {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_states.push_back(device->IsConnected());
        m_changed.notify_all();
    }
    std::vector<bool> WaitFor(size_t count, std::chrono::milliseconds limit) {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait_for(lock, limit, [&] { return m_states.size() >= count; });
        return m_states;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<bool> m_states;
};

class SdkOnEmulator : public ::testing::Test {
protected:
    // Starts the emulated camera on a free loopback port and opens it through the SDK with
    // small, quick frames.
    void OpenCamera(const EmulatorOptions& base) {
        EmulatorOptions options = base;
        options.port = 0;
        camera = std::make_unique<EmulatedCamera>(options);
        ASSERT_TRUE(camera->Start()) << camera->Error();
        GigeTest::UseLoopbackOnly(camera->ControlEndpoint().port);
        system = Orvan::OpenSystem();
        system->UpdateDevices(300);
        std::vector<Orvan::DeviceInfo> devices = system->GetDevices();
        const std::string serial = camera->Identity().serialNumber;
        auto found = std::find_if(devices.begin(), devices.end(), [&](const auto& info) {
            return serial == info.SerialNumber().c_str();
        });
        ASSERT_NE(found, devices.end());
        device = system->CreateDevice(*found);
        nodes = device->GetNodeMap();
        Orvan::SetNodeValue<int64_t>(nodes, "Width", 64);
        Orvan::SetNodeValue<int64_t>(nodes, "Height", 32);
        Orvan::SetNodeValue<double>(nodes, "ExposureTime", 100.0);
    }

    void TearDown() override {
        if (device)
            system->DestroyDevice(device);
        if (system)
            Orvan::CloseSystem(system);
        OrvanTC_Reset();
    }

    int64_t StreamValue(const char* name) {
        return Orvan::GetNodeValue<int64_t>(device->GetTLStreamNodeMap(), name);
    }

    std::unique_ptr<EmulatedCamera> camera;
    Orvan::ISystem* system = nullptr;
    Orvan::IDevice* device = nullptr;
    GenApi::INodeMap* nodes = nullptr;
};

class LossyLink : public SdkOnEmulator, public ::testing::WithParamInterface<double> {};

} // namespace

TEST_P(LossyLink, AThousandImagesArriveIntactAndInOrderWithLostPacketsResent) {
    EmulatorOptions options;
    options.packetLossPercent = GetParam();
    options.seed = 11;
    OpenCamera(options);
    EXPECT_EQ(Orvan::GetNodeValue<int64_t>(nodes, "Width"), 64);
    // A paced camera and a second of buffers: checking an image costs a sanitized debug build
    // milliseconds, and a busy machine may stall the test for a while.
    Orvan::SetNodeValue<GenICam::gcstring>(nodes, "AcquisitionMode", "MultiFrame");
    Orvan::SetNodeValue<int64_t>(nodes, "AcquisitionFrameCount", 1000);
    Orvan::SetNodeValue<bool>(nodes, "AcquisitionFrameRateEnable", true);
    Orvan::SetNodeValue<double>(nodes, "AcquisitionFrameRate", 150.0);
    device->StartStream(150);
    uint64_t first = 0;
    for (uint64_t i = 0; i < 1000; ++i) {
        Orvan::IImage* image = device->GetImage(kWaitMs);
        const uint64_t frame = IntactFrame(image);
        ASSERT_NE(frame, 0u) << "image " << i << " damaged";
        if (i == 0)
            first = frame;
        ASSERT_EQ(frame, first + i) << "an image was lost";
        device->RequeueBuffer(image);
    }
    device->StopStream();
    EXPECT_EQ(StreamValue("StreamLostFrameCount"), 0);
    EXPECT_EQ(StreamValue("StreamIncompleteFrameCount"), 0);
    if (GetParam() > 0)
        EXPECT_GT(StreamValue("StreamResentPacketCount"), 0);
    else
        EXPECT_EQ(StreamValue("StreamResendRequestCount"), 0);
}

// The line-scan camera's multipart stream stacks three frames a buffer, sent as multi-part
// blocks; a path of standard Ethernet frames splits every part over two packets.
TEST_P(LossyLink, MultipartBuffersStackIntactFrames) {
    EmulatorOptions options;
    options.model = "LineScan";
    options.packetLossPercent = GetParam();
    options.seed = 9;
    options.maxPacketSize = 1500;
    OpenCamera(options);
    Orvan::SetNodeValue<bool>(nodes, "AcquisitionFrameRateEnable", true);
    Orvan::SetNodeValue<double>(nodes, "AcquisitionFrameRate", 300.0);
    Orvan::SetNodeValue<bool>(device->GetTLDeviceNodeMap(), "StreamMultipartEnable", true);
    Orvan::SetNodeValue<int64_t>(device->GetTLStreamNodeMap(), "StreamMultipartNumParts", 3);
    device->StartStream(64);
    constexpr size_t kPart = 64 * 32;
    uint64_t next = 0;
    for (int buffer = 0; buffer < 100; ++buffer) {
        Orvan::IImage* image = device->GetImage(kWaitMs);
        ASSERT_EQ(image->GetHeight(), 3u * 32);
        for (size_t part = 0; part < 3; ++part) {
            const uint8_t* data = image->GetData() + part * kPart;
            const uint64_t stamp = Orvan::Producer::ReadFrameStamp(data, kPart);
            next = next == 0 ? stamp : next;
            ASSERT_EQ(stamp, next++) << "a frame was lost";
            ASSERT_TRUE(Orvan::Producer::MatchesTestPattern(
                0x01080001, 64, 32, Orvan::Producer::PatternKind::MovingDiagonal, stamp, data,
                kPart))
                << "buffer " << buffer << " part " << part << " damaged";
        }
        device->RequeueBuffer(image);
    }
    device->StopStream();
    EXPECT_EQ(StreamValue("StreamIncompleteFrameCount"), 0);
    EXPECT_EQ(StreamValue("StreamResentPacketCount") > 0, GetParam() > 0);
}

INSTANTIATE_TEST_SUITE_P(Loss, LossyLink, ::testing::Values(0.0, 1.0, 5.0));

TEST_F(SdkOnEmulator, CameraEventsReachTheirNodes) {
    OpenCamera({});
    Orvan::SetNodeValue<GenICam::gcstring>(nodes, "EventSelector", "ExposureEnd");
    Orvan::SetNodeValue<GenICam::gcstring>(nodes, "EventNotification", "On");
    struct Counter {
        void OnNode(GenApi::INode*) { ++fired; }
        std::atomic<int> fired{0};
    } counter;
    GenApi::CallbackHandleType handle =
        GenApi::Register(nodes->GetNode("EventExposureEndFrameID"), counter, &Counter::OnNode);
    device->InitializeEvents();
    device->StartStream(4);
    int64_t previous = 0;
    for (int i = 0; i < 3; ++i) {
        device->WaitOnEvent(kWaitMs);
        const int64_t frame = Orvan::GetNodeValue<int64_t>(nodes, "EventExposureEndFrameID");
        EXPECT_GT(frame, previous);
        previous = frame;
    }
    EXPECT_GE(counter.fired.load(), 3);
    device->StopStream();
    device->DeinitializeEvents();
    GenApi::Deregister(handle);
}

TEST_F(SdkOnEmulator, AnActionCommandActsOnlyWithMatchingKeys) {
    OpenCamera({});
    // The device key stays at its power-on value 0.
    Orvan::SetNodeValue<int64_t>(nodes, "ActionGroupKey", 0x10);
    Orvan::SetNodeValue<int64_t>(nodes, "ActionGroupMask", 0x3);
    device->SendActionCommand(0, 0x10, 0x1, 0);
    const auto deadline = std::chrono::steady_clock::now() + 3s;
    while (camera->ActionsExecuted() == 0 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(10ms);
    EXPECT_EQ(camera->ActionsExecuted(), 1u);
    // Meant for another group: the camera neither acts nor answers.
    EXPECT_THROW(device->SendActionCommand(0, 0x20, 0x1, 0), GenICam::TimeoutException);
    EXPECT_EQ(camera->ActionsExecuted(), 1u);
}

TEST_F(SdkOnEmulator, ALostCameraIsReportedAndItsReturnToo) {
    EmulatorOptions options;
    options.heartbeatTimeoutMs = 1000;
    OpenCamera(options);
    Disconnects disconnects;
    system->RegisterDeviceDisconnectCallback(device, &disconnects);
    camera->Stop();
    EXPECT_EQ(disconnects.WaitFor(1, 4s), std::vector<bool>{false});
    ASSERT_TRUE(camera->Start()) << camera->Error();
    system->UpdateDevices(300);
    EXPECT_EQ(disconnects.WaitFor(2, 4s), (std::vector<bool>{false, true}));
    EXPECT_TRUE(device->IsConnected());
    EXPECT_EQ(Orvan::GetNodeValue<int64_t>(nodes, "Width"), 64);
    system->DeregisterDeviceDisconnectCallback(&disconnects);
}
