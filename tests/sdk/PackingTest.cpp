#include "imageproc/Packing.h"
#include "imageproc/PackingGroups.h"
#include "imageproc/Unpacking.h"
#include "imageproc/UnpackingGroups.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

using namespace Orvan;

namespace {

// Plain byte loops written from the layout descriptions, one group per iteration: the
// reference the word-at-a-time converters must match bit for bit.
using Converter = void (*)(const uint8_t*, uint8_t*, size_t, size_t, size_t);

unsigned Word(const uint8_t* p, size_t i) {
    return p[2 * i] | p[2 * i + 1] << 8;
}
void PutWord(uint8_t* p, size_t i, unsigned v) {
    p[2 * i] = uint8_t(v);
    p[2 * i + 1] = uint8_t(v >> 8);
}

void RefTo10p(const uint8_t* s, uint8_t* d, size_t w, size_t h, size_t spp) {
    for (size_t i = 0; i < w * h * spp; i += 4, d += 5) {
        unsigned a = Word(s, i), b = Word(s, i + 1), c = Word(s, i + 2), e = Word(s, i + 3);
        d[0] = uint8_t(a);
        d[1] = uint8_t(((a >> 8) & 0x3) | ((b & 0x3F) << 2));
        d[2] = uint8_t(((b >> 6) & 0xF) | ((c & 0xF) << 4));
        d[3] = uint8_t(((c >> 4) & 0x3F) | ((e & 0x3) << 6));
        d[4] = uint8_t(e >> 2);
    }
}
void RefTo10Packed(const uint8_t* s, uint8_t* d, size_t w, size_t h, size_t spp) {
    for (size_t i = 0; i < w * h * spp; i += 2, d += 3) {
        unsigned a = Word(s, i), b = Word(s, i + 1);
        d[0] = uint8_t(a >> 2);
        d[1] = uint8_t((a & 0x3) | ((b & 0x3) << 4));
        d[2] = uint8_t(b >> 2);
    }
}
void RefTo12p(const uint8_t* s, uint8_t* d, size_t w, size_t h, size_t spp) {
    for (size_t i = 0; i < w * h * spp; i += 2, d += 3) {
        unsigned a = Word(s, i), b = Word(s, i + 1);
        d[0] = uint8_t(a);
        d[1] = uint8_t(((a >> 8) & 0xF) | ((b & 0xF) << 4));
        d[2] = uint8_t(b >> 4);
    }
}
void RefTo12Packed(const uint8_t* s, uint8_t* d, size_t w, size_t h, size_t spp) {
    for (size_t i = 0; i < w * h * spp; i += 2, d += 3) {
        unsigned a = Word(s, i), b = Word(s, i + 1);
        d[0] = uint8_t(a >> 4);
        d[1] = uint8_t((a & 0xF) | ((b & 0xF) << 4));
        d[2] = uint8_t(b >> 4);
    }
}
void RefFrom10p(const uint8_t* s, uint8_t* d, size_t w, size_t h, size_t spp) {
    for (size_t i = 0; i < w * h * spp; i += 4, s += 5) {
        PutWord(d, i, s[0] | (s[1] & 0x3) << 8);
        PutWord(d, i + 1, s[1] >> 2 | (s[2] & 0xF) << 6);
        PutWord(d, i + 2, s[2] >> 4 | (s[3] & 0x3F) << 4);
        PutWord(d, i + 3, s[3] >> 6 | s[4] << 2);
    }
}
void RefFrom10Packed(const uint8_t* s, uint8_t* d, size_t w, size_t h, size_t spp) {
    for (size_t i = 0; i < w * h * spp; i += 2, s += 3) {
        d[2 * i] = uint8_t(s[0] << 2);
        d[2 * i + 1] = uint8_t(s[0] >> 6);
        PutWord(d, i + 1, s[2] << 2 | ((s[1] >> 4) & 0x3));
    }
}
void RefFrom12p(const uint8_t* s, uint8_t* d, size_t w, size_t h, size_t spp) {
    for (size_t i = 0; i < w * h * spp; i += 2, s += 3) {
        PutWord(d, i, s[0] | (s[1] & 0xF) << 8);
        PutWord(d, i + 1, s[1] >> 4 | s[2] << 4);
    }
}
void RefFrom12Packed(const uint8_t* s, uint8_t* d, size_t w, size_t h, size_t spp) {
    for (size_t i = 0; i < w * h * spp; i += 2, s += 3) {
        PutWord(d, i, s[0] << 4 | (s[1] & 0xF));
        PutWord(d, i + 1, s[2] << 4 | s[1] >> 4);
    }
}

// The narrower paths alone, as machines without AVX2 or SSSE3 run them.
using GroupConverter = void (*)(const uint8_t*, uint8_t*, size_t groups);

template <class Group>
void Ssse3ThenWords(const uint8_t* source, uint8_t* destination, size_t groups) {
    const size_t done = ConvertVectors<Group>(source, destination, groups);
    ConvertWords<Group>(source + done * Group::inBytes, destination + done * Group::outBytes,
                        groups - done);
}

struct Paths {
    GroupConverter words, ssse3;
};

template <class Group>
constexpr Paths NarrowPaths() {
    return {ConvertWords<Group>, Ssse3ThenWords<Group>};
}

struct Layout {
    const char* name;
    size_t groupSamples, packedBytes;
    unsigned bits;
    Converter pack, refPack, unpack, refUnpack;
    Paths packPaths, unpackPaths;
};

const Layout kLayouts[] = {
    {"10p", 4, 5, 10, Packing::To10p, RefTo10p, Unpacking::From10p, RefFrom10p,
     NarrowPaths<PackingGroups::Group10p>(), NarrowPaths<UnpackingGroups::Group10p>()},
    {"10Packed", 2, 3, 10, Packing::To10Packed, RefTo10Packed, Unpacking::From10Packed,
     RefFrom10Packed, NarrowPaths<PackingGroups::Group10Packed>(),
     NarrowPaths<UnpackingGroups::Group10Packed>()},
    {"12p", 2, 3, 12, Packing::To12p, RefTo12p, Unpacking::From12p, RefFrom12p,
     NarrowPaths<PackingGroups::Group12p>(), NarrowPaths<UnpackingGroups::Group12p>()},
    {"12Packed", 2, 3, 12, Packing::To12Packed, RefTo12Packed, Unpacking::From12Packed,
     RefFrom12Packed, NarrowPaths<PackingGroups::Group12Packed>(),
     NarrowPaths<UnpackingGroups::Group12Packed>()},
};

std::vector<uint8_t> RandomBytes(std::mt19937& rng, size_t n) {
    std::vector<uint8_t> bytes(n);
    for (uint8_t& b : bytes)
        b = uint8_t(rng());
    return bytes;
}

size_t Groups(const Layout& layout, size_t count) {
    return (count + layout.groupSamples - 1) / layout.groupSamples;
}

} // namespace

