// Event waits: timeouts, EventKill from another thread, aborts by stop and unregistration,
// flushing, event information, and the camera's own events.
#include "ProducerFixture.h"

#include <thread>

using namespace GenTL;
using namespace Orvan::Producer;

namespace {

class Events : public StreamFixture {
protected:
    // Runs EventGetData on another thread and returns its result once `action` has run. The
    // action follows the waiter's start after a pause long enough for it to be blocked.
    GC_ERROR WaitWhile(EVENT_HANDLE event, const std::function<void()>& action) {
        GC_ERROR result = GC_ERR_SUCCESS;
        std::atomic<bool> started{false};
        std::thread waiter([&] {
            EVENT_NEW_BUFFER_DATA data{};
            size_t size = sizeof(data);
            started = true;
            result = EventGetData(event, &data, &size, 10000);
        });
        while (!started)
            std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        action();
        waiter.join();
        return result;
    }
};

} // namespace

TEST_F(Events, AnIdleWaitTimesOutAfterItsTimeout) {
    EVENT_NEW_BUFFER_DATA data{};
    size_t size = sizeof(data);
    auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(EventGetData(m_newBuffer, &data, &size, 50), GC_ERR_TIMEOUT);
    auto elapsed = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(elapsed, std::chrono::milliseconds(50));
    EXPECT_LT(elapsed, std::chrono::seconds(5));
    EXPECT_EQ(EventGetData(m_newBuffer, &data, &size, 0), GC_ERR_TIMEOUT);
}

TEST_F(Events, EventKillFromAnotherThreadAbortsTheWait) {
    EXPECT_EQ(WaitWhile(m_newBuffer, [&] { EXPECT_EQ(EventKill(m_newBuffer), GC_ERR_SUCCESS); }),
              GC_ERR_ABORT);
    // A kill with nobody waiting ends the next wait that would block.
    ASSERT_EQ(EventKill(m_newBuffer), GC_ERR_SUCCESS);
    EVENT_NEW_BUFFER_DATA data{};
    size_t size = sizeof(data);
    EXPECT_EQ(EventGetData(m_newBuffer, &data, &size, GENTL_INFINITE), GC_ERR_ABORT);
    EXPECT_EQ(EventGetData(m_newBuffer, &data, &size, 10), GC_ERR_TIMEOUT);
}

TEST_F(Events, StoppingAcquisitionAbortsAWaitingConsumer) {
    Start();
    EXPECT_EQ(WaitWhile(m_newBuffer,
                        [&] {
                            EXPECT_EQ(DSStopAcquisition(m_stream, ACQ_STOP_FLAGS_DEFAULT),
                                      GC_ERR_SUCCESS);
                        }),
              GC_ERR_ABORT);
}

