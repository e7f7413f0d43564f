// A start that fails at any step leaves the stream as it was: nothing announced, no event, the
// transport parameters unlocked, and the next start works.
#include "DeviceTestSupport.h"

#include <ostream>
#include <string>

using DeviceTest::DeviceFixture;
using SpineTest::Capture;

namespace {

struct FailingStep {
    const char* function;
    uint32_t nthCall;
    const char* message;
};

void PrintTo(const FailingStep& step, std::ostream* os) {
    *os << step.function << " call " << step.nthCall;
}

class StartFailure : public DeviceFixture, public ::testing::WithParamInterface<FailingStep> {};

} // namespace

TEST_P(StartFailure, LeavesNothingAnnounced) {
    const FailingStep& step = GetParam();
    Open({"Mono"});
    Orvan::IDevice* device = Create();
    ASSERT_EQ(OrvanTC_FailCall(step.function, step.nthCall, GenTL::GC_ERR_IO, "injected"), 0);
    SpineTest::Outcome outcome = Capture([&] { device->StartStream(5); });
    EXPECT_EQ(outcome.className, "RuntimeException");
    EXPECT_EQ(outcome.message.rfind(step.message, 0), 0u) << outcome.message;
    EXPECT_NE(outcome.message.find("; injected"), std::string::npos) << outcome.message;
    EXPECT_EQ(Announced(device), 0);
    EXPECT_EQ(Integer(device->GetNodeMap(), "TLParamsLocked"), 0);
    EXPECT_EQ(Capture([&] { device->GetBuffer(10); }).message,
              "LogicalErrorException: Unable to get buffer data, event handle is NULL (Device, "
              "GetBuffer)");

    device->StartStream(2);
    Orvan::IImage* image = device->GetImage(2000);
    EXPECT_EQ(DeviceTest::IntactFrame(image), 1u);
    device->RequeueBuffer(image);
    device->StopStream();
}

INSTANTIATE_TEST_SUITE_P(
    EveryStep, StartFailure,
    ::testing::Values(
        FailingStep{"DSAllocAndAnnounceBuffer", 4,
                    "RuntimeException (GC_ERR_IO): Unable to prepare internal buffer (Device, "
                    "StartStream; GenTL::DSAllocAndAnnounceBuffer)"},
        FailingStep{"DSQueueBuffer", 3,
                    "RuntimeException (GC_ERR_IO): Unable to queue internal buffer (Device, "
                    "StartStream; GenTL::DSQueueBuffer)"},
        FailingStep{"GCRegisterEvent", 1,
                    "RuntimeException (GC_ERR_IO): Unable to register new buffer events (Device, "
                    "StartStream; GenTL::GCRegisterEvent, EVENT_NEW_BUFFER)"},
        FailingStep{"DSStartAcquisition", 1,
                    "RuntimeException (GC_ERR_IO): Unable to start acquisition (Device, "
                    "StartStream; GenTL::DSStartAcquisition)"}),
    [](const ::testing::TestParamInfo<FailingStep>& info) {
        return std::string(info.param.function);
    });

TEST_F(DeviceFixture, AFailingCleanupReportsItsOwnFailure) {
    Open({"Mono"});
    Orvan::IDevice* device = Create();
    ASSERT_EQ(OrvanTC_FailCall("DSQueueBuffer", 2, GenTL::GC_ERR_IO, "queue"), 0);
    ASSERT_EQ(OrvanTC_FailCall("DSFlushQueue", 1, GenTL::GC_ERR_BUSY, "flush"), 0);
    EXPECT_EQ(Capture([&] { device->StartStream(4); }).message,
              "RuntimeException (GC_ERR_BUSY): Unable to flush queue (Device, "
              "CleanupAnnouncedBuffersOnStartFailure; GenTL::DSFlushQueue); flush");
}
