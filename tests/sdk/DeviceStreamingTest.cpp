// End-to-end acquisition against the virtual cameras: every image arrives once, in order and
// intact, through start/stop cycles, on every transport the cameras offer.
#include "DeviceTestSupport.h"
#include "device/Device.h"

#include <GenTL/GenTLExtensions.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

using DeviceTest::DeviceFixture;
using DeviceTest::IntactFrame;
using SpineTest::Capture;

namespace {

constexpr uint64_t kWaitMs = 2000;

class Streaming : public DeviceFixture {};

// Takes `count` images and checks they are frames 1..count, each intact.
void ExpectFrames(Orvan::IDevice* device, uint64_t count) {
    for (uint64_t expected = 1; expected <= count; ++expected) {
        Orvan::IImage* image = device->GetImage(kWaitMs);
        ASSERT_EQ(IntactFrame(image), expected);
        device->RequeueBuffer(image);
    }
}

} // namespace

TEST_F(Streaming, HundredsOfImagesArriveOnceInOrderAndIntact) {
    Open({"Mono"});
    Orvan::IDevice* device = Create();
    LimitFrames(device, 300);
    device->StartStream(300);
    EXPECT_EQ(Announced(device), 300);
    EXPECT_EQ(Integer(device->GetNodeMap(), "TLParamsLocked"), 1);
    ExpectFrames(device, 300);
    EXPECT_EQ(SpineTest::Capture([&] { device->GetImage(50); }).className, "TimeoutException");
    device->StopStream();
    EXPECT_EQ(Announced(device), 0);
    EXPECT_EQ(Integer(device->GetNodeMap(), "TLParamsLocked"), 0);
}

TEST_F(Streaming, StartStopCyclesWithImagesStillHeld) {
    Open({"Mono"});
    Orvan::IDevice* device = Create();
    for (int cycle = 0; cycle < 5; ++cycle) {
        device->StartStream(20);
        std::vector<Orvan::IImage*> held;
        for (uint64_t frame = 1; frame <= 8; ++frame) {
            held.push_back(device->GetImage(kWaitMs));
            EXPECT_EQ(IntactFrame(held.back()), frame);
        }
        device->RequeueBuffer(held.front());
        device->StopStream();
        EXPECT_EQ(Announced(device), 0);
    }
    device->StartStream(3);
    ExpectFrames(device, 3);
    device->StopStream();
}

TEST_F(Streaming, MisuseIsRefusedBeforeTheProducerIsAsked) {
    Open({"Mono"});
    Orvan::IDevice* device = Create();
    EXPECT_EQ(Capture([&] { device->GetBuffer(10); }).message,
              "LogicalErrorException: Unable to get buffer data, event handle is NULL (Device, "
              "GetBuffer)");
    EXPECT_EQ(Capture([&] { device->StartStream(size_t{0}); }).message,
              "InvalidArgumentException: Number of acquisition buffers must be 1 or greater "
              "(Device, StartStream)");
    EXPECT_EQ(Announced(device), 0);
    EXPECT_EQ(Capture([&] { device->RequeueBuffer(nullptr); }).className,
              "InvalidArgumentException");
    device->StartStream(2);
    EXPECT_EQ(Capture([&] { device->StartStream(2); }).message,
              "LogicalErrorException: Stream already started (Device, StartStream)");
    Orvan::IImage* image = device->GetImage(kWaitMs);
    EXPECT_EQ(IntactFrame(image), 1u);
    device->RequeueBuffer(image);
    device->StopStream();

    Orvan::Device empty;
    EXPECT_EQ(Capture([&] { empty.StartStream(size_t{1}); }).message,
              "LogicalErrorException: Device has no available streams (Device, StartStream)");
    EXPECT_EQ(Capture([&] { empty.GetImage(1); }).message,
              "LogicalErrorException: Device has no available streams (Device, GetImage)");
}

TEST_F(Streaming, AutomaticCountCovers40MillisecondsOfThroughput) {
    Open({"Mono"});
    Orvan::IDevice* device = Create();
    // Triggered and never triggered: the camera draws nothing into the buffers.
    Orvan::SetNodeValue<GenICam::gcstring>(device->GetNodeMap(), "TriggerMode", "On");
    // 10 Gb/s for 40 ms is 50 000 000 bytes: 24 414 buffers of 2 KiB, bounded to 1000.
    device->StartStream(Orvan::kAutomaticBufferCount);
    EXPECT_EQ(Announced(device), 1000);
    device->StopStream();
    // 5 MiB buffers: nine fit into 40 ms, raised to ten.
    Orvan::SetNodeValue<int64_t>(device->GetNodeMap(), "Width", 2048);
    Orvan::SetNodeValue<int64_t>(device->GetNodeMap(), "Height", 2560);
    device->StartStream(Orvan::kAutomaticBufferCount);
    EXPECT_EQ(Announced(device), 10);
    device->StopStream();
}

