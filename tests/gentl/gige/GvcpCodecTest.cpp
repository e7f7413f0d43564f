// The GVCP client codec: commands as bytes on the wire, and acknowledges accepted only when
// well-formed and meant for the command waiting for them.
#include "gige/GvcpCodec.h"
#include "gige/GevProtocol.h"
#include "gige/GvcpStatus.h"

#include "ScriptedCamera.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace Orvan::Producer;
using GigeTest::Ack;
namespace Gev = Orvan::Gev;

namespace {

uint32_t Word(const std::vector<uint8_t>& bytes, size_t at) {
    return uint32_t(bytes[at]) << 24 | uint32_t(bytes[at + 1]) << 16 |
           uint32_t(bytes[at + 2]) << 8 | bytes[at + 3];
}

} // namespace

TEST(GvcpCodec, CommandsCarryHeaderAndFields) {
    auto read = BuildReadRegCommand(0x1234, {0x0A00, 0x0938});
    EXPECT_EQ(std::vector<uint8_t>(read.begin(), read.begin() + 8),
              (std::vector<uint8_t>{0x42, 0x01, 0x00, 0x80, 0x00, 0x08, 0x12, 0x34}));
    EXPECT_EQ(Word(read, 8), 0x0A00u);
    EXPECT_EQ(Word(read, 12), 0x0938u);

    auto mem = BuildReadMemCommand(7, 0x200, 536);
    EXPECT_EQ(mem.size(), 16u);
    EXPECT_EQ(Word(mem, 8), 0x200u);
    EXPECT_EQ(Word(mem, 12), 536u);

    auto action = BuildActionCommand(1, 0x11, 0x22, 0x33, 0x0000000500000006ull, true);
    EXPECT_EQ(action[1], Gev::kFlagAckRequired | Gev::kFlagScheduledAction);
    ASSERT_EQ(action.size(), 8 + Gev::kScheduledActionPayloadSize);
    EXPECT_EQ(Word(action, 20), 5u);
    EXPECT_EQ(Word(action, 24), 6u);
    EXPECT_EQ(BuildActionCommand(1, 0x11, 0x22, 0x33, 0, false).size(),
              8 + Gev::kActionPayloadSize);

    auto standard = BuildPacketResendCommand(9, 2, 0x12345, 0x1000001, 5, false);
    EXPECT_EQ(standard.size(), 20u);
    EXPECT_EQ(Word(standard, 8), 0x00022345u); // channel, low 16 bits of the block
    EXPECT_EQ(Word(standard, 12), 1u);         // 24-bit packet id
    auto extended = BuildPacketResendCommand(9, 2, 0x0000000700000008ull, 0x1000001, 5, true);
    EXPECT_EQ(extended[1], Gev::kFlagExtendedId);
    EXPECT_EQ(Word(extended, 12), 0x1000001u);
    EXPECT_EQ(Word(extended, 20), 7u);
    EXPECT_EQ(Word(extended, 24), 8u);

    auto force = BuildForceIpCommand(3, 0x223344556677ull, 0x0A000002, 0xFF000000, 0x0A000001);
    ASSERT_EQ(force.size(), 8 + Gev::ForceIpField::Size);
    EXPECT_EQ(Word(force, 8), 0x00002233u);
    EXPECT_EQ(Word(force, 12), 0x44556677u);
    EXPECT_EQ(Word(force, 8 + Gev::ForceIpField::StaticIp), 0x0A000002u);

    EXPECT_EQ(BuildEventAck(0x55, true), Ack(0, Gev::EventDataAck, 0x55, {}));
}

TEST(GvcpCodec, AcknowledgesAreSortedForTheWaitingCommand) {
    struct Case {
        const char* what;
        std::vector<uint8_t> bytes;
        bool parses;
        AckVerdict verdict;
    };
    const std::vector<Case> cases = {
        {"answer", Ack(0, Gev::ReadRegAck, 5, {0, 0, 0, 1}), true, AckVerdict::Answer},
        {"old request id", Ack(0, Gev::ReadRegAck, 4, {0, 0, 0, 1}), true, AckVerdict::Foreign},
        {"pending", Ack(0, Gev::PendingAck, 5, {0, 0, 0x01, 0xF4}), true, AckVerdict::Pending},
        {"pending without time", Ack(0, Gev::PendingAck, 5, {0, 0}), true, AckVerdict::Invalid},
        {"wrong answer code", Ack(0, Gev::WriteRegAck, 5, {0, 0, 0, 1}), true, AckVerdict::Invalid},
        {"error under a generic code", Ack(Gev::NotImplemented, 0xFFFF, 5, {}), true,
         AckVerdict::Answer},
        {"short header", {0, 0, 0, 0x81, 0}, false, AckVerdict::Invalid},
        {"length beyond the datagram",
         {0, 0, 0, 0x81, 0, 8, 0, 5, 1, 2, 3, 4},
         false,
         AckVerdict::Invalid},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        auto ack = ParseAck(c.bytes.data(), c.bytes.size());
        ASSERT_EQ(ack.has_value(), c.parses);
        if (!ack)
            continue;
        uint32_t pendingMs = 0;
        EXPECT_EQ(ClassifyAck(*ack, Gev::ReadRegAck, 5, pendingMs), c.verdict);
        if (c.verdict == AckVerdict::Pending) {
            EXPECT_EQ(pendingMs, 500u);
        }
    }
}

