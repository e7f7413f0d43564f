#include "virtual/GevEventMessage.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace Orvan::Producer;

TEST(GevEventMessage, StandardFormByteForByte) {
    const GevEvent event{0x9001, 0x0000, 0x12345, 0x0102030405060708ull, {0xDE, 0xAD}};
    const std::vector<uint8_t> expected = {
        0x42, 0x00, 0x00, 0xC2, 0x00, 0x12, 0x00, 0x07, // key, flags, command, 18 bytes, req 7
        0x00, 0x00, 0x90, 0x01, 0x00, 0x00, 0x23, 0x45, // reserved, id, channel, block id low 16
        0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, // timestamp high, low
        0xDE, 0xAD};
    EXPECT_EQ(BuildGevEventMessage({event}, 7, false), expected);
}

TEST(GevEventMessage, ExtendedFormByteForByte) {
    const std::vector<GevEvent> events = {
        {0x9002, 0xFFFF, 0x1122334455667788ull, 0x0A0B0C0D0E0F1011ull, {0x5A}},
        {0x0001, 0x0001, 2, 3, {}}};
    const std::vector<uint8_t> expected = {
        0x42, 0x10, 0x00, 0xC2, 0x00, 0x31, 0x01, 0x00, // extended_id flag, 49 bytes, req 0x100
        0x00, 0x19, 0x90, 0x02, 0xFF, 0xFF, 0x00, 0x00, // size 25, id, channel, reserved
        0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, // 64-bit block id
        0x0A, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F, 0x10, 0x11, // timestamp
        0x5A,                                           // data
        0x00, 0x18, 0x00, 0x01, 0x00, 0x01, 0x00, 0x00, // size 24, no data
        0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x02, //
        0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x03};
    EXPECT_EQ(BuildGevEventMessage(events, 0x100, true), expected);
}

TEST(GevEventMessage, RefusesWhatTheLayoutCannotCarry) {
    const GevEvent small{1, 0, 0, 0, {}};
    const GevEvent huge{1, 0, 0, 0, std::vector<uint8_t>(0xFFFF - 16 + 1)};
    EXPECT_THROW(BuildGevEventMessage({}, 1, true), std::invalid_argument);
    EXPECT_THROW(BuildGevEventMessage({small, small}, 1, false), std::invalid_argument);
    EXPECT_THROW(BuildGevEventMessage({huge}, 1, false), std::invalid_argument);
    EXPECT_EQ(
        BuildGevEventMessage({GevEvent{1, 0, 0, 0, std::vector<uint8_t>(0xFFFF - 16)}}, 1, false)
            .size(),
        0xFFFFu + 8);
}

} // namespace
