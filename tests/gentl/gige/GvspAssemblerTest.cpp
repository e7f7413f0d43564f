#include "gige/GvspAssembler.h"
#include "GvspFakeSink.h"
#include "GvspPacketWriter.h"
#include "GvspTestPackets.h"
#include "gige/GevProtocol.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <tuple>
#include <utility>

namespace {

using namespace Orvan::Producer;
using GvspTest::Datagram;
using Request = std::tuple<uint64_t, uint32_t, uint32_t>;

constexpr size_t kStride = 1000;
constexpr size_t kBufferSize = 8000;

GvspAssembler::Options MakeOptions(bool extended) {
    GvspAssembler::Options options;
    options.extendedIds = extended;
    options.packetSize = static_cast<uint32_t>(kStride + 28 + (extended ? 20 : 8));
    options.tickFrequency = 1000000; // microsecond ticks
    options.batchSize = 16;
    options.maxFramesInFlight = 4;
    return options;
}

GvspTest::Block MakeBlock(uint64_t id, size_t bytes, bool extended = false) {
    GvspTest::Block block;
    block.id = id;
    block.extended = extended;
    block.stride = kStride;
    block.timestamp = 2000000;
    block.width = 100;
    block.height = static_cast<uint32_t>(bytes / 100);
    block.data = GvspTest::Pattern(bytes, static_cast<uint8_t>(id));
    return block;
}

struct Rig {
    explicit Rig(bool extended = false, ResendSettings resend = {})
        : assembler(sink, MakeOptions(extended), resend,
                    [this](uint64_t block, uint32_t first, uint32_t last) {
                        requests.emplace_back(block, first, last);
                    }) {}

    void Send(const Datagram& datagram, uint64_t now = 0) {
        assembler.OnDatagram(datagram.data(), datagram.size(), now);
    }
    // Scatters the datagrams into the prepared slots as the kernel does, a batch at a time.
    void SendBatched(const std::vector<Datagram>& datagrams, uint64_t now = 0) {
        for (size_t first = 0; first < datagrams.size(); first += assembler.BatchSize()) {
            GvspAssembler::Slot* slots = assembler.PrepareBatch();
            const size_t count = std::min(assembler.BatchSize(), datagrams.size() - first);
            for (size_t i = 0; i < count; ++i) {
                const Datagram& d = datagrams[first + i];
                const size_t head = std::min(d.size(), assembler.HeaderSize());
                const size_t body = std::min(d.size() - head, slots[i].bodyCapacity);
                std::memcpy(slots[i].header, d.data(), head);
                std::memcpy(slots[i].body, d.data() + head, body);
                slots[i].length = head + body;
            }
            assembler.ProcessBatch(count, now);
        }
    }

