// The emulator's packet encoders checked against the layouts hosts expect.
#include "GvcpServerCodec.h"
#include "GvspPacketWriter.h"
#include "gige/BigEndian.h"
#include "gige/GevProtocol.h"

#include <gtest/gtest.h>

#include <numeric>

using Orvan::Gev::Get16;
using Orvan::Gev::Get32;
using Orvan::Gev::Get64;
using Orvan::Gev::Put16;
using Orvan::Gev::Put32;
using Orvan::Gev::Put64;

namespace Orvan {
namespace Emulator {
namespace {

// Reassembles a block from its packets the way a receiver places them, by packet id.
std::vector<uint8_t> Reassemble(const GvspPacketWriter& writer, const GvspBlock& block,
                                bool extended, std::vector<uint8_t>& leader,
                                std::vector<uint8_t>& trailer) {
    const size_t header = extended ? Gev::kGvspExtendedHeaderSize : Gev::kGvspHeaderSize;
    std::vector<uint8_t> packet(writer.MaxDatagram()), data;
    const uint32_t count = writer.PacketCount(block);
    for (uint32_t id = 0; id < count; ++id) {
        const size_t size = writer.WritePacket(block, id, 0, packet.data());
        EXPECT_LE(size, writer.MaxDatagram());
        const uint32_t wireId =
            extended ? Get32(packet.data() + 16) : Get32(packet.data() + 4) & 0xFFFFFF;
        const uint64_t blockId = extended ? Get64(packet.data() + 8) : Get16(packet.data() + 2);
        EXPECT_EQ(wireId, id);
        EXPECT_EQ(blockId, block.blockId);
        EXPECT_EQ((packet[4] & Gev::kGvspExtendedIdFlag) != 0, extended);
        const uint8_t format = packet[4] & 0x0F;
        std::vector<uint8_t> body(packet.begin() + long(header), packet.begin() + long(size));
        if (id == 0) {
            EXPECT_EQ(format, Gev::Leader);
            leader = body;
        } else if (id == count - 1) {
            EXPECT_EQ(format, Gev::Trailer);
            trailer = body;
        } else {
            EXPECT_EQ(format, Gev::GenericPayload);
            data.insert(data.end(), body.begin(), body.end());
        }
    }
    EXPECT_EQ(writer.WritePacket(block, count, 0, packet.data()), 0u);
    return data;
}

TEST(GvspPacketWriterTest, CutsImagesIntoPacketsThatReassembleExactly) {
    std::vector<uint8_t> image(10007);
    std::iota(image.begin(), image.end(), uint8_t(0));
    GvspBlock block;
    block.payloadType = Gev::Image;
    block.timestamp = 0x0102030405060708;
    block.pixelFormat = 0x01080001;
    block.width = 97;
    block.height = 103;
    block.data = image.data();
    block.size = image.size();
    for (const bool extended : {false, true}) {
        block.blockId = extended ? 0x1122334455ull : 0x4455;
        const GvspPacketWriter writer(1500, extended);
        std::vector<uint8_t> leader, trailer;
        EXPECT_EQ(Reassemble(writer, block, extended, leader, trailer), image);
        ASSERT_EQ(leader.size(), 36u);
        EXPECT_EQ(Get16(leader.data() + 2), Gev::Image);
        EXPECT_EQ(Get64(leader.data() + 4), block.timestamp);
        EXPECT_EQ(Get32(leader.data() + 12), block.pixelFormat);
        EXPECT_EQ(Get32(leader.data() + 16), 97u);
        EXPECT_EQ(Get32(leader.data() + 20), 103u);
        ASSERT_EQ(trailer.size(), 8u);
        EXPECT_EQ(Get32(trailer.data() + 4), 103u);
    }
}

TEST(GvspPacketWriterTest, ChunkPayloadsCarryTheirLengthInTheTrailer) {
    std::vector<uint8_t> data(3000, 0x5A);
    GvspBlock block;
    block.payloadType = Gev::Image | Gev::kPayloadTypeChunkFlag;
    block.height = 10;
    block.data = data.data();
    block.size = data.size();
    const GvspPacketWriter writer(576, false);
    std::vector<uint8_t> leader, trailer;
    EXPECT_EQ(Reassemble(writer, block, false, leader, trailer), data);
    ASSERT_EQ(trailer.size(), 16u);
    EXPECT_EQ(Get32(trailer.data() + 4), 10u);
    EXPECT_EQ(Get32(trailer.data() + 8), 3000u);
}

TEST(GvcpServerCodecTest, RejectsCommandsLongerThanTheirDatagram) {
    uint8_t command[12] = {Gev::kCommandKey, 1, 0, 0x80, 0, 4, 0, 9, 0, 0, 0, 0};
    EXPECT_TRUE(ParseGvcpCommand(command, sizeof command));
    command[5] = 8; // claims more than arrived
    EXPECT_FALSE(ParseGvcpCommand(command, sizeof command));
    command[0] = 0x43;
    command[5] = 4;
    EXPECT_FALSE(ParseGvcpCommand(command, sizeof command));
}

TEST(GvcpServerCodecTest, ReadsBothPacketResendForms) {
    std::vector<uint8_t> datagram(8 + 20);
    datagram[0] = Gev::kCommandKey;
    Put16(datagram.data() + 2, Gev::PacketResendCmd);
    Put16(datagram.data() + 4, 12);
    Put16(datagram.data() + 10, 0x0BCD);
    Put32(datagram.data() + 12, 0xFF000005); // the top byte is not part of a 24-bit id
    Put32(datagram.data() + 16, 9);
    auto standard = ParsePacketResend(*ParseGvcpCommand(datagram.data(), datagram.size()));
    ASSERT_TRUE(standard);
    EXPECT_EQ(standard->blockId, 0x0BCDu);
    EXPECT_EQ(standard->firstPacket, 5u);
    EXPECT_EQ(standard->lastPacket, 9u);

    datagram[1] = Gev::kFlagExtendedId;
    Put16(datagram.data() + 4, 20);
    Put64(datagram.data() + 20, 0x123456789Aull);
    auto extended = ParsePacketResend(*ParseGvcpCommand(datagram.data(), datagram.size()));
    ASSERT_TRUE(extended);
    EXPECT_EQ(extended->blockId, 0x123456789Aull);
    EXPECT_EQ(extended->firstPacket, 0xFF000005u);
    Put16(datagram.data() + 4, 12); // too short for the extended form
    EXPECT_FALSE(ParsePacketResend(*ParseGvcpCommand(datagram.data(), datagram.size())));
}

} // namespace
} // namespace Emulator
} // namespace Orvan
