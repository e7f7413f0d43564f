// The buffer life cycle: announce, queue, fill, deliver, requeue, flush, revoke, in every order,
// with the check that no buffer is ever lost or delivered twice.
#include "ProducerFixture.h"

#include <random>

using namespace GenTL;
using namespace Orvan::Producer;

namespace {

class BufferLifecycle : public StreamFixture {
protected:
    // Streams until `count` buffers wait in the output queue, then stops.
    void FillOutput(size_t count) {
        Start(count);
        for (int i = 0; i < 400 && StreamCount(STREAM_INFO_NUM_AWAIT_DELIVERY) < count; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        Stop();
        ASSERT_EQ(StreamCount(STREAM_INFO_NUM_AWAIT_DELIVERY), count);
    }
};

} // namespace

TEST_F(BufferLifecycle, CallerMemoryComesBackOnRevokeProducerMemoryDoesNot) {
    std::vector<uint8_t> memory(Camera().PayloadSize(0));
    int tag = 0;
    BUFFER_HANDLE own = nullptr, producer = nullptr;
    ASSERT_EQ(DSAnnounceBuffer(m_stream, memory.data(), memory.size(), &tag, &own), GC_ERR_SUCCESS);
    ASSERT_EQ(DSAllocAndAnnounceBuffer(m_stream, 100, &tag, &producer), GC_ERR_SUCCESS);
    EXPECT_EQ(BufferValue(own, BUFFER_INFO_BASE), reinterpret_cast<uint64_t>(memory.data()));
    EXPECT_EQ(BufferValue(own, BUFFER_INFO_SIZE), memory.size());
    EXPECT_EQ(BufferValue(producer, BUFFER_INFO_BASE) % 64, 0u) << "producer memory is aligned";
    EXPECT_EQ(DSAnnounceBuffer(m_stream, nullptr, 10, nullptr, &own), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(DSAllocAndAnnounceBuffer(m_stream, 0, nullptr, &own), GC_ERR_INVALID_PARAMETER);
    void* returnedMemory = nullptr;
    void* returnedUser = nullptr;
    ASSERT_EQ(DSRevokeBuffer(m_stream, own, &returnedMemory, &returnedUser), GC_ERR_SUCCESS);
    EXPECT_EQ(returnedMemory, memory.data());
    EXPECT_EQ(returnedUser, &tag);
    ASSERT_EQ(DSRevokeBuffer(m_stream, producer, &returnedMemory, &returnedUser), GC_ERR_SUCCESS);
    EXPECT_EQ(returnedMemory, nullptr);
    EXPECT_EQ(DSRevokeBuffer(m_stream, producer, nullptr, nullptr), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(StreamCount(STREAM_INFO_NUM_ANNOUNCED), 0u);
}

TEST_F(BufferLifecycle, QueuedBuffersCannotBeQueuedAgainOrRevoked) {
    auto buffers = AllocBuffers(2);
    QueueAll(buffers);
    EXPECT_EQ(DSQueueBuffer(m_stream, buffers[0]), GC_ERR_BUSY);
    EXPECT_EQ(DSRevokeBuffer(m_stream, buffers[0], nullptr, nullptr), GC_ERR_BUSY);
    EXPECT_TRUE(BufferFlag(buffers[0], BUFFER_INFO_IS_QUEUED));
    BUFFER_HANDLE other = nullptr;
    EXPECT_EQ(DSGetBufferID(m_stream, 2, &other), GC_ERR_INVALID_INDEX);
    ASSERT_EQ(DSGetBufferID(m_stream, 1, &other), GC_ERR_SUCCESS);
    EXPECT_EQ(other, buffers[1]);
    ASSERT_EQ(DSFlushQueue(m_stream, ACQ_QUEUE_ALL_DISCARD), GC_ERR_SUCCESS);
    EXPECT_EQ(DSRevokeBuffer(m_stream, buffers[0], nullptr, nullptr), GC_ERR_SUCCESS);
    EXPECT_EQ(DSFlushQueue(m_stream, 77), GC_ERR_INVALID_PARAMETER);
    ExpectAccounted();
}

// Each flush mode from the same starting point: two buffers in the input pool, two in the output
// queue, one held by the test, one announced but never queued.
TEST_F(BufferLifecycle, EachFlushModeMovesExactlyTheBuffersItNames) {
    struct Row {
        ACQ_QUEUE_TYPE mode;
        size_t input, output;
    };
    const Row rows[] = {{ACQ_QUEUE_INPUT_TO_OUTPUT, 0, 4},
                        {ACQ_QUEUE_OUTPUT_DISCARD, 2, 0},
                        {ACQ_QUEUE_ALL_TO_INPUT, 6, 0},
                        {ACQ_QUEUE_UNQUEUED_TO_INPUT, 4, 2},
                        {ACQ_QUEUE_ALL_DISCARD, 0, 0}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.mode);
        auto buffers = AllocBuffers(6);
        QueueAll({buffers[0], buffers[1], buffers[2]});
        FillOutput(3);
        BUFFER_HANDLE held = Take();
        QueueAll({buffers[3], buffers[4]});
        ASSERT_EQ(StreamCount(STREAM_INFO_NUM_QUEUED), 2u);
        ASSERT_EQ(DSFlushQueue(m_stream, row.mode), GC_ERR_SUCCESS);
        EXPECT_EQ(StreamCount(STREAM_INFO_NUM_QUEUED), row.input);
        EXPECT_EQ(StreamCount(STREAM_INFO_NUM_AWAIT_DELIVERY), row.output);
        if (row.mode == ACQ_QUEUE_ALL_TO_INPUT || row.mode == ACQ_QUEUE_UNQUEUED_TO_INPUT)
            m_held.erase(held); // the flush took it back
        ExpectAccounted();
        if (row.mode == ACQ_QUEUE_INPUT_TO_OUTPUT) {
            // Moved buffers arrive through the event, marked as carrying no new data.
            Take();
            Take();
            BUFFER_HANDLE moved = Take();
            EXPECT_FALSE(BufferFlag(moved, BUFFER_INFO_NEW_DATA));
        }
        ASSERT_EQ(DSFlushQueue(m_stream, ACQ_QUEUE_ALL_DISCARD), GC_ERR_SUCCESS);
        for (BUFFER_HANDLE buffer : buffers)
            ASSERT_EQ(DSRevokeBuffer(m_stream, buffer, nullptr, nullptr), GC_ERR_SUCCESS);
        m_held.clear();
    }
}

TEST_F(BufferLifecycle, TheStartCountNeverEndsAcquisitionAndRestartingResetsTheCounts) {
    QueueAll(AllocBuffers(5));
    Start(3);
    for (int i = 0; i < 5; ++i)
        Take();
    EXPECT_EQ(InfoAs<uint64_t>(DSGetInfo, m_stream, STREAM_INFO_NUM_DELIVERED), 5u);
    EXPECT_EQ(DSStartAcquisition(m_stream, ACQ_START_FLAGS_DEFAULT, 1), GC_ERR_RESOURCE_IN_USE);
    Stop();
    Stop();                      // stopping a stopped stream changes nothing
    QueueAll({*m_held.begin()}); // one buffer, so the restart delivers exactly one frame
    Start(1);
    Take();
    Stop();
    EXPECT_EQ(InfoAs<uint64_t>(DSGetInfo, m_stream, STREAM_INFO_NUM_DELIVERED), 1u);
    ExpectAccounted();
}

// Random sequences of every buffer operation, with the accounting checked whenever the stream
// is stopped. A lost or duplicated buffer shows up as a count mismatch or a double delivery.
TEST_F(BufferLifecycle, RandomSequencesNeverLoseOrDuplicateABuffer) {
    std::mt19937 random(20261122);
    std::vector<BUFFER_HANDLE> announced = AllocBuffers(4);
    bool running = false;
    for (int step = 0; step < 400; ++step) {
        switch (random() % 9) {
        case 0:
            if (!running)
                Start();
            running = true;
            break;
        case 1:
            if (running)
                Stop();
            running = false;
            ExpectAccounted();
            break;
        case 2: {
            EVENT_NEW_BUFFER_DATA data{};
            size_t size = sizeof(data);
            if (EventGetData(m_newBuffer, &data, &size, 2) == GC_ERR_SUCCESS) {
                EXPECT_TRUE(m_held.insert(data.BufferHandle).second) << "delivered twice";
            }
            break;
        }
        case 3:
            if (!m_held.empty())
                QueueAll({*m_held.begin()});
            break;
        case 4: {
            ACQ_QUEUE_TYPE mode = static_cast<ACQ_QUEUE_TYPE>(random() % 5);
            ASSERT_EQ(DSFlushQueue(m_stream, mode), GC_ERR_SUCCESS);
            if (mode == ACQ_QUEUE_ALL_TO_INPUT || mode == ACQ_QUEUE_UNQUEUED_TO_INPUT)
                m_held.clear();
            break;
        }
        case 5:
            if (!m_held.empty()) {
                BUFFER_HANDLE buffer = *m_held.begin();
                ASSERT_EQ(DSRevokeBuffer(m_stream, buffer, nullptr, nullptr), GC_ERR_SUCCESS);
                m_held.erase(buffer);
                announced.erase(std::find(announced.begin(), announced.end(), buffer));
            }
            break;
        case 6:
            if (announced.size() < 8) {
                BUFFER_HANDLE buffer = AllocBuffers(1)[0];
                announced.push_back(buffer);
                m_held.insert(buffer); // outside every queue, like a delivered one
            }
            break;
        case 7:
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 600));
            break;
        default:
            ASSERT_EQ(DSFlushQueue(m_stream, ACQ_QUEUE_UNQUEUED_TO_INPUT), GC_ERR_SUCCESS);
            m_held.clear();
            break;
        }
    }
    if (running)
        Stop();
    ExpectAccounted();
    EXPECT_EQ(StreamCount(STREAM_INFO_NUM_ANNOUNCED), announced.size());
}

TEST_F(BufferLifecycle, ClosingAStreamWithBuffersInEveryPlaceReleasesThem) {
    auto buffers = AllocBuffers(4);
    QueueAll(buffers);
    Start();
    Take();
    ASSERT_EQ(DSClose(m_stream), GC_ERR_SUCCESS); // stops the camera, frees producer memory
    uint32_t count = 0;
    EXPECT_EQ(DSGetNumFlows(m_stream, &count), GC_ERR_INVALID_HANDLE);
    OpenStream();
    EXPECT_EQ(StreamCount(STREAM_INFO_NUM_ANNOUNCED), 0u);
}
