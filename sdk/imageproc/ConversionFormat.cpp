#include "ConversionFormat.h"

#include <Orvan/PixelFormat.h>

#include <algorithm>
#include <iterator>

namespace Orvan {

namespace {

constexpr YuvGroup kNoYuv{1, 1, {0, 0, 0, 0}, 0, 0};

constexpr ConversionFormat Mono(PfncFormat code, SampleStorage storage, unsigned bits) {
    return {code, ColourFamily::Mono, {storage, bits}, 1, 0, 0, 0, -1, BayerPattern::RG, kNoYuv};
}

constexpr ConversionFormat Bayer(PfncFormat code, BayerPattern pattern, SampleStorage storage,
                                 unsigned bits) {
    return {code, ColourFamily::Bayer, {storage, bits}, 1, 0, 0, 0, -1, pattern, kNoYuv};
}

constexpr ConversionFormat Rgb(PfncFormat code, bool bgr, bool alpha, SampleStorage storage,
                               unsigned bits) {
    return {code, ColourFamily::Rgb, {storage, bits}, alpha ? 4u : 3u,  bgr ? 2 : 0,
            1,    bgr ? 0 : 2,       alpha ? 3 : -1,  BayerPattern::RG, kNoYuv};
}

constexpr ConversionFormat Yuv(PfncFormat code, YuvGroup group) {
    return {code, ColourFamily::Yuv, {SampleStorage::U8, 8}, 3, 0, 0, 0, -1, BayerPattern::RG,
            group};
}

#define ORVAN_BAYER_FORMATS(P)                                                                     \
    Bayer(Bayer##P##8, BayerPattern::P, SampleStorage::U8, 8),                                     \
        Bayer(Bayer##P##10, BayerPattern::P, SampleStorage::U16, 10),                              \
        Bayer(Bayer##P##12, BayerPattern::P, SampleStorage::U16, 12),                              \
        Bayer(Bayer##P##16, BayerPattern::P, SampleStorage::U16, 16),                              \
        Bayer(Bayer##P##10p, BayerPattern::P, SampleStorage::P10p, 10),                            \
        Bayer(Bayer##P##12p, BayerPattern::P, SampleStorage::P12p, 12),                            \
        Bayer(Bayer##P##10Packed, BayerPattern::P, SampleStorage::P10Packed, 10),                  \
        Bayer(Bayer##P##12Packed, BayerPattern::P, SampleStorage::P12Packed, 12)

#define ORVAN_RGB_FORMATS(Name, bgr, alpha)                                                        \
    Rgb(Name##8, bgr, alpha, SampleStorage::U8, 8),                                                \
        Rgb(Name##10, bgr, alpha, SampleStorage::U16, 10),                                         \
        Rgb(Name##12, bgr, alpha, SampleStorage::U16, 12),                                         \
        Rgb(Name##16, bgr, alpha, SampleStorage::U16, 16),                                         \
        Rgb(Name##10p, bgr, alpha, SampleStorage::P10p, 10),                                       \
        Rgb(Name##12p, bgr, alpha, SampleStorage::P12p, 12)

const ConversionFormat kSources[] = {
    Mono(Mono8, SampleStorage::U8, 8),
    Mono(Mono10, SampleStorage::U16, 10),
    Mono(Mono12, SampleStorage::U16, 12),
    Mono(Mono14, SampleStorage::U16, 14),
    Mono(Mono16, SampleStorage::U16, 16),
    Mono(Mono10p, SampleStorage::P10p, 10),
    Mono(Mono12p, SampleStorage::P12p, 12),
    Mono(Mono10Packed, SampleStorage::P10Packed, 10),
    Mono(Mono12Packed, SampleStorage::P12Packed, 12),
    ORVAN_BAYER_FORMATS(GR),
    ORVAN_BAYER_FORMATS(RG),
    ORVAN_BAYER_FORMATS(GB),
    ORVAN_BAYER_FORMATS(BG),
    ORVAN_RGB_FORMATS(RGB, false, false),
    ORVAN_RGB_FORMATS(BGR, true, false),
    ORVAN_RGB_FORMATS(RGBa, false, true),
    ORVAN_RGB_FORMATS(BGRa, true, true),
    Yuv(YUV411_8_UYYVYY, {4, 6, {1, 2, 4, 5}, 0, 3}),
    Yuv(YCbCr411_8_CbYYCrYY, {4, 6, {1, 2, 4, 5}, 0, 3}),
    Yuv(YCbCr411_8, {4, 6, {0, 1, 3, 4}, 2, 5}),
    Yuv(YUV422_8, {2, 4, {0, 2, 0, 0}, 1, 3}),
    Yuv(YCbCr422_8, {2, 4, {0, 2, 0, 0}, 1, 3}),
    Yuv(YUV422_8_UYVY, {2, 4, {1, 3, 0, 0}, 0, 2}),
    Yuv(YCbCr422_8_CbYCrY, {2, 4, {1, 3, 0, 0}, 0, 2}),
    Yuv(YUV8_UYV, {1, 3, {1, 0, 0, 0}, 0, 2}),
    Yuv(YCbCr8_CbYCr, {1, 3, {1, 0, 0, 0}, 0, 2}),
    Yuv(YCbCr8, {1, 3, {0, 0, 0, 0}, 1, 2}),
};

const ConversionFormat kTargets[] = {
    Mono(Mono8, SampleStorage::U8, 8),
    Mono(Mono16, SampleStorage::U16, 16),
    Mono(Mono10p, SampleStorage::P10p, 10),
    Mono(Mono12p, SampleStorage::P12p, 12),
    Mono(Mono10Packed, SampleStorage::P10Packed, 10),
    Mono(Mono12Packed, SampleStorage::P12Packed, 12),
    Rgb(RGB8, false, false, SampleStorage::U8, 8),
    Rgb(BGR8, true, false, SampleStorage::U8, 8),
    Rgb(RGBa8, false, true, SampleStorage::U8, 8),
    Rgb(BGRa8, true, true, SampleStorage::U8, 8),
    Rgb(RGB16, false, false, SampleStorage::U16, 16),
    Rgb(BGR16, true, false, SampleStorage::U16, 16),
};

template <size_t N>
const ConversionFormat* Find(const ConversionFormat (&table)[N], uint64_t code) {
    const auto found = std::find_if(std::begin(table), std::end(table),
                                    [code](const ConversionFormat& f) { return f.code == code; });
    return found == std::end(table) ? nullptr : found;
}

bool SameColours(const ConversionFormat& a, const ConversionFormat& b) {
    return a.family == b.family && a.channels == b.channels && a.red == b.red &&
           (a.family != ColourFamily::Bayer || a.pattern == b.pattern);
}

} // namespace

const ConversionFormat* FindSourceFormat(uint64_t code) {
    return Find(kSources, code);
}

const ConversionFormat* FindTargetFormat(uint64_t code) {
    return Find(kTargets, code);
}

std::vector<uint64_t> SourceFormats() {
    std::vector<uint64_t> list;
    for (const ConversionFormat& source : kSources)
        list.push_back(source.code);
    return list;
}

const std::vector<uint64_t>& TargetFormats() {
    static const std::vector<uint64_t> codes = [] {
        std::vector<uint64_t> list;
        for (const ConversionFormat& target : kTargets)
            list.push_back(target.code);
        return list;
    }();
    return codes;
}

uint64_t EightBitCounterpart(const ConversionFormat& format) {
    for (const ConversionFormat& candidate : kSources)
        if (candidate.layout.storage == SampleStorage::U8 && SameColours(candidate, format) &&
            candidate.family != ColourFamily::Yuv)
            return candidate.code;
    return 0;
}

} // namespace Orvan
