// The groups of the packing functions: each describes one group of samples and converts it a
// word, a 16-byte vector or a 32-byte vector at a time (see PackedGroups.h). The 32-byte forms
// repeat the 16-byte ones lane by lane. Exposed so the narrower paths, which faster machines use
// only for the last groups, can be tested on their own.
#ifndef ORVAN_IMAGEPROC_PACKINGGROUPS_H
#define ORVAN_IMAGEPROC_PACKINGGROUPS_H

#include "PackedGroups.h"

namespace Orvan {
namespace PackingGroups {

// Four 10-bit samples, least significant bits first, in 5 bytes.
struct Group10p {
    static constexpr size_t samples = 4, inBytes = 8, outBytes = 5, vectorGroups = 2;
    static constexpr bool wideVectors = true;
    static uint64_t Convert(uint64_t w) {
        return (w & 0x3FF) | ((w >> 6) & (uint64_t{0x3FF} << 10)) |
               ((w >> 12) & (uint64_t{0x3FF} << 20)) | ((w >> 18) & (uint64_t{0x3FF} << 30));
    }
    static ORVAN_TARGET_SSSE3 __m128i ConvertVector(__m128i v) {
        const __m128i samples = _mm_and_si128(v, _mm_set1_epi16(0x3FF));
        // a + b * 1024 in every 32-bit lane, then both 20-bit halves of a group side by side.
        const __m128i pairs = _mm_madd_epi16(samples, _mm_set1_epi32(0x04000001));
        const __m128i groups =
            _mm_or_si128(_mm_and_si128(pairs, _mm_set1_epi64x(0xFFFFF)),
                         _mm_and_si128(_mm_srli_epi64(pairs, 12), _mm_set1_epi64x(~0xFFFFFll)));
        return _mm_shuffle_epi8(
            groups, _mm_setr_epi8(0, 1, 2, 3, 4, 8, 9, 10, 11, 12, -1, -1, -1, -1, -1, -1));
    }
    static ORVAN_TARGET_AVX2 __m256i ConvertVector(__m256i v) {
        const __m256i samples = _mm256_and_si256(v, _mm256_set1_epi16(0x3FF));
        const __m256i pairs = _mm256_madd_epi16(samples, _mm256_set1_epi32(0x04000001));
        const __m256i groups = _mm256_or_si256(
            _mm256_and_si256(pairs, _mm256_set1_epi64x(0xFFFFF)),
            _mm256_and_si256(_mm256_srli_epi64(pairs, 12), _mm256_set1_epi64x(~0xFFFFFll)));
        return _mm256_shuffle_epi8(groups, _mm256_setr_epi8(0, 1, 2, 3, 4, 8, 9, 10, 11, 12, -1, -1,
                                                            -1, -1, -1, -1, 0, 1, 2, 3, 4, 8, 9, 10,
                                                            11, 12, -1, -1, -1, -1, -1, -1));
    }
};

// Joins the 12-bit value pairs x + (y << 12) of every 32-bit lane into three bytes each.
inline ORVAN_TARGET_SSSE3 __m128i JoinPairsOf12(__m128i xy) {
    const __m128i pairs = _mm_madd_epi16(xy, _mm_set1_epi32(0x10000001));
    return _mm_shuffle_epi8(pairs,
                            _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1));
}

inline ORVAN_TARGET_AVX2 __m256i JoinPairsOf12(__m256i xy) {
    const __m256i pairs = _mm256_madd_epi16(xy, _mm256_set1_epi32(0x10000001));
    return _mm256_shuffle_epi8(pairs, _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1,
                                                       -1, -1, -1, 0, 1, 2, 4, 5, 6, 8, 9, 10, 12,
                                                       13, 14, -1, -1, -1, -1));
}