TEST_F(Streaming, TcpStreamsWithJumboPacketsAndRestoresThePacketSize) {
    Open({"MultiStream"});
    Orvan::IDevice* device = Create();
    GenApi::INodeMap* nodeMap = device->GetNodeMap();
    Orvan::SetNodeValue<bool>(nodeMap, "TCPEnable", true);
    const int64_t before = Integer(nodeMap, "DeviceStreamChannelPacketSize");
    ASSERT_NE(before, 9000);
    device->StartStream(50);
    EXPECT_EQ(Orvan::GetNodeValue<GenICam::gcstring>(nodeMap, "TransportStreamProtocol"), "TCP");
    EXPECT_EQ(Integer(nodeMap, "DeviceStreamChannelPacketSize"), 9000);
    EXPECT_EQ(Announced(device, 1), 50);
    ExpectFrames(device, 50);
    device->StopStream();
    EXPECT_EQ(Integer(nodeMap, "DeviceStreamChannelPacketSize"), before);

    Orvan::SetNodeValue<bool>(nodeMap, "TCPEnable", false);
    Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "TransportStreamProtocol", "RDMA");
    device->StartStream(10);
    EXPECT_EQ(Announced(device, 2), 10);
    ExpectFrames(device, 10);
    device->StopStream();
}

TEST_F(Streaming, LineScanBuffersHoldTheRequestedNumberOfParts) {
    Open({"LineScan"});
    Orvan::IDevice* device = Create();
    GenApi::INodeMap* tlDevice = device->GetTLDeviceNodeMap();
    EXPECT_TRUE(Orvan::GetNodeValue<bool>(tlDevice, "MultipartFeaturesImplementedEnable"));
    EXPECT_EQ(device->GetTLStreamNodeMap(), device->GetTLStreamNodeMap(0));
    Orvan::SetNodeValue<bool>(tlDevice, "StreamMultipartEnable", true);
    // The switch selects the multipart stream at once, before any start.
    EXPECT_EQ(device->GetTLStreamNodeMap(), device->GetTLStreamNodeMap(4));
    GenApi::INodeMap* stream = device->GetTLStreamNodeMap(4);
    Orvan::SetNodeValue<int64_t>(stream, "StreamMultipartNumParts", 0);
    device->StartStream(4);
    EXPECT_EQ(Integer(stream, "StreamMultipartNumParts"), 1);
    device->StopStream();

    Orvan::SetNodeValue<int64_t>(stream, "StreamMultipartNumParts", 3);
    device->StartStream(4);
    uint64_t part = 1;
    for (int buffer = 0; buffer < 4; ++buffer) {
        Orvan::IImage* image = device->GetImage(kWaitMs);
        ASSERT_EQ(image->GetHeight(), 3u * 32);
        const size_t partBytes = 64 * 32;
        for (int p = 0; p < 3; ++p, ++part)
            EXPECT_TRUE(Orvan::Producer::MatchesTestPattern(
                0x01080001, 64, 32, Orvan::Producer::PatternKind::MovingDiagonal, part,
                image->GetData() + p * partBytes, partBytes));
        device->RequeueBuffer(image);
    }
    device->StopStream();
}

TEST_F(Streaming, EveryPayloadTypeReachesItsClass) {
    Open({"Compressed", "Mono"});
    Orvan::IDevice* compressed = Create(0);
    Orvan::SetNodeValue<GenICam::gcstring>(compressed->GetNodeMap(), "PixelFormat", "QOI_Mono8");
    compressed->StartStream(2);
    EXPECT_EQ(Capture([&] { compressed->GetImage(kWaitMs); }).message,
              "LogicalErrorException: Failed to cast Orvan::IBuffer* to Orvan::IImage*  (Device, "
              "GetImage)");
    Orvan::ICompressedImage* image = compressed->GetCompressedImage(kWaitMs);
    EXPECT_EQ(image->GetPayloadType(), 1001u);
    compressed->RequeueBuffer(image);
    compressed->StopStream();

    Orvan::SetNodeValue<bool>(compressed->GetNodeMap(), "ChunkModeActive", true);
    compressed->StartStream(1);
    image = compressed->GetCompressedImage(kWaitMs);
    EXPECT_EQ(image->GetPayloadType(), 1002u);
    EXPECT_NE(image->AsChunkData(), nullptr);
    compressed->RequeueBuffer(image);
    compressed->StopStream();

    Orvan::IDevice* mono = Create(1);
    Orvan::SetNodeValue<bool>(mono->GetNodeMap(), "ChunkModeActive", true);
    mono->StartStream(1);
    Orvan::IBuffer* buffer = mono->GetBuffer(kWaitMs);
    EXPECT_EQ(buffer->GetPayloadType(), 0x4001u);
    ASSERT_NE(buffer->AsImage(), nullptr);
    ASSERT_NE(buffer->AsChunkData(), nullptr);
    EXPECT_EQ(IntactFrame(buffer->AsImage()), 1u);
    mono->RequeueBuffer(buffer);
    mono->StopStream();
}