TEST_F(Events, UnregisteringAbortsTheWaitAndInvalidatesTheHandle) {
    EVENT_HANDLE event = m_newBuffer;
    EXPECT_EQ(WaitWhile(event,
                        [&] {
                            EXPECT_EQ(GCUnregisterEvent(m_stream, EVENT_NEW_BUFFER),
                                      GC_ERR_SUCCESS);
                        }),
              GC_ERR_ABORT);
    EXPECT_EQ(EventFlush(event), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(GCUnregisterEvent(m_stream, EVENT_NEW_BUFFER), GC_ERR_NOT_AVAILABLE);
}

TEST_F(Events, RegistrationIsOncePerTypeAndOnlyForSignalledTypes) {
    EVENT_HANDLE event = nullptr;
    EXPECT_EQ(GCRegisterEvent(m_stream, EVENT_NEW_BUFFER, &event), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(GCRegisterEvent(m_stream, EVENT_FEATURE_CHANGE, &event), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(GCRegisterEvent(m_device, EVENT_NEW_BUFFER, &event), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(GCRegisterEvent(m_system, EVENT_ERROR, &event), GC_ERR_SUCCESS);
    PORT_HANDLE remote = nullptr;
    ASSERT_EQ(DevGetPort(m_device, &remote), GC_ERR_SUCCESS);
    EXPECT_EQ(GCRegisterEvent(remote, EVENT_ERROR, &event), GC_ERR_INVALID_HANDLE);
}

TEST_F(Events, ASmallBufferLeavesTheDeliveryQueued) {
    QueueAll(AllocBuffers(1)); // one buffer, so exactly one delivery whatever the camera sends
    Start(1);
    uint8_t small[8];
    size_t size = sizeof(small);
    for (int i = 0; i < 200 && StreamCount(STREAM_INFO_NUM_AWAIT_DELIVERY) == 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(EventGetData(m_newBuffer, small, &size, 1000), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, sizeof(EVENT_NEW_BUFFER_DATA));
    EXPECT_EQ(InfoAs<size_t>(EventGetInfo, m_newBuffer, EVENT_NUM_IN_QUEUE), 1u);
    EXPECT_EQ(InfoAs<uint64_t>(EventGetInfo, m_newBuffer, EVENT_NUM_FIRED), 1u);
    EXPECT_EQ(InfoAs<int32_t>(EventGetInfo, m_newBuffer, EVENT_EVENT_TYPE), EVENT_NEW_BUFFER);
    ASSERT_EQ(EventFlush(m_newBuffer), GC_ERR_SUCCESS);
    EXPECT_EQ(StreamCount(STREAM_INFO_NUM_AWAIT_DELIVERY), 0u);
    Stop();
    ExpectAccounted();
}

TEST_F(Events, NewBufferDataNamesTheBufferAndItsUserPointer) {
    int tag = 0;
    BUFFER_HANDLE buffer = nullptr;
    ASSERT_EQ(DSAllocAndAnnounceBuffer(m_stream, 512, &tag, &buffer), GC_ERR_SUCCESS);
    QueueAll({buffer});
    Start(1);
    EVENT_NEW_BUFFER_DATA data{};
    size_t size = sizeof(data);
    ASSERT_EQ(EventGetData(m_newBuffer, &data, &size, 2000), GC_ERR_SUCCESS);
    EXPECT_EQ(data.BufferHandle, buffer);
    EXPECT_EQ(data.pUserPointer, &tag);
    EXPECT_EQ(InfoAs<void*>(EventGetDataInfo, m_newBuffer, &data, size, EVENT_DATA_ID), buffer);
    EXPECT_EQ(InfoAs<void*>(EventGetDataInfo, m_newBuffer, &data, size, EVENT_DATA_VALUE), &tag);
}

TEST_F(Events, CameraEventsArriveAsGigEVisionEventData) {
    EVENT_HANDLE remote = nullptr;
    Camera().FireEvent(0x9001); // nobody registered: dropped
    ASSERT_EQ(GCRegisterEvent(m_device, EVENT_REMOTE_DEVICE, &remote), GC_ERR_SUCCESS);
    Camera().FireEvent(0x9002);
    uint8_t data[64];
    size_t size = sizeof(data);
    ASSERT_EQ(EventGetData(remote, data, &size, 1000), GC_ERR_SUCCESS);
    EXPECT_EQ(size, 32u);
    EXPECT_EQ(InfoAs<uint64_t>(EventGetDataInfo, remote, data, size, EVENT_DATA_NUMID), 0x9002u);
    EXPECT_EQ(InfoText(EventGetDataInfo, remote, data, size, EVENT_DATA_ID), "9002");
    size = 4;
    Camera().FireEvent(0x9003);
    EXPECT_EQ(EventGetData(remote, data, &size, 1000), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 32u);
    ASSERT_EQ(GCUnregisterEvent(m_device, EVENT_REMOTE_DEVICE), GC_ERR_SUCCESS);
    Camera().FireEvent(0x9004); // the camera no longer has a sink
}

TEST_F(Events, TwoConsumersNeverReceiveTheSameBuffer) {
    QueueAll(AllocBuffers(4));
    Start();
    std::mutex mutex;
    std::set<BUFFER_HANDLE> held;
    std::atomic<int> duplicates{0}, received{0};
    auto consume = [&] {
        for (int i = 0; i < 40; ++i) {
            EVENT_NEW_BUFFER_DATA data{};
            size_t size = sizeof(data);
            if (EventGetData(m_newBuffer, &data, &size, 2000) != GC_ERR_SUCCESS)
                return;
            {
                std::lock_guard<std::mutex> lock(mutex);
                duplicates += !held.insert(data.BufferHandle).second;
            }
            ++received;
            {
                std::lock_guard<std::mutex> lock(mutex);
                held.erase(data.BufferHandle);
            }
            DSQueueBuffer(m_stream, data.BufferHandle);
        }
    };
    std::thread first(consume), second(consume);
    first.join();
    second.join();
    EXPECT_EQ(duplicates.load(), 0);
    EXPECT_EQ(received.load(), 80);
    Stop();
    ExpectAccounted();
}
