#include "virtual/ChunkTrailer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

using namespace Orvan::Producer;

uint32_t BigEndian32(const uint8_t* p) {
    return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3];
}

struct Chunk {
    uint32_t id;
    size_t offset;
    uint32_t length;
};

// Reads a GigE Vision chunk payload the way a consumer does: from the end, tag by tag.
std::vector<Chunk> ParseBackwards(const uint8_t* payload, size_t size) {
    std::vector<Chunk> chunks;
    size_t end = size;
    while (end > 0) {
        if (end < 8)
            return {};
        const uint32_t id = BigEndian32(payload + end - 8);
        const uint32_t length = BigEndian32(payload + end - 4);
        if (length > end - 8)
            return {};
        end -= 8 + length;
        chunks.insert(chunks.begin(), Chunk{id, end, length});
    }
    return chunks;
}

TEST(ChunkTrailer, ChunksWalkBackToTheImage) {
    std::vector<uint8_t> buffer(64, 0xEE);
    for (uint8_t i = 0; i < 10; ++i)
        buffer[i] = i; // the image, rendered in place
    ChunkTrailer trailer(buffer.data(), buffer.size());
    const uint8_t crc[4] = {1, 2, 3, 4};
    const uint8_t timestamp[8] = {9, 8, 7, 6, 5, 4, 3, 2};
    ASSERT_TRUE(trailer.AppendInPlace(0x00000001, 10));
    ASSERT_TRUE(trailer.Append(0x0000A001, crc, 4));
    ASSERT_TRUE(trailer.Append(0x0000A002, timestamp, 8));
    ASSERT_EQ(trailer.Size(), 10u + 4 + 8 + 3 * 8);

    const auto chunks = ParseBackwards(buffer.data(), trailer.Size());
    ASSERT_EQ(chunks.size(), 3u);
    const Chunk expected[] = {{0x00000001, 0, 10}, {0x0000A001, 18, 4}, {0x0000A002, 30, 8}};
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(chunks[i].id, expected[i].id);
        EXPECT_EQ(chunks[i].offset, expected[i].offset);
        EXPECT_EQ(chunks[i].length, expected[i].length);
    }
    EXPECT_EQ(buffer[9], 9);
    EXPECT_TRUE(std::equal(crc, crc + 4, buffer.begin() + 18));
    EXPECT_TRUE(std::equal(timestamp, timestamp + 8, buffer.begin() + 30));
    EXPECT_EQ(buffer[trailer.Size()], 0xEE); // nothing written past the end
}

TEST(ChunkTrailer, RefusesChunksThatDoNotFitAndWritesNothing) {
    std::vector<uint8_t> buffer(32, 0xEE);
    const uint8_t data[12] = {};
    ChunkTrailer trailer(buffer.data(), 20);
    EXPECT_FALSE(trailer.Append(1, data, 0xFFFFFFFFu));
    EXPECT_FALSE(trailer.AppendInPlace(1, 13));
    EXPECT_EQ(trailer.Size(), 0u);
    EXPECT_TRUE(trailer.Append(1, data, 12)); // exactly fills the capacity
    EXPECT_FALSE(trailer.Append(2, data, 0));
    EXPECT_FALSE(trailer.AppendInPlace(2, 0));
    EXPECT_EQ(trailer.Size(), 20u);
    EXPECT_EQ(std::count(buffer.begin() + 20, buffer.end(), 0xEE), 12);
}

uint32_t BitwiseCrc32(const uint8_t* data, size_t size) {
    uint32_t crc = 0xFFFFFFFF;
    for (size_t i = 0; i < size; ++i) {
        crc ^= data[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1)));
    }
    return ~crc;
}

TEST(Crc32, MatchesTheCheckValueAndABitwiseReference) {
    EXPECT_EQ(Crc32("123456789", 9), 0xCBF43926u);
    std::mt19937 random(4);
    std::vector<uint8_t> data(70001);
    for (uint8_t& byte : data)
        byte = uint8_t(random());
    for (size_t size : {size_t(0), size_t(1), size_t(7), size_t(64), size_t(1000), data.size()})
        EXPECT_EQ(Crc32(data.data(), size), BitwiseCrc32(data.data(), size)) << size;
}

} // namespace
