#include "Deinterleaving.h"

#include "ConversionFormat.h"

#include <Orvan/PixelFormat.h>

#include <algorithm>

namespace Orvan {

namespace {

InterleavedFormat Repeated(uint64_t code, SampleLayout layout, bool perPixel, size_t count,
                           uint64_t channel) {
    return {code, layout, perPixel, std::vector<uint64_t>(count, channel)};
}

void AddTaps(std::vector<InterleavedFormat>& table, uint32_t base, bool wide) {
    const ConversionFormat* single = FindSourceFormat(base);
    if (single == nullptr)
        return;
    const uint32_t dual = PfncDualCode(base), quad = PfncQuadCode(base);
    table.push_back(Repeated(wide ? PfncWidenBits(dual, 2) : dual, single->layout, wide, 2, base));
    table.push_back(Repeated(wide ? PfncWidenBits(quad, 4) : quad, single->layout, wide, 4, base));
}

std::vector<InterleavedFormat> BuildTable() {
    constexpr SampleLayout k8{SampleStorage::U8, 8}, k12{SampleStorage::U16, 12},
        k12p{SampleStorage::P12p, 12};
    std::vector<InterleavedFormat> table = {
        Repeated(PolarizedAngles_0d_45d_90d_135d_Mono8, k8, true, 4, Mono8),
        Repeated(PolarizedAngles_0d_45d_90d_135d_BayerRG8, k8, true, 4, BayerRG8),
        Repeated(PolarizedAngles_0d_45d_90d_135d_Mono12p, k12p, true, 4, Mono12p),
        Repeated(PolarizedAngles_0d_45d_90d_135d_BayerRG12p, k12p, true, 4, BayerRG12p),
        {PolarizedDolpAolp_Mono8, k8, true, {PolarizedDolp_Mono8, PolarizedAolp_Mono8}},
        {PolarizedDolpAolp_BayerRG8, k8, true, {PolarizedDolp_BayerRG8, PolarizedAolp_BayerRG8}},
        {PolarizedDolpAolp_Mono12, k12, true, {PolarizedDolp_Mono12, PolarizedAolp_Mono12}},
        {PolarizedDolpAolp_BayerRG12,
         k12,
         true,
         {PolarizedDolp_BayerRG12, PolarizedAolp_BayerRG12}},
        {PolarizedDolpAolp_Mono12p, k12p, true, {PolarizedDolp_Mono12p, PolarizedAolp_Mono12p}},
        {PolarizedDolpAolp_BayerRG12p,
         k12p,
         true,
         {PolarizedDolp_BayerRG12p, PolarizedAolp_BayerRG12p}},
    };
#define ORVAN_ADD_TAPS(base) AddTaps(table, base, false);
    ORVAN_PFNC_TAP_BASES(ORVAN_ADD_TAPS)
#undef ORVAN_ADD_TAPS
#define ORVAN_ADD_WIDE_TAPS(base) AddTaps(table, base, true);
    ORVAN_PFNC_WIDE_TAP_BASES(ORVAN_ADD_WIDE_TAPS)
#undef ORVAN_ADD_WIDE_TAPS
    return table;
}

} // namespace

const InterleavedFormat* FindInterleavedFormat(uint64_t code) {
    static const std::vector<InterleavedFormat> table = BuildTable();
    const auto found = std::find_if(table.begin(), table.end(),
                                    [code](const InterleavedFormat& f) { return f.code == code; });
    return found == table.end() ? nullptr : &*found;
}

std::vector<ChannelPlane> Deinterleave(const uint8_t* source, size_t bytes, size_t width,
                                       size_t height, const InterleavedFormat& format) {
    const size_t count = format.channels.size();
    const size_t total = width * height * (format.channelPerPixel ? count : 1);
    const std::vector<uint32_t> samples = ReadSamples(source, bytes, total, format.layout);
    std::vector<ChannelPlane> planes;
    for (size_t c = 0; c < count; ++c) {
        std::vector<uint32_t> channel(total / count);
        for (size_t i = 0; i < channel.size(); ++i)
            channel[i] = samples[i * count + c];
        planes.push_back({WriteSamples(channel, format.layout),
                          format.channelPerPixel ? width : width / count, format.channels[c]});
    }
    return planes;
}

} // namespace Orvan
