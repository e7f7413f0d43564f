// The loops shared by the packers and unpackers. A layout is a struct describing one group
// (samples, bytes in, bytes out) with a function mapping the group's input bytes, read as a
// little-endian integer, to its output bytes, and a function converting the groups of one
// 16-byte vector.
//
// Where the processor has SSSE3, most groups go a vector at a time: one unaligned 16-byte load,
// a byte shuffle, shifts and masks, one 16-byte store whose surplus bytes the next vector
// overwrites. Layouts with `wideVectors` go 32 bytes at a time first where the processor has
// AVX2, storing each 16-byte lane's result separately. The rest go a 64-bit word at a time the
// same way, and the last few groups, where such a wide load or store would leave the
// whole-group extents, byte-exactly.
#ifndef ORVAN_IMAGEPROC_PACKEDGROUPS_H
#define ORVAN_IMAGEPROC_PACKEDGROUPS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <immintrin.h>

// Functions using SSSE3 (AVX2) instructions; they run only after CpuHasSsse3() (CpuHasAvx2()).
#define ORVAN_TARGET_SSSE3 __attribute__((target("ssse3")))
#define ORVAN_TARGET_AVX2 __attribute__((target("avx2")))

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
              "the packing loops read and write little-endian words directly");

namespace Orvan {

inline uint64_t LoadWord64(const uint8_t* p) {
    uint64_t value;
    std::memcpy(&value, p, sizeof value);
    return value;
}

inline void StoreWord64(uint8_t* p, uint64_t value) {
    std::memcpy(p, &value, sizeof value);
}

// A vector of 16-bit lanes alternating between two values, even lanes first.
inline __m128i LaneMask(uint16_t even, uint16_t odd) {
    return _mm_set1_epi32(static_cast<int>(uint32_t{odd} << 16 | even));
}

inline ORVAN_TARGET_AVX2 __m256i LaneMask256(uint16_t even, uint16_t odd) {
    return _mm256_set1_epi32(static_cast<int>(uint32_t{odd} << 16 | even));
}

// How many groups one 64-bit word carries in and out.
template <class Group>
constexpr size_t GroupsPerWord() {
    return 8 / std::max(Group::inBytes, Group::outBytes);
}

template <class Group>
uint64_t ConvertWord(uint64_t word) {
    if constexpr (GroupsPerWord<Group>() == 1) {
        return Group::Convert(word);
    } else {
        static_assert(GroupsPerWord<Group>() == 2, "a word holds one or two groups");
        constexpr unsigned inBits = 8 * Group::inBytes;
        constexpr uint64_t inMask = (uint64_t{1} << inBits) - 1;
        return Group::Convert(word & inMask) |
               (Group::Convert((word >> inBits) & inMask) << (8 * Group::outBytes));
    }
}

// Groups that must stay behind a load or store of `width` bytes starting at a block of
// `perBlock` groups, for both to end inside the whole-group extents.
template <class Group>
constexpr size_t ReservedGroups(size_t width, size_t perBlock) {
    return std::max({perBlock, (width + Group::inBytes - 1) / Group::inBytes,
                     (width + Group::outBytes - 1) / Group::outBytes});
}

// Converts the leading groups that whole vectors can take; returns how many it converted.
template <class Group>
ORVAN_TARGET_SSSE3 size_t ConvertVectors(const uint8_t* source, uint8_t* destination,
                                         size_t groups) {
    constexpr size_t perVector = Group::vectorGroups;
    constexpr size_t reserve = ReservedGroups<Group>(16, perVector);
    size_t g = 0;
    if (groups >= reserve) {
        const size_t vectorEnd = groups - reserve + 1;
        for (; g < vectorEnd; g += perVector) {
            const __m128i in =
                _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + g * Group::inBytes));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(destination + g * Group::outBytes),
                             Group::ConvertVector(in));
        }
    }
    return g;
}

// The same with 32-byte vectors, each of whose 16-byte lanes converts like a 16-byte vector.
template <class Group>
ORVAN_TARGET_AVX2 size_t ConvertWideVectors(const uint8_t* source, uint8_t* destination,
                                            size_t groups) {
    constexpr size_t perLane = Group::vectorGroups;
    constexpr size_t in = Group::inBytes;
    constexpr size_t out = Group::outBytes;
    // The load spans both lanes' input; the second lane's store starts perLane groups later.
    constexpr size_t reserve =
        std::max({2 * perLane, (32 + in - 1) / in, perLane + (16 + out - 1) / out});
    size_t g = 0;
    if (groups >= reserve) {
        const size_t vectorEnd = groups - reserve + 1;
        for (; g < vectorEnd; g += 2 * perLane) {
            const __m256i result = Group::ConvertVector(
                _mm256_loadu_si256(reinterpret_cast<const __m256i*>(source + g * in)));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(destination + g * out),
                             _mm256_castsi256_si128(result));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(destination + (g + perLane) * out),
                             _mm256_extracti128_si256(result, 1));
        }
    }
    return g;
}

// Converts `groups` groups a word at a time, then the last ones byte-exactly.
template <class Group>
void ConvertWords(const uint8_t* source, uint8_t* destination, size_t groups) {
    constexpr size_t in = Group::inBytes;
    constexpr size_t out = Group::outBytes;
    constexpr size_t perWord = GroupsPerWord<Group>();
    constexpr size_t reserve = ReservedGroups<Group>(8, perWord);
    size_t g = 0;
    if (groups >= reserve) {
        const size_t wordEnd = groups - reserve + 1;
        for (; g < wordEnd; g += perWord)
            StoreWord64(destination + g * out, ConvertWord<Group>(LoadWord64(source + g * in)));
    }
    for (; g < groups; ++g) {
        uint64_t word = 0;
        std::memcpy(&word, source + g * in, in);
        word = Group::Convert(word);
        std::memcpy(destination + g * out, &word, out);
    }
}

inline bool CpuHasSsse3() {
    static const bool hasSsse3 = __builtin_cpu_supports("ssse3");
    return hasSsse3;
}

inline bool CpuHasAvx2() {
    static const bool hasAvx2 = __builtin_cpu_supports("avx2");
    return hasAvx2;
}

// Converts the ceil(count / samples) groups that cover `count` samples, each path taking what
// the wider ones left.
template <class Group>
void ConvertGroups(const uint8_t* source, uint8_t* destination, size_t count) {
    constexpr size_t in = Group::inBytes;
    constexpr size_t out = Group::outBytes;
    const size_t groups = (count + Group::samples - 1) / Group::samples;
    size_t done = 0;
    if constexpr (Group::wideVectors)
        if (CpuHasAvx2())
            done = ConvertWideVectors<Group>(source, destination, groups);
    if (CpuHasSsse3())
        done += ConvertVectors<Group>(source + done * in, destination + done * out, groups - done);
    ConvertWords<Group>(source + done * in, destination + done * out, groups - done);
}

} // namespace Orvan

#endif