TEST(GvcpCodec, PayloadsMustMatchTheCommand) {
    uint32_t values[2] = {};
    auto regs = Ack(0, Gev::ReadRegAck, 1, {0, 0, 0, 7, 0, 0, 0, 9});
    auto parsed = ParseAck(regs.data(), regs.size());
    ASSERT_TRUE(parsed);
    ASSERT_TRUE(ParseReadRegAck(*parsed, values, 2));
    EXPECT_EQ(values[1], 9u);
    EXPECT_FALSE(ParseReadRegAck(*parsed, values, 1)) << "one value more than asked";

    uint8_t data[4] = {};
    auto mem = Ack(0, Gev::ReadMemAck, 1, {0, 0, 2, 0, 'a', 'b', 'c', 'd'});
    parsed = ParseAck(mem.data(), mem.size());
    ASSERT_TRUE(parsed);
    EXPECT_TRUE(ParseReadMemAck(*parsed, 0x200, data, 4));
    EXPECT_EQ(std::memcmp(data, "abcd", 4), 0);
    EXPECT_FALSE(ParseReadMemAck(*parsed, 0x204, data, 4)) << "other address";
    EXPECT_FALSE(ParseReadMemAck(*parsed, 0x200, data, 8)) << "fewer bytes than asked";
}

TEST(GvcpCodec, DiscoveryAnswerBecomesDeviceInfo) {
    namespace F = Gev::DiscoveryField;
    std::vector<uint8_t> payload(F::Size, 0);
    auto put32 = [&](size_t at, uint32_t v) {
        for (int i = 0; i < 4; ++i)
            payload[at + i] = uint8_t(v >> (24 - 8 * i));
    };
    auto text = [&](size_t at, const std::string& s) {
        std::memcpy(&payload[at], s.data(), s.size());
    };
    put32(F::MacLow, 0x33445566);
    payload[F::MacHigh + 1] = 0x22;
    put32(F::IpConfigCurrent, Gev::kIpConfigDhcp | Gev::kIpConfigLla);
    put32(F::CurrentIp, 0x7F000001);
    put32(F::CurrentSubnet, 0xFF000000);
    text(F::ManufacturerName, "Maker");
    text(F::ModelName, std::string(32, 'M')); // fills the field: no terminator
    text(F::SerialNumber, "SN42");
    text(F::UserDefinedName, "left");
    auto bytes = Ack(0, Gev::DiscoveryAck, 9, payload);

    auto identity = ParseDiscoveryAck(bytes.data(), bytes.size(), 9);
    ASSERT_TRUE(identity);
    EXPECT_EQ(identity->id, "00:22:33:44:55:66");
    EXPECT_EQ(identity->mac, 0x2233445566ull);
    EXPECT_EQ(identity->vendor, "Maker");
    EXPECT_EQ(identity->model, std::string(32, 'M'));
    EXPECT_EQ(identity->serialNumber, "SN42");
    EXPECT_EQ(identity->userDefinedName, "left");
    EXPECT_EQ(identity->ip, 0x7F000001u);
    EXPECT_TRUE(identity->dhcp && identity->lla && !identity->persistentIp);

    EXPECT_FALSE(ParseDiscoveryAck(bytes.data(), bytes.size(), 8)) << "other request";
    EXPECT_FALSE(ParseDiscoveryAck(bytes.data(), bytes.size() - 1, 9)) << "truncated";

    std::fill(payload.begin() + F::MacHigh, payload.begin() + F::MacLow + 4, 0);
    bytes = Ack(0, Gev::DiscoveryAck, 9, payload);
    identity = ParseDiscoveryAck(bytes.data(), bytes.size(), 9);
    ASSERT_TRUE(identity);
    EXPECT_EQ(identity->id, "127.0.0.1") << "a zero MAC names the camera by its address";
}

TEST(GvcpStatus, CodesBecomeGenTLErrorsWithReasons) {
    EXPECT_EQ(GvcpStatusError(Gev::Success), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(GvcpStatusError(Gev::AccessDenied), GenTL::GC_ERR_ACCESS_DENIED);
    EXPECT_NE(GvcpStatusText(Gev::AccessDenied).find("another application controls it"),
              std::string::npos);
    EXPECT_EQ(GvcpStatusError(Gev::InvalidAddress), GenTL::GC_ERR_INVALID_ADDRESS);
    EXPECT_EQ(GvcpStatusError(Gev::Busy), GenTL::GC_ERR_BUSY);
    EXPECT_EQ(GvcpStatusError(Gev::NotImplemented), GenTL::GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(GvcpStatusError(0x8ABC), GenTL::GC_ERR_ERROR);
    EXPECT_NE(GvcpStatusText(0x8ABC).find("0x8ABC"), std::string::npos);
}
