#include "SampleLayout.h"

#include "Packing.h"
#include "Unpacking.h"

#include <algorithm>
#include <cstring>

namespace Orvan {

namespace {

using GroupConverter = void (*)(const uint8_t*, uint8_t*, size_t, size_t, size_t);

struct PackedForm {
    size_t groupSamples;
    size_t groupBytes;
    GroupConverter unpack;
    GroupConverter pack;
};

PackedForm PackedFormOf(SampleStorage storage) {
    switch (storage) {
    case SampleStorage::P10p:
        return {4, 5, Unpacking::From10p, Packing::To10p};
    case SampleStorage::P10Packed:
        return {2, 3, Unpacking::From10Packed, Packing::To10Packed};
    case SampleStorage::P12p:
        return {2, 3, Unpacking::From12p, Packing::To12p};
    default:
        return {2, 3, Unpacking::From12Packed, Packing::To12Packed};
    }
}

bool IsPacked(SampleStorage storage) {
    return storage != SampleStorage::U8 && storage != SampleStorage::U16 &&
           storage != SampleStorage::U24;
}

std::vector<uint32_t> ReadPacked(const uint8_t* block, size_t bytes, size_t samples,
                                 SampleStorage storage) {
    const PackedForm form = PackedFormOf(storage);
    const size_t groups = (samples + form.groupSamples - 1) / form.groupSamples;
    // The converters work on whole groups; the image's block may end inside the last one.
    std::vector<uint8_t> packed(groups * form.groupBytes, 0);
    std::memcpy(packed.data(), block, std::min(bytes, StoredSize(samples, storage)));
    std::vector<uint8_t> words(groups * form.groupSamples * 2);
    form.unpack(packed.data(), words.data(), samples, 1, 1);
    std::vector<uint32_t> values(samples);
    for (size_t i = 0; i < samples; ++i)
        values[i] = words[2 * i] | (uint32_t{words[2 * i + 1]} << 8);
    // The 10Packed unpacker drops the low bits of every first sample of a pair; processing must
    // not, so they are restored from the shared middle byte.
    if (storage == SampleStorage::P10Packed)
        for (size_t i = 0; i < samples; i += 2)
            values[i] |= packed[i / 2 * 3 + 1] & 0x3;
    return values;
}

std::vector<uint8_t> WritePacked(const std::vector<uint32_t>& values, SampleStorage storage) {
    const PackedForm form = PackedFormOf(storage);
    const size_t samples = values.size();
    const size_t groups = (samples + form.groupSamples - 1) / form.groupSamples;
    std::vector<uint8_t> words(groups * form.groupSamples * 2, 0);
    for (size_t i = 0; i < samples; ++i) {
        words[2 * i] = static_cast<uint8_t>(values[i]);
        words[2 * i + 1] = static_cast<uint8_t>(values[i] >> 8);
    }
    std::vector<uint8_t> packed(groups * form.groupBytes);
    form.pack(words.data(), packed.data(), samples, 1, 1);
    packed.resize(StoredSize(samples, storage));
    return packed;
}

} // namespace

size_t StorageBits(SampleStorage storage) {
    switch (storage) {
    case SampleStorage::U8:
        return 8;
    case SampleStorage::U16:
        return 16;
    case SampleStorage::U24:
        return 24;
    case SampleStorage::P10p:
        return 10;
    default:
        // 10Packed spends 12 bits per sample too: two samples in three bytes.
        return 12;
    }
}

size_t StoredSize(size_t samples, SampleStorage storage) {
    return (samples * StorageBits(storage) + 7) / 8;
}

std::vector<uint32_t> ReadSamples(const uint8_t* block, size_t bytes, size_t samples,
                                  SampleLayout layout) {
    if (IsPacked(layout.storage))
        return ReadPacked(block, bytes, samples, layout.storage);
    const size_t width = StorageBits(layout.storage) / 8;
    const uint32_t mask = static_cast<uint32_t>((uint64_t{1} << layout.bits) - 1);
    std::vector<uint32_t> values(samples);
    for (size_t i = 0; i < samples; ++i) {
        uint32_t value = 0;
        for (size_t b = 0; b < width; ++b)
            value |= uint32_t{block[i * width + b]} << (8 * b);
        values[i] = value & mask;
    }
    return values;
}

std::vector<uint8_t> WriteSamples(const std::vector<uint32_t>& samples, SampleLayout layout) {
    if (IsPacked(layout.storage))
        return WritePacked(samples, layout.storage);
    const size_t width = StorageBits(layout.storage) / 8;
    std::vector<uint8_t> block(samples.size() * width);
    for (size_t i = 0; i < samples.size(); ++i)
        for (size_t b = 0; b < width; ++b)
            block[i * width + b] = static_cast<uint8_t>(samples[i] >> (8 * b));
    return block;
}

} // namespace Orvan
