#include "CameraTestSupport.h"

#include "QoiCodec.h"
#include "virtual/CameraFeatures.h"
#include "virtual/Crc32.h"
#include "virtual/TestPattern.h"
#include "virtual/VirtualPixelFormats.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <thread>

namespace {

using namespace CameraTest;
using namespace Orvan::Producer;
using namespace GenTL;
using namespace std::chrono_literals;

constexpr auto kWait = 5s;

// A camera with a small, fast picture, and a stream sink sized for it.
struct Rig {
    explicit Rig(const std::string& model, size_t buffers = 4, uint32_t stream = 0)
        : camera(MakeCamera(model)), f(*camera), stream(stream) {
        EXPECT_EQ(f.SetInt("Width", 64), GC_ERR_SUCCESS);
        EXPECT_EQ(f.SetInt("Height", 32), GC_ERR_SUCCESS);
        EXPECT_EQ(f.SetFloat("ExposureTime", 100), GC_ERR_SUCCESS);
        bufferCount = buffers;
    }
    ~Rig() { camera->StopStream(stream); }

    void Start(size_t bufferSize = 0, uint64_t maxFrames = GENTL_INFINITE) {
        sink = std::make_unique<FakeFrameSink>(
            bufferCount, bufferSize ? bufferSize : camera->PayloadSize(stream));
        ASSERT_EQ(camera->StartStream(stream, sink.get(), maxFrames), GC_ERR_SUCCESS);
    }
    // Starts the stream, takes one frame and stops again.
    DeliveredFrame Shot(size_t bufferSize = 0) {
        Start(bufferSize);
        Acquire("SingleFrame");
        const auto frames = sink->WaitFrames(1, kWait);
        camera->StopStream(stream);
        EXPECT_EQ(frames.size(), 1u);
        return frames.empty() ? DeliveredFrame{} : frames[0];
    }
    void Acquire(const char* mode, int64_t frames = 1) {
        ASSERT_EQ(f.SetEnum("AcquisitionMode", mode), GC_ERR_SUCCESS);
        ASSERT_EQ(f.SetInt("AcquisitionFrameCount", frames), GC_ERR_SUCCESS);
        ASSERT_EQ(f.Execute("AcquisitionStart"), GC_ERR_SUCCESS);
    }
    void Rate(double fps) {
        ASSERT_EQ(f.SetInt("AcquisitionFrameRateEnable", 1), GC_ERR_SUCCESS);
        ASSERT_EQ(f.SetFloat("AcquisitionFrameRate", fps), GC_ERR_SUCCESS);
    }
    void EnableChunks(const std::vector<std::string>& chunks) {
        ASSERT_EQ(f.SetInt("ChunkModeActive", 1), GC_ERR_SUCCESS);
        for (const std::string& chunk : f.Entries("ChunkSelector")) {
            ASSERT_EQ(f.SetEnum("ChunkSelector", chunk), GC_ERR_SUCCESS);
            const bool on = std::find(chunks.begin(), chunks.end(), chunk) != chunks.end();
            ASSERT_EQ(f.SetInt("ChunkEnable", on), GC_ERR_SUCCESS);
        }
    }

