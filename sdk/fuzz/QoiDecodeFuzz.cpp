// Feeds the QOI decoder of compressed images arbitrary streams, as a device or a file could
// deliver them. The first byte picks the channel count the caller asks for (1, 3 or 4); the rest
// is the stream. A stream that decodes must give exactly width x height x channels samples.
#include "imageproc/QoiCodec.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    static const uint32_t kChannels[] = {1, 3, 4};
    const uint32_t channels = kChannels[data[0] % 3];
    std::vector<uint8_t> pixels;
    uint32_t width = 0, height = 0;
    if (Orvan::DecodeQoiAs(data + 1, size - 1, channels, pixels, width, height) &&
        pixels.size() != size_t(width) * height * channels)
        std::abort();
    uint32_t streamChannels = 0;
    if (Orvan::DecodeQoi(data + 1, size - 1, pixels, width, height, streamChannels) &&
        pixels.size() != size_t(width) * height * streamChannels)
        std::abort();
    return 0;
}
