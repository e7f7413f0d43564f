// Frames flowing from a camera: buffer information, chunk layout, multipart buffers, leader
// waits, buffer handling modes and the stream's vendor events.
#include "ProducerFixture.h"

#include <cstring>

using namespace GenTL;
using namespace Orvan::Producer;

namespace {

class Streaming : public ProducerFixture {
protected:
    void OpenWith(const FakeCamera::Options& options) {
        UseCameras(1, options);
        Open();
        OpenStream();
    }
    uint64_t FrameStamp(BUFFER_HANDLE buffer) {
        uint64_t stamp = 0;
        std::memcpy(&stamp, reinterpret_cast<void*>(BufferValue(buffer, BUFFER_INFO_BASE)), 8);
        return stamp;
    }
};

} // namespace

TEST_F(Streaming, FramesArriveInOrderWithTheirDescription) {
    OpenWith(FakeCamera::Options());
    QueueAll(AllocBuffers(4));
    Start();
    uint64_t lastFrame = 0;
    for (int i = 0; i < 20; ++i) {
        BUFFER_HANDLE buffer = Take();
        const uint64_t frame = BufferValue(buffer, BUFFER_INFO_FRAMEID);
        EXPECT_GT(frame, lastFrame);
        EXPECT_EQ(FrameStamp(buffer), frame) << "the buffer holds the frame it claims";
        lastFrame = frame;
        EXPECT_EQ(BufferValue(buffer, BUFFER_INFO_WIDTH), 64u);
        EXPECT_EQ(BufferValue(buffer, BUFFER_INFO_HEIGHT), 8u);
        EXPECT_EQ(BufferValue(buffer, BUFFER_INFO_SIZE_FILLED), 512u);
        EXPECT_EQ(BufferValue(buffer, BUFFER_INFO_PAYLOADTYPE), uint64_t(PAYLOAD_TYPE_IMAGE));
        EXPECT_EQ(BufferValue(buffer, BUFFER_INFO_PIXELFORMAT), 0x01080001u);
        EXPECT_NE(BufferValue(buffer, BUFFER_INFO_TIMESTAMP_NS), 0u);
        EXPECT_TRUE(BufferFlag(buffer, BUFFER_INFO_NEW_DATA));
        EXPECT_TRUE(BufferFlag(buffer, BUFFER_INFO_IMAGEPRESENT));
        EXPECT_FALSE(BufferFlag(buffer, BUFFER_INFO_IS_INCOMPLETE));
        EXPECT_FALSE(BufferFlag(buffer, BUFFER_INFO_CONTAINS_CHUNKDATA));
        int32_t endianness = 0;
        size_t size = 8; // consumers may pass a wider cell than the INT32 it is
        ASSERT_EQ(DSGetBufferInfo(m_stream, buffer, BUFFER_INFO_PIXEL_ENDIANNESS, nullptr,
                                  &endianness, &size),
                  GC_ERR_SUCCESS);
        EXPECT_EQ(endianness, PIXELENDIANNESS_LITTLE);
        uint32_t parts = 9;
        EXPECT_EQ(DSGetNumBufferParts(m_stream, buffer, &parts), GC_ERR_SUCCESS);
        EXPECT_EQ(parts, 0u);
        QueueAll({buffer});
    }
    EXPECT_GE(InfoAs<uint64_t>(DSGetInfo, m_stream, STREAM_INFO_NUM_STARTED), 20u);
    EXPECT_TRUE(InfoAs<bool8_t>(DSGetInfo, m_stream, STREAM_INFO_IS_GRABBING));
    EXPECT_EQ(StreamCount(STREAM_INFO_PAYLOAD_SIZE), 512u);
}