    GvspTest::FakeSink sink{4, kBufferSize};
    std::vector<Request> requests;
    GvspAssembler assembler;
};

TEST(GvspAssembler, DeliversBlockWithItsDescription) {
    Rig rig;
    const auto block = MakeBlock(7, 3500);
    auto datagrams = GvspTest::Datagrams(block);
    rig.Send(datagrams[0]); // the payload that follows lands in the buffer directly
    rig.SendBatched({datagrams.begin() + 1, datagrams.end()});
    const auto frames = rig.sink.Frames();
    ASSERT_EQ(frames.size(), 1u);
    const FrameInfo& info = frames[0].info;
    EXPECT_FALSE(info.incomplete);
    EXPECT_EQ(frames[0].data, block.data);
    EXPECT_EQ(info.frameId, 7u);
    EXPECT_EQ(info.timestampTicks, 2000000u);
    EXPECT_EQ(info.timestampNs, 2000000000u);
    EXPECT_EQ(info.width, 100u);
    EXPECT_EQ(info.height, 35u);
    EXPECT_EQ(info.pixelFormat, GvspTest::kMono8);
    EXPECT_EQ(info.payloadType, GenTL::PAYLOAD_TYPE_IMAGE);
    EXPECT_EQ(rig.sink.Leaders(), 1u);
    EXPECT_EQ(rig.assembler.Statistics().packetsReceived, 6u);
    EXPECT_EQ(rig.assembler.Statistics().framesDelivered, 1u);
}

TEST(GvspAssembler, ReorderedDuplicatedAndInterleavedBlocksComplete) {
    Rig rig;
    const auto a = GvspTest::Datagrams(MakeBlock(1, 3500));
    const auto b = GvspTest::Datagrams(MakeBlock(2, 4000));
    // One batch: a's packets out of order and repeated, b's leader and data arriving in between.
    rig.Send(a[0]);
    rig.SendBatched({a[2], a[1], b[0], a[4], b[1], a[3], a[3], b[2], a[5], b[3], b[4], b[5]});
    rig.assembler.Poll(1000000);
    const auto frames = rig.sink.Frames();
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_FALSE(frames[0].info.incomplete);
    EXPECT_FALSE(frames[1].info.incomplete);
    EXPECT_EQ(frames[0].data, MakeBlock(1, 3500).data);
    EXPECT_EQ(frames[1].data, MakeBlock(2, 4000).data);
    EXPECT_TRUE(rig.requests.empty());
}

TEST(GvspAssembler, LostPacketsAreAskedForAsRangesAndFramesStayInOrder) {
    Rig rig;
    const auto first = MakeBlock(1, 7500);
    const auto d = GvspTest::Datagrams(first);
    for (size_t i = 0; i < d.size(); ++i)
        if (i != 3 && i != 4 && i != 7)
            rig.Send(d[i], 100);
    rig.SendBatched(GvspTest::Datagrams(MakeBlock(2, 1200)), 200);
    rig.assembler.Poll(1000); // younger than the request delay: reordering is still possible
    EXPECT_TRUE(rig.requests.empty());
    rig.assembler.Poll(2200);
    EXPECT_EQ(rig.requests, (std::vector<Request>{{1, 3, 4}, {1, 7, 7}}));
    EXPECT_TRUE(rig.sink.Frames().empty()); // the complete second frame waits for the first
    for (size_t i : {7, 3, 4})
        rig.Send(d[i], 3000);
    const auto frames = rig.sink.Frames();
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(frames[0].info.frameId, 1u);
    EXPECT_FALSE(frames[0].info.incomplete);
    EXPECT_EQ(frames[0].data, first.data);
    EXPECT_EQ(frames[1].info.frameId, 2u);
    EXPECT_EQ(rig.assembler.Statistics().packetsRecovered, 3u);
    EXPECT_EQ(rig.assembler.Statistics().resendRequests, 2u);
}

TEST(GvspAssembler, UnansweredRequestsAreRetriedThenFrameIsIncomplete) {
    ResendSettings resend;
    resend.requestDelayUs = 2000;
    resend.retryTimeoutUs = 10000;
    resend.maxRetries = 3;
    Rig rig(false, resend);
    const auto d = GvspTest::Datagrams(MakeBlock(1, 3500));
    for (size_t i = 0; i < d.size(); ++i)
        if (i != 2)
            rig.Send(d[i], 0);
    const std::pair<uint64_t, size_t> expected[] = {{1000, 0},  {2000, 1},  {11000, 1},
                                                    {12000, 2}, {22000, 3}, {31000, 3}};
    for (const auto& [now, requests] : expected) {
        rig.assembler.Poll(now);
        EXPECT_EQ(rig.requests.size(), requests) << now;
    }
    EXPECT_TRUE(rig.sink.Frames().empty());
    rig.assembler.Poll(32000); // the last request went unanswered too
    const auto frames = rig.sink.Frames();
    ASSERT_EQ(frames.size(), 1u);
    EXPECT_TRUE(frames[0].info.incomplete);
    const auto stats = rig.assembler.Statistics();
    EXPECT_EQ(stats.packetsLost, 1u);
    EXPECT_EQ(stats.framesIncomplete, 1u);
    EXPECT_EQ(rig.requests.back(), Request(1, 2, 2));
}

TEST(GvspAssembler, BlockWhoseEndNeverComesTimesOut) {
    ResendSettings resend;
    resend.frameTimeoutUs = 100000;
    Rig rig(false, resend);
    const auto d = GvspTest::Datagrams(MakeBlock(1, 3500));
    rig.SendBatched({d[0], d[1]}, 0);
    rig.assembler.Poll(99000);
    EXPECT_TRUE(rig.sink.Frames().empty());
    rig.assembler.Poll(100000);
    ASSERT_EQ(rig.sink.Frames().size(), 1u);
    EXPECT_TRUE(rig.sink.Frames()[0].info.incomplete);
    EXPECT_EQ(rig.sink.Frames()[0].info.sizeFilled, 1000u);
}

TEST(GvspAssembler, LostLeaderAndTrailerAreRecovered) {
    Rig rig;
    const auto block = MakeBlock(1, 3500);
    const auto d = GvspTest::Datagrams(block);
    rig.SendBatched({d[1], d[2], d[3]}, 0);
    rig.Send(d[4], 0);
    rig.Send(GvspTest::Leader(MakeBlock(2, 1000)), 100); // the trailer is overdue now
    rig.assembler.Poll(2100);
    ASSERT_EQ(rig.requests.size(), 2u);
    EXPECT_EQ(rig.requests[0], Request(1, 0, 0));
    // Without the leader the buffer bounds the guess at the end of the block.
    EXPECT_EQ(std::get<1>(rig.requests[1]), 5u);
    rig.Send(d[0], 2200);
    rig.Send(d[5], 2200);
    const auto frames = rig.sink.Frames();
    ASSERT_EQ(frames.size(), 1u);
    EXPECT_FALSE(frames[0].info.incomplete);
    EXPECT_EQ(frames[0].info.width, 100u);
    EXPECT_EQ(frames[0].data, block.data);
}

TEST(GvspAssembler, LostEndOfTheLastBlockIsAskedForAfterSilence) {
    Rig rig;
    const auto block = MakeBlock(1, 3500);
    const auto d = GvspTest::Datagrams(block);
    rig.SendBatched({d[0], d[1], d[2], d[3], d[4]}, 0);
    for (uint64_t now : {9000, 10000, 11900}) // quiet long enough from 10 ms on
        rig.assembler.Poll(now);
    EXPECT_TRUE(rig.requests.empty());
    rig.assembler.Poll(12000);
    EXPECT_EQ(rig.requests, std::vector<Request>{Request(1, 5, 5)}); // the leader tells the end
    rig.Send(d[5], 12100);
    ASSERT_EQ(rig.sink.Frames().size(), 1u);
    EXPECT_FALSE(rig.sink.Frames()[0].info.incomplete);
}

TEST(GvspAssembler, BlockWithoutBufferIsLostAndLaterBlocksGoOn) {
    Rig rig;
    rig.sink.Starve(4);
    rig.SendBatched(GvspTest::Datagrams(MakeBlock(1, 3500)));
    rig.sink.Feed();
    rig.SendBatched(GvspTest::Datagrams(MakeBlock(2, 3500)));
    EXPECT_EQ(rig.sink.Lost(), 1u);
    EXPECT_EQ(rig.sink.Leaders(), 2u);
    ASSERT_EQ(rig.sink.Frames().size(), 1u);
    EXPECT_EQ(rig.sink.Frames()[0].info.frameId, 2u);
    EXPECT_FALSE(rig.sink.Frames()[0].info.incomplete);
    EXPECT_EQ(rig.assembler.Statistics().framesLost, 1u);
}

TEST(GvspAssembler, DataLargerThanBufferIsFlagged) {
    Rig rig;
    rig.SendBatched(GvspTest::Datagrams(MakeBlock(1, kBufferSize + 1500)));
    const auto frames = rig.sink.Frames();
    ASSERT_EQ(frames.size(), 1u);
    EXPECT_TRUE(frames[0].info.incomplete);
    EXPECT_TRUE(frames[0].info.dataLargerThanBuffer);
    EXPECT_EQ(frames[0].info.sizeFilled, kBufferSize);
}

TEST(GvspAssembler, ExtendedIdsCarryWideBlockIdsAndRejectTheStandardForm) {
    Rig rig(true);
    const auto block = MakeBlock(0x100000001ull, 2500, true);
    rig.Send(GvspTest::Leader(MakeBlock(5, 2500, false))); // the other form is not this stream
    rig.SendBatched(GvspTest::Datagrams(block));
    const auto frames = rig.sink.Frames();
    ASSERT_EQ(frames.size(), 1u);
    EXPECT_EQ(frames[0].info.frameId, 0x100000001ull);
    EXPECT_EQ(frames[0].data, block.data);
    EXPECT_EQ(rig.sink.Leaders(), 1u);
}

TEST(GvspAssembler, BlockIdsWrapAroundLatePacketsAreIgnoredAndRestartsAccepted) {
    Rig rig;
    for (uint64_t id : {65534, 65535, 1, 2})
        rig.SendBatched(GvspTest::Datagrams(MakeBlock(id, 1500)));
    rig.Send(GvspTest::Payload(MakeBlock(65535, 1500), 1)); // late duplicate
    EXPECT_EQ(rig.sink.Leaders(), 4u);
    rig.SendBatched(GvspTest::Datagrams(MakeBlock(1, 1500))); // the camera starts over
    const auto frames = rig.sink.Frames();
    ASSERT_EQ(frames.size(), 5u);
    EXPECT_EQ(frames[2].info.frameId, 1u);
    EXPECT_EQ(frames[3].info.frameId, 2u);
    EXPECT_EQ(frames[4].info.frameId, 1u);
    EXPECT_FALSE(frames[4].info.incomplete);
}

FramePart Part(uint64_t offset, uint64_t size, int32_t type, uint64_t width, uint64_t source) {
    FramePart part;
    part.offset = offset;
    part.size = size;
    part.dataType = type;
    part.format = GvspTest::kMono8;
    part.width = width;
    part.height = size / width;
    part.sourceId = source;
    return part;
}

struct Delivery {
    const char* name;
    bool reversed;
    std::vector<uint32_t> lost; // packet ids never sent the first time
};

class MultipartAssembly : public ::testing::TestWithParam<Delivery> {};

// Three parts, the last no image: a range map with a confidence map, say. Each ends in a short
// packet, so the block needs more packets than its bytes would in the generic form.
TEST_P(MultipartAssembly, PartsLandWholeAndDescribed) {
    std::vector<uint8_t> data(3500);
    std::iota(data.begin(), data.end(), uint8_t(0));
    Orvan::Emulator::GvspBlock block;
    block.blockId = 5;
    block.payloadType = Orvan::Gev::MultiPart;
    block.data = data.data();
    block.size = data.size();
    block.parts = {Part(0, 2000, GenTL::PART_DATATYPE_2D_IMAGE, 40, 1),
                   Part(2000, 1000, GenTL::PART_DATATYPE_2D_IMAGE, 40, 2),
                   Part(3000, 500, GenTL::PART_DATATYPE_CONFIDENCE_MAP, 20, 2)};
    Rig rig;
    const Orvan::Emulator::GvspPacketWriter writer(MakeOptions(false).packetSize, false);
    std::vector<uint8_t> packet(writer.MaxDatagram());
    auto send = [&](uint32_t id, uint16_t status, uint64_t now) {
        const size_t size = writer.WritePacket(block, id, status, packet.data());
        rig.assembler.OnDatagram(packet.data(), size, now);
    };
    std::vector<uint32_t> ids(writer.PacketCount(block));
    ASSERT_EQ(ids.size(), 8u);
    std::iota(ids.begin(), ids.end(), 0u);
    if (GetParam().reversed)
        std::reverse(ids.begin(), ids.end());
    for (uint32_t id : ids)
        if (std::count(GetParam().lost.begin(), GetParam().lost.end(), id) == 0)
            send(id, Orvan::Gev::Success, 0);
    // The camera answers every request; a few rounds recover any loss.
    for (uint64_t now = 5000; now < 200000 && rig.sink.Frames().empty(); now += 5000) {
        rig.assembler.Poll(now);
        for (const auto& [id, first, last] : std::exchange(rig.requests, {}))
            for (uint32_t packetId = first; packetId <= last && packetId < ids.size(); ++packetId)
                send(packetId, Orvan::Gev::PacketResend, now);
    }

    const auto frames = rig.sink.Frames();
    ASSERT_EQ(frames.size(), 1u);
    const FrameInfo& info = frames[0].info;
    EXPECT_FALSE(info.incomplete);
    EXPECT_EQ(info.payloadType, GenTL::PAYLOAD_TYPE_MULTI_PART);
    EXPECT_EQ(frames[0].data, data);
    ASSERT_EQ(info.parts.size(), 3u);
    for (size_t i = 0; i < 3; ++i) {
        const FramePart& got = info.parts[i];
        const FramePart& sent = block.parts[i];
        EXPECT_EQ(got.offset, sent.offset);
        EXPECT_EQ(got.size, sent.size);
        EXPECT_EQ(got.dataType, sent.dataType);
        EXPECT_EQ(got.format, sent.format);
        EXPECT_EQ(got.width, sent.width);
        EXPECT_EQ(got.height, sent.height);
        EXPECT_EQ(got.sourceId, sent.sourceId);
    }
    EXPECT_FALSE(info.imagePresent); // a confidence map does not stack onto images
}

INSTANTIATE_TEST_SUITE_P(Orders, MultipartAssembly,
                         ::testing::Values(Delivery{"InOrder", false, {}},
                                           Delivery{"Reversed", true, {}},
                                           Delivery{"LeaderLost", false, {0}},
                                           Delivery{"PartEndsAndTrailerLost", false, {3, 5, 7}}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(GvspAssembler, AbortReturnsBuffersOfUnfinishedFrames) {
    Rig rig;
    const auto d = GvspTest::Datagrams(MakeBlock(1, 3500));
    rig.SendBatched({d[0], d[1]});
    rig.assembler.Abort();
    EXPECT_EQ(rig.sink.Returned(), 1u);
    EXPECT_TRUE(rig.sink.Frames().empty());
    EXPECT_EQ(rig.sink.Queued(), 4u);
}

} // namespace
