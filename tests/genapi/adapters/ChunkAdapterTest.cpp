// Chunk adapters against a GigE Vision camera description of the corpus whose chunk ports
// carry their IDs in hexadecimal, with buffers laid out as the camera sends them.
#include "AdapterTestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace GenApi;
using namespace AdapterTest;

namespace {

const char kCamera[] = "basler_aca1920-40gm_ace_gige.xml";
constexpr uint32_t kImageChunk = 0x9efc2cdb;
constexpr uint32_t kTimestampChunk = 0xc91613db;
constexpr uint32_t kFrameCounterChunk = 0x8c0f1cd8;
const char kInvalidLayout[] = "Invalid layout of buffer attached to chunk parser!";

// The image chunk carries the stride, then offsets and size as 16-bit pairs (high half first).
std::vector<uint8_t> ImageChunk(uint32_t width, uint32_t height) {
    std::vector<uint8_t> data = LittleEndianBytes(width, 4);
    PutLittleEndian(data, 5u << 16 | 6u, 4);
    PutLittleEndian(data, width << 16 | height, 4);
    PutLittleEndian(data, 0, 4);
    return data;
}

std::vector<uint8_t> FrameBuffer(bool bigEndianTags, uint64_t timestamp, uint32_t frame) {
    ChunkBuffer buffer(bigEndianTags);
    buffer.Add(kImageChunk, ImageChunk(1920, 1080))
        .Add(kTimestampChunk, LittleEndianBytes(timestamp, 8))
        .Add(kFrameCounterChunk, LittleEndianBytes(frame, 4));
    return buffer.Bytes();
}

void ExpectRejected(CChunkAdapter& adapter, std::vector<uint8_t> bytes, const char* what) {
    SCOPED_TRACE(what);
    auto length = static_cast<int64_t>(bytes.size());
    EXPECT_FALSE(adapter.CheckBufferLayout(bytes.data(), length));
    try {
        adapter.AttachBuffer(bytes.data(), length);
        ADD_FAILURE() << "accepted";
    } catch (const GenICam::RuntimeException& e) {
        EXPECT_THAT(e.GetDescription(), testing::HasSubstr(kInvalidLayout));
    }
}

class ChunkAdapterGEVTest : public testing::Test {
protected:
    MapPtr m_map = LoadCorpus(kCamera);
    CChunkAdapterGEV m_adapter{m_map.get()};
};

TEST_F(ChunkAdapterGEVTest, ChunkFeaturesFollowEachAttachedBuffer) {
    EXPECT_FALSE(Readable(*m_map, "ChunkTimestamp"));
    CallbackCounter fired;
    fired.RegisterOn(*m_map, "ChunkFramecounter");

    auto first = FrameBuffer(true, 0x1122334455667788, 41);
    AttachStatistics_t statistics{};
    m_adapter.AttachBuffer(first.data(), static_cast<int64_t>(first.size()), &statistics);
    EXPECT_EQ(statistics.NumChunkPorts, 17);
    EXPECT_EQ(statistics.NumChunks, 3);
    EXPECT_EQ(statistics.NumAttachedChunks, 3);
    EXPECT_EQ(fired.count, 1);
    EXPECT_EQ(IntValue(*m_map, "ChunkTimestamp"), 0x1122334455667788);
    EXPECT_EQ(IntValue(*m_map, "ChunkFramecounter"), 41);
    EXPECT_EQ(IntValue(*m_map, "ChunkWidth"), 1920);
    EXPECT_EQ(IntValue(*m_map, "ChunkHeight"), 1080);
    EXPECT_EQ(IntValue(*m_map, "ChunkOffsetX"), 5);

    // The values above are cached by their registers; the next buffer must replace them, and a
    // chunk it lacks makes its features unavailable. An unknown chunk is counted, not bound.
    ChunkBuffer second(true);
    second.Add(0x12345678, {1, 2, 3, 4}).Add(kFrameCounterChunk, LittleEndianBytes(42, 4));
    m_adapter.AttachBuffer(second.Bytes().data(), static_cast<int64_t>(second.Bytes().size()),
                           &statistics);
    EXPECT_EQ(statistics.NumChunks, 2);
    EXPECT_EQ(statistics.NumAttachedChunks, 1);
    EXPECT_EQ(fired.count, 2);
    EXPECT_EQ(IntValue(*m_map, "ChunkFramecounter"), 42);
    EXPECT_FALSE(Readable(*m_map, "ChunkTimestamp"));
    EXPECT_FALSE(Readable(*m_map, "ChunkWidth"));

    m_adapter.DetachBuffer();
    EXPECT_FALSE(Readable(*m_map, "ChunkFramecounter"));
}

TEST_F(ChunkAdapterGEVTest, RejectsInvalidLayoutsAndKeepsThePreviousBuffer) {
    auto good = FrameBuffer(true, 1, 7);
    EXPECT_TRUE(m_adapter.CheckBufferLayout(good.data(), static_cast<int64_t>(good.size())));
    m_adapter.AttachBuffer(good.data(), static_cast<int64_t>(good.size()));

    auto truncated = good;
    truncated.erase(truncated.begin(), truncated.begin() + 2);
    ExpectRejected(m_adapter, truncated, "first chunk cut short");

    auto leftover = good;
    leftover.insert(leftover.begin(), {0xAA, 0xBB, 0xCC});
    ExpectRejected(m_adapter, leftover, "bytes before the first chunk");

    ChunkBuffer overlapping(true);
    overlapping.Add(kFrameCounterChunk, LittleEndianBytes(3, 4)).Tag(kTimestampChunk, 16);
    ExpectRejected(m_adapter, overlapping.Bytes(), "chunk reaching over the one before it");

    ChunkBuffer shortTag(true);
    shortTag.Add(kFrameCounterChunk, LittleEndianBytes(3, 4));
    shortTag.Bytes().erase(shortTag.Bytes().begin(), shortTag.Bytes().begin() + 6);
    ExpectRejected(m_adapter, shortTag.Bytes(), "less than a tag");

    ExpectRejected(m_adapter, {}, "zero-length buffer");
    EXPECT_FALSE(m_adapter.CheckBufferLayout(nullptr, 16));
    EXPECT_THROW(m_adapter.AttachBuffer(good.data(), -8), GenICam::RuntimeException);

    EXPECT_EQ(IntValue(*m_map, "ChunkFramecounter"), 7);
}

// An attach swaps all ports under the node map's lock: a reader on another thread sees one
// buffer or the other, never a port in between.
TEST_F(ChunkAdapterGEVTest, ReadersOnOtherThreadsSeeWholeBuffers) {
    auto first = FrameBuffer(true, 1, 41);
    auto second = FrameBuffer(true, 2, 42);
    m_adapter.AttachBuffer(first.data(), static_cast<int64_t>(first.size()));
    std::atomic<bool> done{false};
    std::thread reader([&] {
        while (!done) {
            int64_t frame = IntValue(*m_map, "ChunkFramecounter");
            if (frame != 41 && frame != 42)
                ADD_FAILURE() << frame;
        }
    });
    for (int i = 0; i < 2000; ++i) {
        auto& buffer = i % 2 ? first : second;
        m_adapter.AttachBuffer(buffer.data(), static_cast<int64_t>(buffer.size()));
    }
    done = true;
    reader.join();
}

TEST(ChunkAdapterU3VTest, ReadsLittleEndianTagsOnly) {
    MapPtr map = LoadCorpus(kCamera);
    CChunkAdapterU3V adapter(map.get());
    auto littleEndian = FrameBuffer(false, 99, 12);
    adapter.AttachBuffer(littleEndian.data(), static_cast<int64_t>(littleEndian.size()));
    EXPECT_EQ(IntValue(*map, "ChunkFramecounter"), 12);
    EXPECT_EQ(IntValue(*map, "ChunkTimestamp"), 99);

    ExpectRejected(adapter, FrameBuffer(true, 99, 12), "GigE Vision tags");
    CChunkAdapterGEV gev(map.get());
    EXPECT_FALSE(
        gev.CheckBufferLayout(littleEndian.data(), static_cast<int64_t>(littleEndian.size())));
}

TEST(ChunkAdapterGenericTest, BindsTheChunksTheTransportLayerLocated) {
    MapPtr map = LoadCorpus(kCamera);
    CChunkAdapterGeneric adapter(map.get());
    std::vector<uint8_t> buffer(32, 0);
    buffer[4] = 0x2A;
    buffer[16] = 0x10;
    buffer[17] = 0x20;

    SingleChunkData_t chunks[] = {{kFrameCounterChunk, 4, 4}, {kTimestampChunk, 16, 8}};
    AttachStatistics_t statistics{};
    adapter.AttachBuffer(buffer.data(), chunks, 2, &statistics);
    EXPECT_EQ(statistics.NumAttachedChunks, 2);
    EXPECT_EQ(IntValue(*map, "ChunkFramecounter"), 0x2A);
    EXPECT_EQ(IntValue(*map, "ChunkTimestamp"), 0x2010);

    SingleChunkDataStr_t named[] = {{"8C0F1CD8", 16, 4}, {"not hex", 0, 4}};
    adapter.AttachBuffer(buffer.data(), named, 2, &statistics);
    EXPECT_EQ(statistics.NumChunks, 2);
    EXPECT_EQ(statistics.NumAttachedChunks, 1);
    EXPECT_EQ(IntValue(*map, "ChunkFramecounter"), 0x2010);

    SingleChunkData_t before[] = {{kFrameCounterChunk, -4, 4}};
    EXPECT_THROW(adapter.AttachBuffer(buffer.data(), before, 1), GenICam::RuntimeException);
    EXPECT_THROW(adapter.AttachBuffer(buffer.data(), chunks, -1), GenICam::RuntimeException);
    ExpectRejected(adapter, buffer, "a bare buffer");
}

// No corpus description asks for cached chunks, so this one does.
const char kCachingDescription[] = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Chunks" VendorName="Test" StandardNameSpace="None"
    SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0"
    MajorVersion="1" MinorVersion="0" SubMinorVersion="0" ToolTip="" ProductGuid="" VersionGuid=""
    xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Port Name="CachedPort"><ChunkID>A1</ChunkID><CacheChunkData>Yes</CacheChunkData></Port>
  <Port Name="ViewPort"><ChunkID>0xA2</ChunkID></Port>
  <IntReg Name="Cached"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode>
    <pPort>CachedPort</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <IntReg Name="View"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode>
    <pPort>ViewPort</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
</RegisterDescription>
)";

