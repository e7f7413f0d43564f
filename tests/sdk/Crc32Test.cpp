#include "SpineTestSupport.h"

#include <Orvan/OrvanApi.h>

#include <boost/crc.hpp>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

TEST(Crc32, CheckValueOfTheNineDigits) {
    const std::string digits = "123456789";
    EXPECT_EQ(Orvan::CalculateCRC32(reinterpret_cast<const uint8_t*>(digits.data()), 9),
              0xCBF43926u);
}

TEST(Crc32, AgreesWithBoostOnRandomDataAndAlignments) {
    std::mt19937 rng(42);
    std::vector<uint8_t> data(1 << 20);
    for (uint8_t& b : data)
        b = uint8_t(rng());
    for (int trial = 0; trial < 200; ++trial) {
        const size_t offset = rng() % 64;
        const size_t length = 1 + (trial < 100 ? trial : rng() % (data.size() - offset - 1));
        boost::crc_32_type expected;
        expected.process_bytes(data.data() + offset, length);
        ASSERT_EQ(Orvan::CalculateCRC32(data.data() + offset, length), expected.checksum())
            << "offset " << offset << ", length " << length;
    }
}

TEST(Crc32, RefusesNullAndEmptyRanges) {
    const uint8_t byte = 0;
    const struct {
        const uint8_t* data;
        size_t length;
        const char* message;
    } rows[] = {
        {nullptr, 4, "InvalidArgumentException: pData is nullptr. (Buffer, CalculateCRC32)"},
        {nullptr, 0, "InvalidArgumentException: pData is nullptr. (Buffer, CalculateCRC32)"},
        {&byte, 0, "InvalidArgumentException: nBytes must be > 0. (Buffer, CalculateCRC32)"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(SpineTest::Message([&] { Orvan::CalculateCRC32(row.data, row.length); }),
                  row.message);
}
