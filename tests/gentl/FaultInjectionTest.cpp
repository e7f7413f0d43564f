// The test-control interface: failures injected into named entry points, and frame faults.
#include "ProducerFixture.h"

using namespace GenTL;
using namespace Orvan::Producer;

namespace {

class FaultInjection : public ProducerFixture {};

} // namespace

TEST_F(FaultInjection, ANamedCallFailsOnceOnItsNthCallWithTheChosenCodeAndText) {
    ASSERT_EQ(OrvanTC_FailCall("GCInitLib", 1, GC_ERR_IO, "injected init failure"), ORVAN_TC_OK);
    EXPECT_EQ(GCInitLib(), GC_ERR_IO);
    EXPECT_EQ(ProducerErrorText(), "injected init failure");
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);

    ASSERT_EQ(OrvanTC_FailCall("TLOpen", 2, GC_ERR_ACCESS_DENIED, "second open"), ORVAN_TC_OK);
    ASSERT_EQ(TLOpen(&m_system), GC_ERR_SUCCESS);
    ASSERT_EQ(TLClose(m_system), GC_ERR_SUCCESS);
    EXPECT_EQ(TLOpen(&m_system), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(TLOpen(&m_system), GC_ERR_SUCCESS);

    ASSERT_EQ(OrvanTC_FailCall("GCGetLastError", 1, GC_ERR_NOT_AVAILABLE, "x"), ORVAN_TC_OK);
    GC_ERROR code = 0;
    size_t size = 0;
    EXPECT_EQ(GCGetLastError(&code, nullptr, &size), GC_ERR_NOT_AVAILABLE);
    EXPECT_EQ(ProducerErrorText(), "second open") << "a failing GCGetLastError leaves the record";

    ASSERT_EQ(OrvanTC_FailCall("TLGetNumInterfaces", 1, GC_ERR_BUSY, "disarmed"), ORVAN_TC_OK);
    ASSERT_EQ(OrvanTC_FailCall("TLGetNumInterfaces", 0, GC_ERR_BUSY, "disarmed"), ORVAN_TC_OK);
    uint32_t count = 0;
    EXPECT_EQ(TLGetNumInterfaces(m_system, &count), GC_ERR_SUCCESS);
}

TEST_F(FaultInjection, BadRequestsAreRefused) {
    EXPECT_EQ(OrvanTC_FailCall("NoSuchFunction", 1, GC_ERR_IO, "x"), ORVAN_TC_BAD_ARGUMENT);
    EXPECT_EQ(OrvanTC_FailCall("DSQueueBuffer", 1, GC_ERR_SUCCESS, "x"), ORVAN_TC_BAD_ARGUMENT);
    EXPECT_EQ(OrvanTC_FailCall(nullptr, 1, GC_ERR_IO, "x"), ORVAN_TC_BAD_ARGUMENT);
    EXPECT_EQ(OrvanTC_SetVirtualCameras(nullptr, 1, 1), ORVAN_TC_BAD_ARGUMENT);
    EXPECT_EQ(OrvanTC_SetVirtualCameras(nullptr, 0, 0), ORVAN_TC_BAD_ARGUMENT);
    EXPECT_EQ(OrvanTC_InjectFrameFault("Fake0", 7, 1), ORVAN_TC_BAD_ARGUMENT);
    EXPECT_EQ(OrvanTC_InjectFrameFault("Fake0", ORVAN_TC_FAULT_DROP, 1), ORVAN_TC_NOT_FOUND)
        << "no system is open";
}

TEST_F(FaultInjection, FrameFaultsReachTheCamera) {
    Open();
    OpenStream();
    QueueAll(AllocBuffers(3));
    ASSERT_EQ(OrvanTC_InjectFrameFault(m_deviceId.c_str(), ORVAN_TC_FAULT_INCOMPLETE, 1),
              ORVAN_TC_OK);
    Start();
    BUFFER_HANDLE first = Take();
    EXPECT_TRUE(BufferFlag(first, BUFFER_INFO_IS_INCOMPLETE));
    BUFFER_HANDLE second = Take();
    EXPECT_FALSE(BufferFlag(second, BUFFER_INFO_IS_INCOMPLETE));
    uint64_t last = BufferValue(second, BUFFER_INFO_FRAMEID);
    ASSERT_EQ(OrvanTC_InjectFrameFault(m_deviceId.c_str(), ORVAN_TC_FAULT_DROP, 2), ORVAN_TC_OK);
    QueueAll({first, second});
    // Frames already filled arrive first; then two ids are missing.
    bool gap = false;
    for (int i = 0; i < 10 && !gap; ++i) {
        BUFFER_HANDLE buffer = Take();
        uint64_t frame = BufferValue(buffer, BUFFER_INFO_FRAMEID);
        gap = frame == last + 3;
        EXPECT_TRUE(frame == last + 1 || gap) << frame << " after " << last;
        last = frame;
        QueueAll({buffer});
    }
    EXPECT_TRUE(gap);
}

TEST_F(FaultInjection, AFailedQueueLeavesTheBufferWhereItWas) {
    Open();
    OpenStream();
    auto buffers = AllocBuffers(2);
    ASSERT_EQ(OrvanTC_FailCall("DSQueueBuffer", 2, GC_ERR_IO, "queue failed"), ORVAN_TC_OK);
    QueueAll({buffers[0]});
    EXPECT_EQ(DSQueueBuffer(m_stream, buffers[1]), GC_ERR_IO);
    m_held.insert(buffers[1]);
    ExpectAccounted();
    EXPECT_FALSE(BufferFlag(buffers[1], BUFFER_INFO_IS_QUEUED));
}
