// Event adapters against camera descriptions of the corpus. GigE Vision messages come from the
// producer's own message builder, so that the virtual cameras and the adapter agree.
#include "AdapterTestSupport.h"

#include "GevEventMessage.h"

#include <gtest/gtest.h>

using namespace GenApi;
using namespace AdapterTest;
using Orvan::Producer::BuildGevEventMessage;
using Orvan::Producer::GevEvent;

namespace {

// Event ports at 0x9C43 (exposure end): timestamp big-endian at 8, frame ID little-endian at
// 16; the node EventExposureEnd carries the EventID itself.
const char kGigECamera[] = "flir_blackflys_bfs-pge-23s6c_gige.xml";
// Ports 0004 (exposure end) and 9000 (line start overtrigger): stream channel index at 4.
const char kGigECamera2[] = "basler_aca1920-40gm_ace_gige.xml";
const char kUsbCamera[] = "pointgrey_flea3_fl3-u3-13s2c_u3v.xml";

TEST(EventAdapterGEVTest, EventDataReachesItsPortAndFiresTheEventNodes) {
    MapPtr map = LoadCorpus(kGigECamera);
    CEventAdapterGEV adapter(map.get());
    CallbackCounter eventNode, timestampNode;
    eventNode.RegisterOn(*map, "EventExposureEnd");
    timestampNode.RegisterOn(*map, "EventExposureEndTimestamp");
    EXPECT_FALSE(Readable(*map, "EventExposureEndTimestamp"));

    GevEvent event{0x9C43, 0xFFFF, 7, 0x0102030405060708, LittleEndianBytes(42, 8)};
    auto message = BuildGevEventMessage({event}, 1, false);
    adapter.DeliverMessage(message.data(), static_cast<uint32_t>(message.size()));
    EXPECT_EQ(eventNode.count, 1);
    EXPECT_EQ(timestampNode.count, 1);
    EXPECT_EQ(IntValue(*map, "EventExposureEndTimestamp"), 0x0102030405060708);
    EXPECT_EQ(IntValue(*map, "EventExposureEndFrameID"), 42);

    event.timestamp = 5;
    message = BuildGevEventMessage({event}, 2, false);
    adapter.DeliverMessage(message.data(), static_cast<uint32_t>(message.size()));
    EXPECT_EQ(timestampNode.count, 2);
    EXPECT_EQ(IntValue(*map, "EventExposureEndTimestamp"), 5);
}

TEST(EventAdapterGEVTest, SeveralEventsInOneMessageEachReachTheirPort) {
    MapPtr map = LoadCorpus(kGigECamera2);
    CEventAdapterGEV adapter(map.get());
    CallbackCounter exposureEnd, overtrigger;
    exposureEnd.RegisterOn(*map, "ExposureEndEventStreamChannelIndex");
    overtrigger.RegisterOn(*map, "LineStartOvertriggerEventStreamChannelIndex");

    auto message = BuildGevEventMessage({{0x0004, 1, 100, 11, {}},
                                         {0x1234, 9, 101, 12, {1, 2, 3}},
                                         {0x9000, 2, 102, 13, {4, 5}},
                                         {0x0004, 3, 103, 14, {}}},
                                        3, true);
    adapter.DeliverMessage(message.data(), static_cast<uint32_t>(message.size()));
    EXPECT_EQ(exposureEnd.count, 2);
    EXPECT_EQ(overtrigger.count, 1);
    EXPECT_EQ(IntValue(*map, "ExposureEndEventStreamChannelIndex"), 3);
    EXPECT_EQ(IntValue(*map, "LineStartOvertriggerEventStreamChannelIndex"), 2);

    // EVENT (without data): 16-byte items whose first field is reserved.
    std::vector<uint8_t> plain = {0x42, 0x00, 0x00, 0xC0, 0x00, 32, 0x00, 0x04};
    for (uint16_t id : {0x9000, 0x0004}) {
        PutBigEndian(plain, 0, 2);
        PutBigEndian(plain, id, 2);
        PutBigEndian(plain, id == 0x0004 ? 6 : 5, 2);
        PutBigEndian(plain, 0, 2);
        PutBigEndian(plain, 0xABCDEF, 8);
    }
    adapter.DeliverMessage(plain.data(), static_cast<uint32_t>(plain.size()));
    EXPECT_EQ(exposureEnd.count, 3);
    EXPECT_EQ(overtrigger.count, 2);
    EXPECT_EQ(IntValue(*map, "ExposureEndEventStreamChannelIndex"), 6);
    EXPECT_EQ(IntValue(*map, "ExposureEndEventTimestamp"), 0xABCDEF);
}

TEST(EventAdapterGEVTest, MalformedMessagesDeliverNothing) {
    MapPtr map = LoadCorpus(kGigECamera2);
    CEventAdapterGEV adapter(map.get());
    CallbackCounter exposureEnd;
    exposureEnd.RegisterOn(*map, "ExposureEndEventStreamChannelIndex");
    const auto good = BuildGevEventMessage({{0x0004, 1, 1, 1, {}}, {0x0004, 2, 2, 2, {}}}, 1, true);

    auto expectRejected = [&](std::vector<uint8_t> message, const char* what) {
        SCOPED_TRACE(what);
        EXPECT_THROW(adapter.DeliverMessage(message.data(), static_cast<uint32_t>(message.size())),
                     GenICam::RuntimeException);
    };
    expectRejected({good.begin(), good.end() - 1}, "shorter than its header says");
    expectRejected({good.begin(), good.begin() + 5}, "shorter than a header");
    auto message = good;
    message[0] = 0x43;
    expectRejected(message, "wrong key");
    message = good;
    message[3] = 0x80;
    expectRejected(message, "another command");
    message = good;
    message[8 + 24 + 1] = 25; // the second event claims one byte more than is left
    expectRejected(message, "event size past the end");
    message = good;
    message[8 + 1] = 8; // less than its own header
    expectRejected(message, "event size below its header");
    EXPECT_THROW(adapter.DeliverMessage(nullptr, 16), GenICam::RuntimeException);
    EXPECT_EQ(exposureEnd.count, 0);
}

std::vector<uint8_t> UsbEvent(uint16_t eventId, uint64_t timestamp, uint64_t frameId) {
    std::vector<uint8_t> message;
    PutLittleEndian(message, 0x45563355, 4);
    PutLittleEndian(message, 0, 2);
    PutLittleEndian(message, 0x0C00, 2);
    PutLittleEndian(message, 20, 2);
    PutLittleEndian(message, 1, 2);
    PutLittleEndian(message, 0, 2);
    PutLittleEndian(message, eventId, 2);
    PutLittleEndian(message, timestamp, 8);
    PutLittleEndian(message, frameId, 8);
    return message;
}

TEST(EventAdapterU3VTest, EventReachesItsPort) {
    MapPtr map = LoadCorpus(kUsbCamera);
    CEventAdapterU3V adapter(map.get());
    CallbackCounter fired;
    fired.RegisterOn(*map, "EventExposureEndTimestamp");
    auto message = UsbEvent(0x9C43, 123456789, 77);
    adapter.DeliverMessage(message.data(), static_cast<uint32_t>(message.size()));
    EXPECT_EQ(fired.count, 1);
    EXPECT_EQ(IntValue(*map, "EventExposureEndTimestamp"), 123456789);
    EXPECT_EQ(IntValue(*map, "EventExposureEndFrameID"), 77);

    message[3] = 0x43; // the control prefix "U3VC", not an event
    EXPECT_THROW(adapter.DeliverMessage(message.data(), static_cast<uint32_t>(message.size())),
                 GenICam::RuntimeException);
    message = UsbEvent(0x9C43, 1, 1);
    message[8] = 21;
    EXPECT_THROW(adapter.DeliverMessage(message.data(), static_cast<uint32_t>(message.size())),
                 GenICam::RuntimeException);
    EXPECT_EQ(fired.count, 1);
}

TEST(EventAdapterGenericTest, TheGivenEventIdRoutesTheWholeMessage) {
    MapPtr map = LoadCorpus(kGigECamera);
    CEventAdapterGeneric adapter(map.get());
    CallbackCounter fired;
    fired.RegisterOn(*map, "EventExposureEnd");
    std::vector<uint8_t> data(24, 0);
    data[15] = 9; // big-endian timestamp at 8

    adapter.DeliverMessage(data.data(), static_cast<uint32_t>(data.size()), gcstring("9c43"));
    EXPECT_EQ(IntValue(*map, "EventExposureEndTimestamp"), 9);
    data[15] = 10;
    adapter.DeliverMessage(data.data(), static_cast<uint32_t>(data.size()), uint64_t{0x9C43});
    EXPECT_EQ(IntValue(*map, "EventExposureEndTimestamp"), 10);
    EXPECT_EQ(fired.count, 2);
    EXPECT_THROW(adapter.DeliverMessage(data.data(), static_cast<uint32_t>(data.size())),
                 GenICam::RuntimeException);
}

} // namespace
