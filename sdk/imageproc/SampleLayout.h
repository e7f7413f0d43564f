// How the samples of a pixel layout are stored, and conversion between a stored block and one
// 32-bit value per sample. The per-layout processing routines work on samples only: channel
// order and subsampling do not change what happens to each sample.
#ifndef ORVAN_IMAGEPROC_SAMPLELAYOUT_H
#define ORVAN_IMAGEPROC_SAMPLELAYOUT_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Orvan {

enum class SampleStorage { U8, U16, U24, P10p, P10Packed, P12p, P12Packed };

struct SampleLayout {
    SampleStorage storage;
    unsigned bits; // significant bits of a sample
};

// The layout suffixes of the processing routines: (suffix, storage, significant bits).
#define ORVAN_SAMPLE_LAYOUTS(L)                                                                    \
    L(8Bits, U8, 8)                                                                                \
    L(10Bits, U16, 10)                                                                             \
    L(12Bits, U16, 12)                                                                             \
    L(16Bits, U16, 16)                                                                             \
    L(24Bits, U24, 24)                                                                             \
    L(10pBits, P10p, 10)                                                                           \
    L(12pBits, P12p, 12)                                                                           \
    L(10PackedBits, P10Packed, 10)                                                                 \
    L(12PackedBits, P12Packed, 12)                                                                 \
    L(8Bits3Ch, U8, 8)                                                                             \
    L(12Bits3Ch, U16, 12)                                                                          \
    L(12pBits3Ch, P12p, 12)                                                                        \
    L(16Bits3Ch, U16, 16)                                                                          \
    L(24Bits3Ch, U24, 24)                                                                          \
    L(8Bits4Ch, U8, 8)                                                                             \
    L(12pBits4Ch, P12p, 12)                                                                        \
    L(16Bits4Ch, U16, 16)                                                                          \
    L(12Bits2Ch, U16, 12)                                                                          \
    L(12pBits2Ch, P12p, 12)                                                                        \
    L(8Bits2Ch, U8, 8)                                                                             \
    L(8Bits411, U8, 8)                                                                             \
    L(16Bits411, U16, 16)                                                                          \
    L(24Bits411, U24, 24)                                                                          \
    L(8Bits422, U8, 8)                                                                             \
    L(16Bits422, U16, 16)                                                                          \
    L(24Bits422, U24, 24)

// Bits one sample occupies in the stored block.
size_t StorageBits(SampleStorage storage);

// Bytes of a block holding `samples` samples (a partial last byte counts whole).
size_t StoredSize(size_t samples, SampleStorage storage);

// Reads `samples` samples from a block of `bytes` bytes; values keep `bits` bits. Bits past the
// block (the partial byte that ends an image of an odd packed size may be missing) read as 0.
std::vector<uint32_t> ReadSamples(const uint8_t* block, size_t bytes, size_t samples,
                                  SampleLayout layout);

// Stores the samples in a block of StoredSize bytes.
std::vector<uint8_t> WriteSamples(const std::vector<uint32_t>& samples, SampleLayout layout);

} // namespace Orvan

#endif