TEST(BufferCount, MemoryBoundsTheNumberOfBuffers) {
    EXPECT_EQ(Capture([] { Orvan::CalculateMaximumNumberOfBuffers(0); }).message,
              "RuntimeException: Cannot calculate maximum number of buffers with a packet size "
              "of 0 (Orvan, CalculateMaximumNumberOfBuffers)");
    EXPECT_EQ(Capture([] { Orvan::CalculateMaximumNumberOfBuffers(SIZE_MAX); }).className,
              "BadAllocException");
    const size_t small = Orvan::CalculateMaximumNumberOfBuffers(1 << 20);
    const size_t large = Orvan::CalculateMaximumNumberOfBuffers(1 << 21);
    EXPECT_GT(small, 0u);
    EXPECT_EQ(large, small / 2);
}

TEST_F(Streaming, EventSensorStreamDeliversTriggerEvents) {
    Open({"EventSensor"});
    Orvan::IDevice* device = Create();
    GenApi::INodeMap* nodeMap = device->GetNodeMap();
    Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "TriggerMode", "On");
    EXPECT_EQ(Capture([&] { device->GetNextEvsTriggerEvent(10); }).className,
              "LogicalErrorException");
    // The stream's output format follows the camera's event format at start.
    GenApi::INodeMap* streamNodeMap = device->GetTLStreamNodeMap(3);
    Orvan::SetNodeValue<GenICam::gcstring>(streamNodeMap, "StreamEvsOutputFormat", "EVT2_0");
    device->StartStream(8);
    EXPECT_EQ(Announced(device, 3), 8);
    EXPECT_EQ(Orvan::GetNodeValue<GenICam::gcstring>(streamNodeMap, "StreamEvsOutputFormat"),
              Orvan::GetNodeValue<GenICam::gcstring>(nodeMap, "EventFormat"));
    // A trigger rides on the next slice the camera can put in a buffer; with the pool full it
    // is lost, as on a real camera. So trigger until one is answered, recycling buffers
    // meanwhile: the device puts back every raw-data buffer it refuses to hand out.
    std::vector<uint8_t> trigger;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (trigger.empty() && std::chrono::steady_clock::now() < deadline) {
        Orvan::ExecuteNode(nodeMap, "TriggerSoftware");
        try {
            trigger = device->GetNextEvsTriggerEvent(kWaitMs / 20);
        } catch (const GenICam::TimeoutException&) {
        }
        try {
            device->GetBuffer(0);
        } catch (const GenICam::GenericException&) {
        }
    }
    EXPECT_EQ(trigger.size(), 16u);
    // Event data is not one of the payloads the device hands out; the buffer stays in the pool.
    EXPECT_EQ(Capture([&] { device->GetBuffer(kWaitMs); }).message,
              "LogicalErrorException: Unknown payload type (Device, GetBuffer)");
    device->StopStream();
    EXPECT_EQ(Announced(device, 3), 0);
}

TEST_F(Streaming, WaitsForTheLeaderOfTheNextFrame) {
    Open({"Mono"});
    Orvan::IDevice* device = Create();
    Orvan::SetNodeValue<bool>(device->GetNodeMap(), "AcquisitionFrameRateEnable", true);
    Orvan::SetNodeValue<double>(device->GetNodeMap(), "AcquisitionFrameRate", 100.0);
    device->StartStream(10);
    device->ResetWaitForNextLeader();
    device->WaitForNextLeader(kWaitMs);
    device->StopStream();
    // Nothing is coming any more: the wait ends in the producer's failure, translated.
    const std::string message = Capture([&] { device->WaitForNextLeader(10); }).message;
    EXPECT_NE(message.find("Wait for next leader failed (Device, WaitForNextLeader; "
                           "GenTL::DSWaitForNextLeader)"),
              std::string::npos)
        << message;
}
