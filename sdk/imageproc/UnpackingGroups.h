// The groups of the unpacking functions: each describes one group of samples and converts it a
// word or a vector at a time (see PackedGroups.h). Exposed so the word path, which SSSE3
// machines use only for the last groups, can be tested on its own.
#ifndef ORVAN_IMAGEPROC_UNPACKINGGROUPS_H
#define ORVAN_IMAGEPROC_UNPACKINGGROUPS_H

#include "PackedGroups.h"

namespace Orvan {
namespace UnpackingGroups {

struct Group10p {
    static constexpr size_t samples = 4, inBytes = 5, outBytes = 8, vectorGroups = 2;
    static constexpr bool wideVectors = false;
    static uint64_t Convert(uint64_t w) {
        return (w & 0x3FF) | ((w << 6) & (uint64_t{0x3FF} << 16)) |
               ((w << 12) & (uint64_t{0x3FF} << 32)) | ((w << 18) & (uint64_t{0x3FF} << 48));
    }
    // Each lane takes the two bytes its sample starts in; shifting the sample to the top of the
    // lane (dropping the next sample's bits) and back leaves it alone.
    static ORVAN_TARGET_SSSE3 __m128i ConvertVector(__m128i v) {
        const __m128i lanes =
            _mm_shuffle_epi8(v, _mm_setr_epi8(0, 1, 1, 2, 2, 3, 3, 4, 5, 6, 6, 7, 7, 8, 8, 9));
        const __m128i top = _mm_mullo_epi16(lanes, _mm_setr_epi16(64, 16, 4, 1, 64, 16, 4, 1));
        return _mm_srli_epi16(top, 6);
    }
};

// The first sample is rebuilt from byte 0 alone: its two low bits, in byte 1, are dropped.
struct Group10Packed {
    static constexpr size_t samples = 2, inBytes = 3, outBytes = 4, vectorGroups = 4;
    static constexpr bool wideVectors = false;
    static uint64_t Convert(uint64_t w) {
        const uint64_t first = (w & 0xFF) << 2;
        const uint64_t second = ((w >> 14) & 0x3FC) | ((w >> 12) & 0x3);
        return first | (second << 16);
    }
    static ORVAN_TARGET_SSSE3 __m128i ConvertVector(__m128i v) {
        // Even lanes hold byte 0 alone, odd lanes bytes 1 and 2.
        const __m128i lanes = _mm_shuffle_epi8(
            v, _mm_setr_epi8(0, -1, 1, 2, 3, -1, 4, 5, 6, -1, 7, 8, 9, -1, 10, 11));
        const __m128i first = _mm_and_si128(_mm_slli_epi16(lanes, 2), LaneMask(0x3FC, 0));
        const __m128i high = _mm_and_si128(_mm_srli_epi16(lanes, 6), LaneMask(0, 0x3FC));
        const __m128i low = _mm_and_si128(_mm_srli_epi16(lanes, 4), LaneMask(0, 0x3));
        return _mm_or_si128(first, _mm_or_si128(high, low));
    }
};

struct Group12p {
    static constexpr size_t samples = 2, inBytes = 3, outBytes = 4, vectorGroups = 4;
    static constexpr bool wideVectors = false;
    static uint64_t Convert(uint64_t w) { return (w & 0xFFF) | ((w << 4) & 0xFFF0000); }
    static ORVAN_TARGET_SSSE3 __m128i ConvertVector(__m128i v) {
        // Bytes 0-1 in even lanes, 1-2 in odd lanes.
        const __m128i lanes =
            _mm_shuffle_epi8(v, _mm_setr_epi8(0, 1, 1, 2, 3, 4, 4, 5, 6, 7, 7, 8, 9, 10, 10, 11));
        return _mm_or_si128(_mm_and_si128(lanes, LaneMask(0xFFF, 0)),
                            _mm_and_si128(_mm_srli_epi16(lanes, 4), LaneMask(0, 0xFFF)));
    }
};

struct Group12Packed {
    static constexpr size_t samples = 2, inBytes = 3, outBytes = 4, vectorGroups = 4;
    static constexpr bool wideVectors = false;
    static uint64_t Convert(uint64_t w) {
        const uint64_t first = ((w & 0xFF) << 4) | ((w >> 8) & 0xF);
        const uint64_t second = ((w >> 12) & 0xFF0) | ((w >> 12) & 0xF);
        return first | (second << 16);
    }
    static ORVAN_TARGET_SSSE3 __m128i ConvertVector(__m128i v) {
        // Even lanes hold byte 1 low and byte 0 high, odd lanes bytes 1 and 2.
        const __m128i lanes =
            _mm_shuffle_epi8(v, _mm_setr_epi8(1, 0, 1, 2, 4, 3, 4, 5, 7, 6, 7, 8, 10, 9, 10, 11));
        return _mm_or_si128(_mm_and_si128(_mm_srli_epi16(lanes, 4), LaneMask(0xFF0, 0xFFF)),
                            _mm_and_si128(lanes, LaneMask(0xF, 0)));
    }
};

} // namespace UnpackingGroups
} // namespace Orvan

#endif
