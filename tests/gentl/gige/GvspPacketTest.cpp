#include "gige/GvspPacket.h"
#include "GvspTestPackets.h"

#include <gtest/gtest.h>

namespace {

using namespace Orvan::Producer;
using GvspTest::Datagram;
using GvspTest::Put;

GvspTest::Block ImageBlock(bool extended) {
    GvspTest::Block block;
    block.id = extended ? 0x0102030405060708ull : 0xBEEF;
    block.extended = extended;
    block.timestamp = 0x1122334455667788ull;
    block.width = 640;
    block.height = 480;
    block.data = GvspTest::Pattern(2500, 1);
    return block;
}

TEST(GvspPacket, DecodesStandardAndExtendedHeaders) {
    for (bool extended : {false, true}) {
        const auto block = ImageBlock(extended);
        const auto payload = GvspTest::Payload(block, 3);
        const auto packet = ParseGvspPacket(payload.data(), payload.size());
        ASSERT_TRUE(packet);
        EXPECT_EQ(packet->header.blockId, block.id);
        EXPECT_EQ(packet->header.packetId, 3u);
        EXPECT_EQ(packet->header.extendedId, extended);
        EXPECT_EQ(packet->header.format, GvspTest::kPayload);
        EXPECT_EQ(packet->dataSize, 500u); // the last, short packet
        EXPECT_EQ(packet->data[0], block.data[2000]);
    }
    const auto big = GvspTest::Header(0xFFFF, 0xABCDEF, GvspTest::kPayload, false, 0x0100);
    const auto header = ParseGvspHeader(big.data(), big.size());
    ASSERT_TRUE(header);
    EXPECT_EQ(header->packetId, 0xABCDEFu);
    EXPECT_EQ(header->status, 0x0100);
}

TEST(GvspPacket, DecodesImageLeaderAndTrailer) {
    const auto block = ImageBlock(false);
    auto leaderBytes = GvspTest::Leader(block);
    leaderBytes[8 + 2] |= 0x40; // chunks follow the image
    const auto leader = ParseGvspPacket(leaderBytes.data(), leaderBytes.size());
    ASSERT_TRUE(leader && leader->leader);
    EXPECT_EQ(leader->leader->payloadType, 1);
    EXPECT_TRUE(leader->leader->chunkFlag);
    EXPECT_EQ(leader->leader->timestamp, block.timestamp);
    EXPECT_EQ(leader->leader->pixelFormat, GvspTest::kMono8);
    EXPECT_EQ(leader->leader->sizeX, 640u);
    EXPECT_EQ(leader->leader->sizeY, 480u);

    auto trailerBytes = GvspTest::Trailer(block);
    trailerBytes[8 + 2] |= 0x40;
    Put(trailerBytes, 96, 4); // chunk payload length, then the layout id
    Put(trailerBytes, 7, 4);
    const auto trailer = ParseGvspPacket(trailerBytes.data(), trailerBytes.size());
    ASSERT_TRUE(trailer && trailer->trailer);
    EXPECT_EQ(trailer->header.packetId, 4u);
    EXPECT_EQ(trailer->trailer->sizeY, 480u);
    EXPECT_TRUE(trailer->trailer->hasChunkInfo);
    EXPECT_EQ(trailer->trailer->chunkPayloadLength, 96u);
    EXPECT_EQ(trailer->trailer->chunkLayoutId, 7u);
}

TEST(GvspPacket, DecodesOtherLeadersAndTrailers) {
    Datagram raw = GvspTest::Header(5, 0, GvspTest::kLeader, false);
    Put(raw, 0, 2);
    Put(raw, 0x0002, 2);
    Put(raw, 99, 8);
    Put(raw, 123456789012ull, 8);
    const auto rawLeader = ParseGvspLeader(raw.data() + 8, raw.size() - 8);
    ASSERT_TRUE(rawLeader);
    EXPECT_FALSE(rawLeader->hasImage);
    EXPECT_EQ(rawLeader->timestamp, 99u);
    EXPECT_EQ(rawLeader->payloadSize, 123456789012ull);

    Datagram chunkTrailer;
    Put(chunkTrailer, 0, 2);
    Put(chunkTrailer, 0x0004, 2);
    Put(chunkTrailer, 64, 4);
    const auto chunk = ParseGvspTrailer(chunkTrailer.data(), chunkTrailer.size());
    ASSERT_TRUE(chunk);
    EXPECT_EQ(chunk->chunkPayloadLength, 64u);
    EXPECT_FALSE(chunk->hasSizeY);

    Datagram extendedChunk;
    Put(extendedChunk, 0, 2);
    Put(extendedChunk, 0x0005, 2);
    Put(extendedChunk, 32, 4);
    Put(extendedChunk, 100, 4);
    Put(extendedChunk, 3, 4);
    const auto extended = ParseGvspTrailer(extendedChunk.data(), extendedChunk.size());
    ASSERT_TRUE(extended);
    EXPECT_EQ(extended->sizeY, 100u);
    EXPECT_EQ(extended->chunkLayoutId, 3u);
}

// Built field by field: the part count is what an extended header announces, else what the
// leader's length holds.
TEST(GvspPacket, DecodesMultiPartLeaderAndPartData) {
    struct Case {
        bool extended;
        uint8_t announced;
        size_t parts;
    };
    for (const Case c : {Case{false, 0, 3}, Case{true, 2, 2}, Case{true, 0, 3}}) {
        Datagram raw = GvspTest::Header(9, 0, GvspTest::kLeader, c.extended);
        if (c.extended)
            raw[7] = c.announced;
        Put(raw, 0, 2);
        Put(raw, 0x000A, 2);
        Put(raw, 77, 8);
        for (uint32_t part = 0; part < 3; ++part) {
            Put(raw, part == 2 ? 0x0009 : 0x0001, 2); // data type
            Put(raw, 0x010000000000ull + part, 6);    // length
            Put(raw, GvspTest::kMono8, 4);
            Put(raw, 0, 2);
            Put(raw, 10 + part, 1); // source id
            Put(raw, 0, 5);         // zones
            Put(raw, 20 + part, 2); // purpose id
            Put(raw, 30 + part, 2); // region id
            for (uint32_t field : {640u, 100 + part, 8u, 4u})
                Put(raw, field, 4); // size x and y, offset x and y
            Put(raw, 2, 2);         // padding x
            Put(raw, 0, 6);
        }
        const auto packet = ParseGvspPacket(raw.data(), raw.size());
        ASSERT_TRUE(packet && packet->leader);
        EXPECT_EQ(packet->leader->timestamp, 77u);
        ASSERT_EQ(packet->leader->parts.size(), c.parts);
        const FramePart& part = packet->leader->parts[c.parts - 1];
        const uint32_t n = uint32_t(c.parts - 1);
        EXPECT_EQ(part.dataType, c.parts == 3 ? GenTL::PART_DATATYPE_CONFIDENCE_MAP
                                              : GenTL::PART_DATATYPE_2D_IMAGE);
        EXPECT_EQ(part.size, 0x010000000000ull + n);
        EXPECT_EQ(part.format, GvspTest::kMono8);
        EXPECT_EQ(part.sourceId, 10 + n);
        EXPECT_EQ(part.purposeId, 20 + n);
        EXPECT_EQ(part.regionId, 30 + n);
        EXPECT_EQ(part.width, 640u);
        EXPECT_EQ(part.height, 100 + n);
        EXPECT_EQ(part.offsetY, 4u);
        EXPECT_EQ(part.paddingX, 2u);
    }
    Datagram body{2, 0x40};
    Put(body, 0x010203040506ull, 6);
    Put(body, 0xABCD, 2);
    const auto data = ParseGvspPartData(body.data(), body.size());
    ASSERT_TRUE(data);
    EXPECT_EQ(data->part, 2u);
    EXPECT_EQ(data->offset, 0x010203040506ull);
    ASSERT_EQ(data->size, 2u);
    EXPECT_EQ(data->data[1], 0xCD);
    EXPECT_FALSE(ParseGvspPartData(body.data(), 7));
}

TEST(GvspPacket, RejectsEveryTruncation) {
    for (bool extended : {false, true}) {
        const auto block = ImageBlock(extended);
        const auto leader = GvspTest::Leader(block);
        for (size_t size = 0; size < leader.size(); ++size)
            EXPECT_FALSE(ParseGvspPacket(leader.data(), size)) << size;
        const auto trailer = GvspTest::Trailer(block);
        for (size_t size = 0; size < trailer.size(); ++size)
            EXPECT_FALSE(ParseGvspPacket(trailer.data(), size)) << size;
        EXPECT_TRUE(ParseGvspPacket(leader.data(), leader.size()));
    }
    EXPECT_FALSE(ParseGvspPacket(nullptr, 0));
}

} // namespace