TEST(Packing, EveryPathMatchesThePlainLoopsBitForBitOnRandomData) {
    std::mt19937 rng(20261122);
    for (const Layout& layout : kLayouts) {
        for (int trial = 0; trial < 300; ++trial) {
            const size_t count = trial < 40 ? trial : rng() % 5000;
            const size_t groups = Groups(layout, count);
            SCOPED_TRACE(std::string(layout.name) + ", " + std::to_string(count) + " samples");
            // Words carry random bits above the depth too: both must discard them alike.
            const std::vector<uint8_t> words = RandomBytes(rng, groups * layout.groupSamples * 2);
            std::vector<uint8_t> packed(groups * layout.packedBytes, 0xA5), expected = packed;
            layout.pack(words.data(), packed.data(), count, 1, 1);
            layout.refPack(words.data(), expected.data(), count, 1, 1);
            ASSERT_EQ(packed, expected);
            for (GroupConverter path : {layout.packPaths.words, layout.packPaths.ssse3}) {
                packed.assign(packed.size(), 0xA5);
                path(words.data(), packed.data(), groups);
                ASSERT_EQ(packed, expected);
            }

            const std::vector<uint8_t> stream = RandomBytes(rng, groups * layout.packedBytes);
            std::vector<uint8_t> unpacked(groups * layout.groupSamples * 2, 0x5A);
            std::vector<uint8_t> expectedWords = unpacked;
            layout.unpack(stream.data(), unpacked.data(), count, 1, 1);
            layout.refUnpack(stream.data(), expectedWords.data(), count, 1, 1);
            ASSERT_EQ(unpacked, expectedWords);
            for (GroupConverter path : {layout.unpackPaths.words, layout.unpackPaths.ssse3}) {
                unpacked.assign(unpacked.size(), 0x5A);
                path(stream.data(), unpacked.data(), groups);
                ASSERT_EQ(unpacked, expectedWords);
            }
        }
    }
}

TEST(Packing, RoundTripsKeepTheLowBitsExceptFirstOf10PackedPairs) {
    std::mt19937 rng(7);
    for (const Layout& layout : kLayouts) {
        SCOPED_TRACE(layout.name);
        const size_t width = 37, height = 3, spp = 2, count = width * height * spp;
        const size_t groups = Groups(layout, count);
        const std::vector<uint8_t> words = RandomBytes(rng, groups * layout.groupSamples * 2);
        std::vector<uint8_t> packed(groups * layout.packedBytes);
        std::vector<uint8_t> back(words.size());
        layout.pack(words.data(), packed.data(), width, height, spp);
        layout.unpack(packed.data(), back.data(), width, height, spp);
        const unsigned mask = (1u << layout.bits) - 1;
        for (size_t i = 0; i < count; ++i) {
            const bool lossy = layout.unpack == Unpacking::From10Packed && i % 2 == 0;
            const unsigned kept = lossy ? mask & ~0x3u : mask;
            ASSERT_EQ(Word(back.data(), i), Word(words.data(), i) & kept) << "sample " << i;
        }
    }
}

TEST(Packing, PartialGroupIsProcessedWhole) {
    // Five samples in 10p are two groups: all eight words are packed and unpacked.
    std::vector<uint8_t> words(16);
    for (size_t i = 0; i < 8; ++i)
        PutWord(words.data(), i, unsigned(0x3F0 + i));
    std::vector<uint8_t> packed(10, 0), back(16, 0);
    Packing::To10p(words.data(), packed.data(), 5, 1, 1);
    Unpacking::From10p(packed.data(), back.data(), 5, 1, 1);
    EXPECT_EQ(back, words);
    std::vector<uint8_t> untouched(10, 0xEE);
    Packing::To10p(words.data(), untouched.data(), 0, 1, 1);
    EXPECT_EQ(untouched, std::vector<uint8_t>(10, 0xEE));
}