// Bits 9..2 of each sample in bytes 0 and 2; both pairs of low bits share byte 1.
struct Group10Packed {
    static constexpr size_t samples = 2, inBytes = 4, outBytes = 3, vectorGroups = 4;
    static constexpr bool wideVectors = true;
    static uint64_t Convert(uint64_t w) {
        const uint64_t b0 = (w >> 2) & 0xFF;
        const uint64_t b1 = (w & 0x3) | ((w >> 12) & 0x30);
        const uint64_t b2 = (w >> 18) & 0xFF;
        return b0 | (b1 << 8) | (b2 << 16);
    }
    // The three bytes are x + (y << 12) for x = bits 9..2 then 1..0 of the first sample and
    // y = bits 1..0 then 9..2 of the second.
    static ORVAN_TARGET_SSSE3 __m128i ConvertVector(__m128i v) {
        const __m128i x = _mm_or_si128(_mm_and_si128(_mm_srli_epi16(v, 2), LaneMask(0xFF, 0)),
                                       _mm_and_si128(_mm_slli_epi16(v, 8), LaneMask(0x300, 0)));
        const __m128i y = _mm_or_si128(_mm_and_si128(v, LaneMask(0, 0x3)),
                                       _mm_and_si128(_mm_slli_epi16(v, 2), LaneMask(0, 0xFF0)));
        return JoinPairsOf12(_mm_or_si128(x, y));
    }
    static ORVAN_TARGET_AVX2 __m256i ConvertVector(__m256i v) {
        const __m256i x =
            _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi16(v, 2), LaneMask256(0xFF, 0)),
                            _mm256_and_si256(_mm256_slli_epi16(v, 8), LaneMask256(0x300, 0)));
        const __m256i y =
            _mm256_or_si256(_mm256_and_si256(v, LaneMask256(0, 0x3)),
                            _mm256_and_si256(_mm256_slli_epi16(v, 2), LaneMask256(0, 0xFF0)));
        return JoinPairsOf12(_mm256_or_si256(x, y));
    }
};

// Two 12-bit samples, least significant bits first, in 3 bytes.
struct Group12p {
    static constexpr size_t samples = 2, inBytes = 4, outBytes = 3, vectorGroups = 4;
    static constexpr bool wideVectors = true;
    static uint64_t Convert(uint64_t w) { return (w & 0xFFF) | ((w >> 4) & 0xFFF000); }
    static ORVAN_TARGET_SSSE3 __m128i ConvertVector(__m128i v) {
        return JoinPairsOf12(_mm_and_si128(v, _mm_set1_epi16(0xFFF)));
    }
    static ORVAN_TARGET_AVX2 __m256i ConvertVector(__m256i v) {
        return JoinPairsOf12(_mm256_and_si256(v, _mm256_set1_epi16(0xFFF)));
    }
};

// Bits 11..4 of each sample in bytes 0 and 2; both low nibbles share byte 1.
struct Group12Packed {
    static constexpr size_t samples = 2, inBytes = 4, outBytes = 3, vectorGroups = 4;
    static constexpr bool wideVectors = true;
    static uint64_t Convert(uint64_t w) {
        const uint64_t b0 = (w >> 4) & 0xFF;
        const uint64_t b1 = (w & 0xF) | ((w >> 12) & 0xF0);
        const uint64_t b2 = (w >> 20) & 0xFF;
        return b0 | (b1 << 8) | (b2 << 16);
    }
    // The 12p form of the pair once the first sample's nibbles are rotated: bits 11..4 first.
    static ORVAN_TARGET_SSSE3 __m128i ConvertVector(__m128i v) {
        const __m128i x = _mm_or_si128(_mm_and_si128(_mm_srli_epi16(v, 4), LaneMask(0xFF, 0)),
                                       _mm_and_si128(_mm_slli_epi16(v, 8), LaneMask(0xF00, 0)));
        return JoinPairsOf12(_mm_or_si128(x, _mm_and_si128(v, LaneMask(0, 0xFFF))));
    }
    static ORVAN_TARGET_AVX2 __m256i ConvertVector(__m256i v) {
        const __m256i x =
            _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi16(v, 4), LaneMask256(0xFF, 0)),
                            _mm256_and_si256(_mm256_slli_epi16(v, 8), LaneMask256(0xF00, 0)));
        return JoinPairsOf12(_mm256_or_si256(x, _mm256_and_si256(v, LaneMask256(0, 0xFFF))));
    }
};

} // namespace PackingGroups
} // namespace Orvan

#endif
