// Teardown racing with use: modules closed, the library closed and cameras lost while other
// threads stream, wait and query. Nothing may crash, hang or leak; calls on what is gone fail.
#include "ProducerFixture.h"

#include <thread>

using namespace GenTL;
using namespace Orvan::Producer;

namespace {

class Concurrency : public StreamFixture {
protected:
    void SetUp() override {
        StreamFixture::SetUp();
        QueueAll(AllocBuffers(4));
        Start();
    }

    // A consumer that takes and requeues until a call fails; returns that failure.
    std::thread Consumer(std::atomic<GC_ERROR>& ended) {
        return std::thread([this, &ended] {
            for (;;) {
                EVENT_NEW_BUFFER_DATA data{};
                size_t size = sizeof(data);
                GC_ERROR status = EventGetData(m_newBuffer, &data, &size, 1000);
                if (status == GC_ERR_SUCCESS)
                    status = DSQueueBuffer(m_stream, data.BufferHandle);
                if (status != GC_ERR_SUCCESS && status != GC_ERR_TIMEOUT) {
                    ended = status;
                    return;
                }
            }
        });
    }

    // A thread reading the stream's registers and info until they fail.
    std::thread Reader(std::atomic<GC_ERROR>& ended) {
        return std::thread([this, &ended] {
            for (;;) {
                char url[256];
                size_t size = sizeof(url);
                GC_ERROR status = GCGetPortURL(m_stream, url, &size);
                size_t count = 0;
                size = sizeof(count);
                if (status == GC_ERR_SUCCESS)
                    status = DSGetInfo(m_stream, STREAM_INFO_NUM_QUEUED, nullptr, &count, &size);
                if (status != GC_ERR_SUCCESS) {
                    ended = status;
                    return;
                }
            }
        });
    }
};

} // namespace

TEST_F(Concurrency, ClosingTheLibraryEndsEveryUserCleanly) {
    std::atomic<GC_ERROR> consumerEnd{GC_ERR_SUCCESS}, readerEnd{GC_ERR_SUCCESS};
    std::thread consumer = Consumer(consumerEnd);
    std::thread reader = Reader(readerEnd);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    ASSERT_EQ(GCCloseLib(), GC_ERR_SUCCESS);
    consumer.join();
    reader.join();
    const GC_ERROR gone[] = {GC_ERR_ABORT, GC_ERR_INVALID_HANDLE, GC_ERR_NOT_INITIALIZED};
    EXPECT_NE(std::find(std::begin(gone), std::end(gone), consumerEnd.load()), std::end(gone))
        << consumerEnd.load();
    EXPECT_NE(std::find(std::begin(gone), std::end(gone), readerEnd.load()), std::end(gone))
        << readerEnd.load();
}

TEST_F(Concurrency, ClosingTheDeviceWhileStreamingStopsItsStream) {
    std::atomic<GC_ERROR> consumerEnd{GC_ERR_SUCCESS};
    std::thread consumer = Consumer(consumerEnd);
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    ASSERT_EQ(DevClose(m_device), GC_ERR_SUCCESS);
    consumer.join();
    EXPECT_TRUE(consumerEnd == GC_ERR_ABORT || consumerEnd == GC_ERR_INVALID_HANDLE)
        << consumerEnd.load();
    ASSERT_EQ(IFOpenDevice(m_interface, m_deviceId.c_str(), DEVICE_ACCESS_CONTROL, &m_device),
              GC_ERR_SUCCESS)
        << "the device can be opened again";
}

TEST_F(Concurrency, ACameraLostWhileStreamingCanStillBeStoppedAndClosed) {
    Take();
    ASSERT_EQ(OrvanTC_SetDeviceConnected(m_deviceId.c_str(), 0), ORVAN_TC_OK);
    Stop();
    ExpectAccounted();
    ASSERT_EQ(DSFlushQueue(m_stream, ACQ_QUEUE_ALL_DISCARD), GC_ERR_SUCCESS);
    for (BUFFER_HANDLE buffer = nullptr; DSGetBufferID(m_stream, 0, &buffer) == GC_ERR_SUCCESS;)
        ASSERT_EQ(DSRevokeBuffer(m_stream, buffer, nullptr, nullptr), GC_ERR_SUCCESS);
    EXPECT_EQ(DevClose(m_device), GC_ERR_SUCCESS);
}