std::vector<uint8_t> CachingBuffer(uint32_t cached, uint32_t view) {
    ChunkBuffer buffer(true);
    buffer.Add(0xA1, LittleEndianBytes(cached, 4)).Add(0xA2, LittleEndianBytes(view, 4));
    return buffer.Bytes();
}

// The camera fills the same memory again.
void Refill(std::vector<uint8_t>& buffer, uint32_t cached, uint32_t view) {
    auto bytes = CachingBuffer(cached, view);
    std::copy(bytes.begin(), bytes.end(), buffer.begin());
}

TEST(ChunkAdapterCacheTest, CachedChunksAreCopiesThatOutliveTheBuffer) {
    MapPtr map = LoadXml(kCachingDescription);
    CChunkAdapterGEV adapter(map.get());
    auto buffer = CachingBuffer(1, 2);
    adapter.AttachBuffer(buffer.data(), static_cast<int64_t>(buffer.size()));
    Refill(buffer, 10, 20);
    EXPECT_EQ(IntValue(*map, "Cached"), 1);
    EXPECT_EQ(IntValue(*map, "View"), 20);

    auto moved = CachingBuffer(100, 200);
    adapter.UpdateBuffer(moved.data());
    EXPECT_EQ(IntValue(*map, "View"), 200);
    EXPECT_EQ(IntValue(*map, "Cached"), 1);

    adapter.DetachBuffer();
    EXPECT_FALSE(Readable(*map, "View"));
    EXPECT_EQ(IntValue(*map, "Cached"), 1);
    adapter.ClearCaches();
    EXPECT_FALSE(Readable(*map, "Cached"));
}

TEST(ChunkAdapterCacheTest, ChunksLongerThanTheCacheLimitAreNotCopied) {
    MapPtr map = LoadXml(kCachingDescription);
    CChunkAdapterGEV adapter(map.get(), 2);
    auto buffer = CachingBuffer(1, 2);
    adapter.AttachBuffer(buffer.data(), static_cast<int64_t>(buffer.size()));
    Refill(buffer, 10, 20);
    EXPECT_EQ(IntValue(*map, "Cached"), 10);
}

} // namespace