    std::unique_ptr<VirtualCamera> camera;
    Features f;
    uint32_t stream;
    size_t bufferCount;
    std::unique_ptr<FakeFrameSink> sink;
};

bool MatchesPicture(const DeliveredFrame& frame, uint32_t format, PatternKind kind,
                    uint64_t stamp) {
    return MatchesTestPattern(format, uint32_t(frame.info.width), uint32_t(frame.info.height), kind,
                              stamp, frame.bytes.data(), frame.bytes.size());
}

std::map<uint32_t, std::vector<uint8_t>> ChunksById(const DeliveredFrame& frame) {
    std::map<uint32_t, std::vector<uint8_t>> chunks;
    for (const ParsedChunk& c : ParseChunks(frame.bytes))
        chunks[c.id].assign(frame.bytes.begin() + c.offset,
                            frame.bytes.begin() + c.offset + c.length);
    return chunks;
}

uint64_t ChunkValue(const std::map<uint32_t, std::vector<uint8_t>>& chunks, Chunk chunk) {
    const std::vector<uint8_t>& data = chunks.at(ChunkInfoOf(chunk).id);
    return BigEndian(data.data(), data.size());
}

double AsDouble(uint64_t bits) {
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

TEST(CameraAcquisition, FramesArriveInOrderWithTheirPictures) {
    Rig rig("Mono");
    rig.Rate(500);
    rig.Start();
    rig.Acquire("MultiFrame", 20);
    auto frames = rig.sink->WaitFrames(20, kWait);
    ASSERT_EQ(frames.size(), 20u);
    for (size_t i = 0; i < frames.size(); ++i) {
        const FrameInfo& info = frames[i].info;
        EXPECT_EQ(info.frameId, i + 1);
        EXPECT_EQ(ReadFrameStamp(frames[i].bytes.data(), frames[i].bytes.size()), i + 1);
        EXPECT_TRUE(MatchesPicture(frames[i], 0x01080001, PatternKind::MovingDiagonal, i + 1));
        EXPECT_EQ(info.payloadType, 1);
        EXPECT_EQ(info.sizeFilled, 64u * 32);
        EXPECT_FALSE(info.incomplete);
        if (i > 0) { // 500 frames per second: 2 ms apart, give or take the scheduler
            EXPECT_GE(info.timestampNs - frames[i - 1].info.timestampNs, 1900000u);
        }
    }
    EXPECT_GE(rig.sink->Leaders(), 20u);
    std::this_thread::sleep_for(30ms);
    EXPECT_EQ(rig.sink->Frames().size(), 20u) << "MultiFrame ends by itself";

    rig.Acquire("MultiFrame", 5);
    frames = rig.sink->WaitFrames(25, kWait);
    ASSERT_EQ(frames.size(), 25u);
    EXPECT_EQ(frames.back().info.frameId, 25u);
}

TEST(CameraAcquisition, DeliveredFramesFillExactlyThePayloadSize) {
    const std::vector<std::vector<std::string>> chunkSets = {
        {},
        {"Image", "CRC", "Width", "Height", "OffsetX", "OffsetY", "PixelFormat", "ExposureTime",
         "Gain", "Timestamp", "FrameID"},
        {"Image", "CRC"},
        {"CRC", "FrameID", "Timestamp"}};
    for (const char* model : {"Mono", "Color", "LineScan", "MultiStream", "Compressed"}) {
        Rig rig(model, 1);
        for (const std::string& format : rig.f.Entries("PixelFormat")) {
            for (size_t set = 0; set < chunkSets.size(); ++set) {
                SCOPED_TRACE(std::string(model) + " " + format + " chunks " + std::to_string(set));
                ASSERT_EQ(rig.f.SetEnum("PixelFormat", format), GC_ERR_SUCCESS);
                if (set == 0)
                    ASSERT_EQ(rig.f.SetInt("ChunkModeActive", 0), GC_ERR_SUCCESS);
                else
                    rig.EnableChunks(chunkSets[set]);
                const uint64_t payload = uint64_t(rig.f.Int("PayloadSize"));
                ASSERT_EQ(payload, rig.camera->PayloadSize(0));
                const DeliveredFrame frame = rig.Shot(payload);
                const FrameInfo& info = frame.info;
                EXPECT_FALSE(info.incomplete);
                EXPECT_FALSE(info.dataLargerThanBuffer);
                const bool compressed = format.rfind("QOI", 0) == 0;
                if (compressed) {
                    EXPECT_LE(info.sizeFilled, payload);
                } else {
                    EXPECT_EQ(info.sizeFilled, payload);
                }
                const int32_t expectedType = set == 0   ? (compressed ? 1001 : 1)
                                             : set == 3 ? 4
                                                        : (compressed ? 1002 : 0x4001);
                EXPECT_EQ(info.payloadType, expectedType);
                EXPECT_EQ(info.containsChunkData, set != 0);
                if (set == 0 && !compressed) {
                    EXPECT_TRUE(MatchesPicture(frame, uint32_t(info.pixelFormat),
                                               PatternKind::MovingDiagonal, 1));
                }
            }
        }
    }
}

TEST(CameraAcquisition, ChunksCarryTheFrameFacts) {
    Rig rig("Mono", 1);
    ASSERT_EQ(rig.f.SetEnum("PixelFormat", "Mono12p"), GC_ERR_SUCCESS);
    ASSERT_EQ(rig.f.SetInt("Height", 33), GC_ERR_SUCCESS);
    ASSERT_EQ(rig.f.SetInt("OffsetX", 8), GC_ERR_SUCCESS);
    ASSERT_EQ(rig.f.SetInt("OffsetY", 4), GC_ERR_SUCCESS);
    ASSERT_EQ(rig.f.SetFloat("ExposureTime", 250), GC_ERR_SUCCESS);
    ASSERT_EQ(rig.f.SetFloat("Gain", 6), GC_ERR_SUCCESS);
    rig.EnableChunks({"Image", "CRC", "Width", "Height", "OffsetX", "OffsetY", "PixelFormat",
                      "ExposureTime", "Gain", "Timestamp", "FrameID"});
    const DeliveredFrame frame = rig.Shot();
    const auto parsed = ParseChunks(frame.bytes);
    ASSERT_EQ(parsed.size(), 11u);
    const size_t imageBytes = 64 * 33 * 12 / 8;
    EXPECT_EQ(parsed[0].id, 1u);
    EXPECT_EQ(parsed[0].offset, 0u);
    EXPECT_EQ(parsed[0].length, (imageBytes + 3) / 4 * 4);
    const auto chunks = ChunksById(frame);
    EXPECT_EQ(ChunkValue(chunks, Chunk::CRC), Crc32(frame.bytes.data(), imageBytes));
    EXPECT_EQ(ChunkValue(chunks, Chunk::Width), 64u);
    EXPECT_EQ(ChunkValue(chunks, Chunk::Height), 33u);
    EXPECT_EQ(ChunkValue(chunks, Chunk::OffsetX), 8u);
    EXPECT_EQ(ChunkValue(chunks, Chunk::OffsetY), 4u);
    EXPECT_EQ(ChunkValue(chunks, Chunk::PixelFormat), 0x010C0047u);
    EXPECT_EQ(AsDouble(ChunkValue(chunks, Chunk::ExposureTime)), 250.0);
    EXPECT_EQ(AsDouble(ChunkValue(chunks, Chunk::Gain)), 6.0);
    EXPECT_EQ(ChunkValue(chunks, Chunk::Timestamp), frame.info.timestampNs);
    EXPECT_EQ(ChunkValue(chunks, Chunk::FrameID), frame.info.frameId);
    EXPECT_TRUE(MatchesTestPattern(0x010C0047, 64, 33, PatternKind::MovingDiagonal, 1,
                                   frame.bytes.data(),
                                   ImageBytes(*FindVirtualPixelFormat(0x010C0047u), 64, 33)));

    // Without the image chunk the payload is chunk data alone, and there is no CRC to carry.
    rig.EnableChunks({"FrameID", "CRC"});
    const DeliveredFrame chunksOnly = rig.Shot();
    EXPECT_EQ(chunksOnly.info.payloadType, 4);
    EXPECT_FALSE(chunksOnly.info.imagePresent);
    const auto only = ParseChunks(chunksOnly.bytes);
    ASSERT_EQ(only.size(), 1u);
    EXPECT_EQ(only[0].id, ChunkInfoOf(Chunk::FrameID).id);
}

TEST(CameraAcquisition, CompressedPayloadsDecodeToThePicture) {
    Rig rig("Compressed", 1);
    for (const char* format : {"QOI_Mono8", "QOI_RGB8"}) {
        for (bool chunks : {false, true}) {
            SCOPED_TRACE(std::string(format) + (chunks ? " with chunks" : ""));
            ASSERT_EQ(rig.f.SetEnum("PixelFormat", format), GC_ERR_SUCCESS);
            if (chunks)
                rig.EnableChunks({"Image", "CRC"});
            else
                ASSERT_EQ(rig.f.SetInt("ChunkModeActive", 0), GC_ERR_SUCCESS);
            const DeliveredFrame frame = rig.Shot();
            EXPECT_EQ(frame.info.payloadType, chunks ? 1002 : 1001);
            size_t streamBytes = frame.bytes.size();
            if (chunks) {
                const auto parsed = ParseChunks(frame.bytes);
                ASSERT_EQ(parsed.size(), 2u);
                const auto crc = BigEndian(frame.bytes.data() + parsed[1].offset, 4);
                // The stream ends where the CRC matches; padding follows it.
                streamBytes = parsed[0].length;
                while (streamBytes > 0 && Crc32(frame.bytes.data(), streamBytes) != crc)
                    --streamBytes;
                ASSERT_GT(streamBytes, parsed[0].length - 4);
            }
            const uint32_t channels = std::string(format) == "QOI_Mono8" ? 1 : 3;
            std::vector<uint8_t> pixels;
            uint32_t width = 0, height = 0;
            ASSERT_TRUE(Orvan::DecodeQoiAs(frame.bytes.data(), streamBytes, channels, pixels, width,
                                           height));
            EXPECT_EQ(width, 64u);
            EXPECT_EQ(height, 32u);
            EXPECT_TRUE(MatchesTestPattern(channels == 1 ? 0x01080001 : 0x02180014, width, height,
                                           PatternKind::MovingDiagonal, 1, pixels.data(),
                                           pixels.size()));
        }
    }
}

TEST(CameraAcquisition, TriggersStartOneFrameEach) {
    Rig rig("Mono");
    ASSERT_EQ(rig.f.SetEnum("TriggerMode", "On"), GC_ERR_SUCCESS);
    ASSERT_EQ(rig.f.Execute("TriggerSoftware"), GC_ERR_SUCCESS); // not acquiring: ignored
    rig.Start();
    rig.Acquire("Continuous");
    std::this_thread::sleep_for(30ms);
    EXPECT_TRUE(rig.sink->Frames().empty());
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(rig.f.Execute("TriggerSoftware"), GC_ERR_SUCCESS);
    EXPECT_EQ(rig.sink->WaitFrames(3, kWait).size(), 3u);

    // Action commands trigger only when their keys match and the source is an action.
    ASSERT_EQ(rig.f.SetInt("ActionDeviceKey", 0x1234), GC_ERR_SUCCESS);
    ASSERT_EQ(rig.f.SetInt("ActionGroupKey", 7), GC_ERR_SUCCESS);
    ASSERT_EQ(rig.f.SetInt("ActionGroupMask", 0x3), GC_ERR_SUCCESS);
    ASSERT_EQ(rig.camera->ActionCommand(0x1234, 7, 0x1, 0), GC_ERR_SUCCESS); // source: software
    ASSERT_EQ(rig.f.SetEnum("TriggerSource", "Action1"), GC_ERR_SUCCESS);
    ASSERT_EQ(rig.camera->ActionCommand(0x1235, 7, 0x1, 0), GC_ERR_SUCCESS);
    ASSERT_EQ(rig.camera->ActionCommand(0x1234, 7, 0x4, 0), GC_ERR_SUCCESS);
    ASSERT_EQ(rig.f.Execute("TriggerSoftware"), GC_ERR_SUCCESS);
    std::this_thread::sleep_for(30ms);
    EXPECT_EQ(rig.sink->Frames().size(), 3u);
    ASSERT_EQ(rig.camera->ActionCommand(0x1234, 7, 0x2, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(rig.sink->WaitFrames(4, kWait).size(), 4u);
}

TEST(CameraAcquisition, SingleFrameAndStreamLimitsEndTheFlow) {
    Rig rig("Mono");
    rig.Start();
    rig.Acquire("SingleFrame");
    EXPECT_EQ(rig.sink->WaitFrames(1, kWait).size(), 1u);
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(rig.sink->Frames().size(), 1u);
    rig.camera->StopStream(0);

    rig.Rate(2000);
    rig.Start(0, 3); // the stream itself accepts three frames
    rig.Acquire("Continuous");
    EXPECT_EQ(rig.sink->WaitFrames(3, kWait).size(), 3u);
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(rig.sink->Frames().size(), 3u);
}

TEST(CameraAcquisition, EventsReportFrameStartAndExposureEnd) {
    Rig rig("Mono");
    FakeEventSink events;
    rig.camera->SetEventSink(&events);
    for (const char* event : {"ExposureEnd", "FrameStart"}) {
        ASSERT_EQ(rig.f.SetEnum("EventSelector", event), GC_ERR_SUCCESS);
        ASSERT_EQ(rig.f.SetEnum("EventNotification", "On"), GC_ERR_SUCCESS);
    }
    rig.Rate(200);
    rig.Start();
    rig.Acquire("MultiFrame", 2);
    const auto messages = events.WaitMessages(4, kWait);
    ASSERT_EQ(messages.size(), 4u);
    struct Parsed {
        uint16_t id;
        uint64_t timestamp, frameId;
    };
    std::vector<Parsed> parsed;
    for (const auto& m : messages) {
        ASSERT_EQ(m.size(), 8u + 16 + 8);
        EXPECT_EQ(m[0], 0x42);
        EXPECT_EQ(BigEndian(&m[2], 2), 0x00C2u);
        parsed.push_back(
            {uint16_t(BigEndian(&m[10], 2)), BigEndian(&m[16], 8), BigEndian(&m[24], 8)});
    }
    const uint16_t start = EventIdOf(CameraEvent::FrameStart);
    const uint16_t end = EventIdOf(CameraEvent::ExposureEnd);
    for (size_t frame = 0; frame < 2; ++frame) {
        EXPECT_EQ(parsed[2 * frame].id, start);
        EXPECT_EQ(parsed[2 * frame + 1].id, end);
        EXPECT_EQ(parsed[2 * frame].frameId, frame + 1);
        EXPECT_EQ(parsed[2 * frame + 1].timestamp - parsed[2 * frame].timestamp, 100000u);
    }
    const auto frames = rig.sink->WaitFrames(2, kWait);
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(parsed[0].timestamp, frames[0].info.timestampNs);

    ASSERT_EQ(rig.f.SetEnum("EventNotification", "Off"), GC_ERR_SUCCESS); // FrameStart
    rig.Acquire("MultiFrame", 1);
    ASSERT_EQ(rig.sink->WaitFrames(3, kWait).size(), 3u);
    const auto after = events.WaitMessages(6, 50ms);
    ASSERT_EQ(after.size(), 5u);
    EXPECT_EQ(BigEndian(&after[4][10], 2), end);
    rig.camera->SetEventSink(nullptr);
}

TEST(CameraAcquisition, InjectedFaultsSpoilTheNextFrames) {
    Rig rig("Mono");
    rig.EnableChunks({"Image", "CRC", "FrameID"});
    rig.Rate(500);
    rig.camera->InjectFrameFault(FrameFault::Drop, 1);
    rig.camera->InjectFrameFault(FrameFault::Corrupt, 1);
    rig.camera->InjectFrameFault(FrameFault::Incomplete, 1);
    rig.Start();
    rig.Acquire("MultiFrame", 4);
    const auto frames = rig.sink->WaitFrames(3, kWait);
    ASSERT_EQ(frames.size(), 3u);
    EXPECT_EQ(rig.sink->Lost(), 1u);
    EXPECT_EQ(frames[0].info.frameId, 2u);
    const size_t imageBytes = 64 * 32;
    const auto crc = ChunkValue(ChunksById(frames[0]), Chunk::CRC);
    EXPECT_NE(crc, Crc32(frames[0].bytes.data(), imageBytes));
    EXPECT_TRUE(frames[1].info.incomplete);
    EXPECT_LT(frames[1].info.sizeFilled, rig.camera->PayloadSize(0));
    EXPECT_FALSE(frames[2].info.incomplete);
    EXPECT_EQ(ChunkValue(ChunksById(frames[2]), Chunk::CRC),
              Crc32(frames[2].bytes.data(), imageBytes));
}

TEST(CameraAcquisition, FramesWithoutAQueuedBufferAreLost) {
    Rig rig("Mono", 1);
    rig.Rate(1000);
    rig.Start();
    rig.sink->HoldBuffers(true);
    rig.Acquire("MultiFrame", 3);
    ASSERT_EQ(rig.sink->WaitFrames(1, kWait).size(), 1u);
    for (int i = 0; i < 500 && rig.sink->Lost() < 2; ++i)
        std::this_thread::sleep_for(2ms);
    EXPECT_EQ(rig.sink->Lost(), 2u);
    EXPECT_EQ(rig.sink->Frames().size(), 1u);
}

TEST(CameraAcquisition, TooSmallBuffersAreFilledAndFlagged) {
    Rig rig("Mono");
    const DeliveredFrame frame = rig.Shot(1000);
    EXPECT_TRUE(frame.info.dataLargerThanBuffer);
    EXPECT_TRUE(frame.info.incomplete);
    EXPECT_EQ(frame.info.sizeFilled, 1000u);
}

TEST(CameraAcquisition, DisconnectEndsEverySinkCall) {
    Rig rig("Mono");
    rig.Rate(1000);
    rig.Start();
    rig.Acquire("Continuous");
    ASSERT_GE(rig.sink->WaitFrames(3, kWait).size(), 3u);
    rig.camera->SetConnected(false);
    const size_t calls = rig.sink->Calls();
    std::this_thread::sleep_for(30ms);
    EXPECT_EQ(rig.sink->Calls(), calls);
    EXPECT_EQ(rig.f.Execute("AcquisitionStart"), GC_ERR_IO);

    rig.camera->SetConnected(true); // the camera comes back idle
    std::this_thread::sleep_for(10ms);
    EXPECT_EQ(rig.sink->Calls(), calls);
    const size_t delivered = rig.sink->Frames().size();
    ASSERT_EQ(rig.f.Execute("AcquisitionStart"), GC_ERR_SUCCESS);
    EXPECT_GE(rig.sink->WaitFrames(delivered + 2, kWait).size(), delivered + 2);
}

TEST(CameraAcquisition, DisconnectAbandonsAFrameBeingExposed) {
    Rig rig("Mono");
    ASSERT_EQ(rig.f.SetFloat("ExposureTime", 500000), GC_ERR_SUCCESS);
    rig.Start();
    rig.Acquire("Continuous");
    for (int i = 0; i < 1000 && rig.sink->Leaders() == 0; ++i)
        std::this_thread::sleep_for(1ms);
    ASSERT_EQ(rig.sink->Leaders(), 1u);
    const auto before = std::chrono::steady_clock::now();
    rig.camera->SetConnected(false);
    EXPECT_LT(std::chrono::steady_clock::now() - before, 200ms);
    std::this_thread::sleep_for(20ms);
    EXPECT_TRUE(rig.sink->Frames().empty());
}

TEST(CameraAcquisition, StopStreamEndsEverySinkCall) {
    Rig rig("Mono");
    rig.Rate(2000);
    rig.Start();
    FakeFrameSink other(1, 4096);
    EXPECT_EQ(rig.camera->StartStream(0, &other, GENTL_INFINITE), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(rig.camera->StartStream(1, &other, GENTL_INFINITE), GC_ERR_INVALID_PARAMETER);
    rig.Acquire("Continuous");
    ASSERT_GE(rig.sink->WaitFrames(2, kWait).size(), 2u);
    rig.camera->StopStream(0);
    const size_t calls = rig.sink->Calls();
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(rig.sink->Calls(), calls);
    EXPECT_EQ(rig.camera->StartStream(0, &other, GENTL_INFINITE), GC_ERR_SUCCESS);
    EXPECT_GE(other.WaitFrames(1, kWait).size(), 1u);
    rig.camera->StopStream(0);
}

// Register traffic, disconnects and stream restarts from several threads at once: the camera
// must neither deadlock nor hand a sink a frame larger than its buffer.
TEST(CameraAcquisition, ConcurrentControlWhileStreaming) {
    Rig rig("Mono", 3);
    rig.Rate(2000);
    const size_t bufferSize = 64 * 64 * 2 + 256;
    std::atomic<bool> run{true};
    std::thread settings([&] {
        for (int i = 0; run; ++i) {
            rig.f.SetInt("Height", 16 + (i % 48));
            rig.f.SetEnum("PixelFormat", i % 2 ? "Mono16" : "Mono8");
            rig.f.SetInt("ChunkModeActive", i % 3 == 0);
            rig.f.Execute(i % 5 ? "AcquisitionStart" : "AcquisitionStop");
            rig.f.Execute("TriggerSoftware");
        }
    });
    std::thread link([&] {
        for (int i = 0; run; ++i) {
            rig.camera->SetConnected(i % 4 != 0);
            rig.camera->InjectFrameFault(FrameFault::Corrupt, 1);
            std::this_thread::sleep_for(1ms);
        }
        rig.camera->SetConnected(true);
    });
    FakeEventSink events;
    rig.camera->SetEventSink(&events);
    for (int round = 0; round < 20; ++round) {
        FakeFrameSink sink(3, bufferSize);
        const bool started = rig.camera->StartStream(0, &sink, GENTL_INFINITE) == GC_ERR_SUCCESS;
        std::this_thread::sleep_for(5ms);
        if (started)
            rig.camera->StopStream(0);
        for (const DeliveredFrame& frame : sink.Frames())
            EXPECT_LE(frame.info.sizeFilled, bufferSize);
    }
    run = false;
    settings.join();
    link.join();
    rig.camera->SetEventSink(nullptr);

    // Nothing is left stuck: the camera streams as before.
    ASSERT_EQ(rig.f.SetInt("ChunkModeActive", 0), GC_ERR_SUCCESS);
    rig.Start();
    rig.Acquire("MultiFrame", 2);
    EXPECT_EQ(rig.sink->WaitFrames(2, kWait).size(), 2u);
}

TEST(CameraAcquisition, MirroredPicturesAreThePictureMirrored) {
    Rig rig("Mono");
    ASSERT_EQ(rig.f.SetEnum("PixelFormat", "Mono16"), GC_ERR_SUCCESS);
    ASSERT_EQ(rig.f.SetInt("ReverseX", 1), GC_ERR_SUCCESS);
    ASSERT_EQ(rig.f.SetInt("ReverseY", 1), GC_ERR_SUCCESS);
    DeliveredFrame frame = rig.Shot();
    std::vector<uint8_t>& bytes = frame.bytes;
    ASSERT_EQ(bytes.size(), 64u * 32 * 2);
    EXPECT_FALSE(MatchesPicture(frame, 0x01100007, PatternKind::MovingDiagonal, 1));
    std::vector<uint8_t> restored(bytes.size());
    for (size_t y = 0; y < 32; ++y)
        for (size_t x = 0; x < 64; ++x)
            std::memcpy(&restored[(y * 64 + x) * 2], &bytes[((31 - y) * 64 + (63 - x)) * 2], 2);
    bytes = restored;
    EXPECT_TRUE(MatchesPicture(frame, 0x01100007, PatternKind::MovingDiagonal, 1));
}

TEST(CameraAcquisition, OnlyTheSelectedTransportCarriesFrames) {
    auto camera = MakeCamera("MultiStream");
    Features f(*camera);
    ASSERT_EQ(f.SetInt("Width", 64), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetInt("Height", 32), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetEnum("TransportStreamProtocol", "RDMA"), GC_ERR_SUCCESS);
    std::vector<std::unique_ptr<FakeFrameSink>> sinks;
    for (uint32_t i = 0; i < 3; ++i) {
        sinks.push_back(std::make_unique<FakeFrameSink>(2, camera->PayloadSize(i)));
        ASSERT_EQ(camera->StartStream(i, sinks[i].get(), GENTL_INFINITE), GC_ERR_SUCCESS);
    }
    ASSERT_EQ(f.SetEnum("AcquisitionMode", "SingleFrame"), GC_ERR_SUCCESS);
    ASSERT_EQ(f.Execute("AcquisitionStart"), GC_ERR_SUCCESS);
    EXPECT_EQ(sinks[2]->WaitFrames(1, kWait).size(), 1u);
    std::this_thread::sleep_for(20ms);
    EXPECT_TRUE(sinks[0]->Frames().empty());
    EXPECT_TRUE(sinks[1]->Frames().empty());
    for (uint32_t i = 0; i < 3; ++i)
        camera->StopStream(i);
}

TEST(CameraAcquisition, EventSensorStreamsRateControlledEvt3Slices) {
    Rig rig("EventSensor", 4, 3);
    ASSERT_EQ(rig.f.SetFloat("ExposureTime", 10), GC_ERR_SUCCESS);
    ASSERT_EQ(rig.f.SetInt("Width", 1280), GC_ERR_SUCCESS);
    ASSERT_EQ(rig.f.SetInt("Height", 720), GC_ERR_SUCCESS);
    rig.Rate(10000); // slices of 100 us
    auto countPixelEvents = [](const DeliveredFrame& frame) {
        size_t events = 0;
        for (size_t i = 0; i + 1 < frame.bytes.size(); i += 2)
            events += (frame.bytes[i + 1] >> 4) == 0x2; // EVT_ADDR_X
        return events;
    };
    rig.Start();
    rig.Acquire("SingleFrame");
    auto frames = rig.sink->WaitFrames(1, kWait);
    ASSERT_EQ(frames.size(), 1u);
    EXPECT_EQ(frames[0].info.payloadType, 2);
    EXPECT_EQ(frames[0].bytes[1] >> 4, 0x8); // EVT_TIME_HIGH first
    EXPECT_EQ(countPixelEvents(frames[0]), 720u);

    ASSERT_EQ(rig.f.SetInt("ErcEnable", 1), GC_ERR_SUCCESS);
    ASSERT_EQ(rig.f.SetFloat("ErcRateLimit", 1), GC_ERR_SUCCESS); // 100 events per slice
    rig.Acquire("SingleFrame");
    frames = rig.sink->WaitFrames(2, kWait);
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(countPixelEvents(frames[1]), 100u);

    rig.Acquire("Continuous");
    ASSERT_EQ(rig.f.Execute("TriggerSoftware"), GC_ERR_SUCCESS);
    for (int i = 0; i < 500 && rig.sink->StreamEvents() == 0; ++i)
        std::this_thread::sleep_for(2ms);
    EXPECT_EQ(rig.sink->StreamEvents(), 1u);
    ASSERT_EQ(rig.f.Execute("AcquisitionStop"), GC_ERR_SUCCESS);
}

} // namespace