TEST_F(Streaming, ChunksAreFoundFromTheEndOfTheFilledData) {
    FakeCamera::Options options;
    options.chunks = true;
    OpenWith(options);
    std::vector<uint8_t> memory(Camera().PayloadSize(0));
    BUFFER_HANDLE buffer = nullptr;
    ASSERT_EQ(DSAnnounceBuffer(m_stream, memory.data(), memory.size(), nullptr, &buffer),
              GC_ERR_SUCCESS);
    QueueAll({buffer});
    Start(1);
    ASSERT_EQ(Take(), buffer);
    EXPECT_EQ(BufferValue(buffer, BUFFER_INFO_PAYLOADTYPE), 0x4001u);
    EXPECT_TRUE(BufferFlag(buffer, BUFFER_INFO_CONTAINS_CHUNKDATA));
    size_t count = 0;
    ASSERT_EQ(DSGetBufferChunkData(m_stream, buffer, nullptr, &count), GC_ERR_SUCCESS);
    ASSERT_EQ(count, 2u);
    SINGLE_CHUNK_DATA chunks[2];
    count = 1;
    EXPECT_EQ(DSGetBufferChunkData(m_stream, buffer, chunks, &count), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(count, 2u);
    ASSERT_EQ(DSGetBufferChunkData(m_stream, buffer, chunks, &count), GC_ERR_SUCCESS);
    EXPECT_EQ(chunks[0].ChunkID, FakeCamera::kImageChunkId);
    EXPECT_EQ(chunks[0].ChunkOffset, 0);
    EXPECT_EQ(chunks[0].ChunkLength, 512u);
    EXPECT_EQ(chunks[1].ChunkID, FakeCamera::kFrameIdChunkId);
    EXPECT_EQ(chunks[1].ChunkOffset, 520);
    uint64_t frameId = 0;
    std::memcpy(&frameId, memory.data() + chunks[1].ChunkOffset, 8);
    EXPECT_EQ(frameId, BufferValue(buffer, BUFFER_INFO_FRAMEID));

    memory[memory.size() - 2] = 0x7F; // the last chunk now claims more bytes than exist
    EXPECT_EQ(DSGetBufferChunkData(m_stream, buffer, chunks, &count), GC_ERR_PARSING_CHUNK_DATA);
}

TEST_F(Streaming, ChunkQueriesOnPlainImagesFindNothing) {
    OpenWith(FakeCamera::Options());
    QueueAll(AllocBuffers(1));
    Start(1);
    size_t count = 0;
    EXPECT_EQ(DSGetBufferChunkData(m_stream, Take(), nullptr, &count), GC_ERR_NO_DATA);
}

TEST_F(Streaming, MultipartBuffersDescribeEachPart) {
    FakeCamera::Options options;
    options.parts = 3;
    OpenWith(options);
    QueueAll(AllocBuffers(1));
    Start(1);
    BUFFER_HANDLE buffer = Take();
    uint32_t parts = 0;
    ASSERT_EQ(DSGetNumBufferParts(m_stream, buffer, &parts), GC_ERR_SUCCESS);
    ASSERT_EQ(parts, 3u);
    const uint64_t base = BufferValue(buffer, BUFFER_INFO_BASE);
    for (uint32_t part = 0; part < parts; ++part) {
        uint64_t partBase = 0, partSize = 0;
        size_t size = 8;
        ASSERT_EQ(DSGetBufferPartInfo(m_stream, buffer, part, BUFFER_PART_INFO_BASE, nullptr,
                                      &partBase, &size),
                  GC_ERR_SUCCESS);
        ASSERT_EQ(DSGetBufferPartInfo(m_stream, buffer, part, BUFFER_PART_INFO_DATA_SIZE, nullptr,
                                      &partSize, &size),
                  GC_ERR_SUCCESS);
        EXPECT_EQ(partBase, base + part * 512);
        EXPECT_EQ(partSize, 512u);
    }
    DS_BUFFER_PART_INFO_STACKED stacked[2] = {};
    uint64_t width = 0, bad = 0;
    stacked[0] = {1, BUFFER_PART_INFO_WIDTH, 0, 0, &width, sizeof(width)};
    stacked[1] = {3, BUFFER_PART_INFO_WIDTH, 0, 0, &bad, sizeof(bad)};
    EXPECT_EQ(DSGetBufferPartInfoStacked(m_stream, buffer, stacked, 2), GC_ERR_INVALID_INDEX);
    EXPECT_EQ(stacked[0].iResult, GC_ERR_SUCCESS);
    EXPECT_EQ(width, 64u);
    EXPECT_EQ(stacked[1].iResult, GC_ERR_INVALID_INDEX);
}

TEST_F(Streaming, ABufferTooSmallIsDeliveredMarkedIncomplete) {
    OpenWith(FakeCamera::Options());
    QueueAll(AllocBuffers(1, 100));
    Start(1);
    BUFFER_HANDLE buffer = Take();
    EXPECT_TRUE(BufferFlag(buffer, BUFFER_INFO_DATA_LARGER_THAN_BUFFER));
    EXPECT_TRUE(BufferFlag(buffer, BUFFER_INFO_IS_INCOMPLETE));
    EXPECT_EQ(BufferValue(buffer, BUFFER_INFO_DATA_SIZE), 512u);
    EXPECT_LE(BufferValue(buffer, BUFFER_INFO_SIZE_FILLED), 100u);
    DS_BUFFER_INFO_STACKED stacked[2] = {};
    uint64_t size = 0, incomplete = 0;
    stacked[0] = {BUFFER_INFO_SIZE, 0, &size, sizeof(size), 0};
    stacked[1] = {BUFFER_INFO_IS_INCOMPLETE, 0, &incomplete, sizeof(incomplete), 0};
    ASSERT_EQ(DSGetBufferInfoStacked(m_stream, buffer, stacked, 2), GC_ERR_SUCCESS);
    EXPECT_EQ(size, 100u);
    EXPECT_EQ(stacked[1].iType, INFO_DATATYPE_BOOL8);
    EXPECT_EQ(incomplete, 1u);
}

TEST_F(Streaming, LeaderWaitsSeeTheNextFrameStart) {
    OpenWith(FakeCamera::Options());
    EXPECT_EQ(DSWaitForNextLeader(m_stream, 20), GC_ERR_TIMEOUT);
    QueueAll(AllocBuffers(2));
    Start();
    EXPECT_EQ(DSWaitForNextLeader(m_stream, 2000), GC_ERR_SUCCESS);
    ASSERT_EQ(DSStopAcquisition(m_stream, ACQ_STOP_FLAGS_KILL), GC_ERR_SUCCESS);
    EXPECT_EQ(DSResetWaitForNextLeader(m_stream), GC_ERR_SUCCESS);
    EXPECT_EQ(DSWaitForNextLeader(m_stream, 20), GC_ERR_TIMEOUT) << "the old leader is forgotten";
}

TEST_F(Streaming, WithoutQueuedBuffersFramesAreCountedLost) {
    OpenWith(FakeCamera::Options());
    Start();
    for (int i = 0; i < 200; ++i) {
        if (InfoAs<uint64_t>(DSGetInfo, m_stream, STREAM_INFO_NUM_UNDERRUN) > 0)
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    ADD_FAILURE() << "no lost frame was counted";
}

TEST_F(Streaming, VendorStreamEventsReachTheirRegisteredEvent) {
    OpenWith(FakeCamera::Options());
    EVENT_HANDLE trigger = nullptr;
    ASSERT_EQ(GCRegisterEvent(m_stream, EVENT_ORVAN_EVS_TRIGGER, &trigger), GC_ERR_SUCCESS);
    Start();
    Camera().SendStreamEvent(0, EVENT_ORVAN_EVS_TRIGGER, {1, 2, 3, 4});
    uint8_t data[16];
    size_t size = sizeof(data);
    ASSERT_EQ(EventGetData(trigger, data, &size, 1000), GC_ERR_SUCCESS);
    ASSERT_EQ(size, 4u);
    EXPECT_EQ(data[3], 4);
}
