#include "JpegCompressor.h"

#include "ToolError.h"

#include <turbojpeg.h>

namespace Orvan {
namespace Cli {

namespace {

// Sharp enough to judge focus and exposure by, small enough for a remote link.
constexpr int kQuality = 85;

} // namespace

JpegCompressor::JpegCompressor() : m_handle(tjInitCompress()) {
    if (!m_handle)
        throw ToolError(std::string("cannot start the JPEG encoder: ") + tjGetErrorStr2(nullptr));
}

JpegCompressor::~JpegCompressor() {
    tjDestroy(m_handle);
}

std::vector<uint8_t> JpegCompressor::Compress(const uint8_t* pixels, size_t width, size_t height,
                                              int channels) {
    const bool grey = channels == 1;
    unsigned char* jpeg = nullptr; // TurboJPEG sizes and allocates it
    unsigned long size = 0;
    const int failed =
        tjCompress2(m_handle, pixels, static_cast<int>(width), 0, static_cast<int>(height),
                    grey ? TJPF_GRAY : TJPF_RGB, &jpeg, &size, grey ? TJSAMP_GRAY : TJSAMP_420,
                    kQuality, TJFLAG_FASTDCT);
    std::vector<uint8_t> result;
    if (!failed)
        result.assign(jpeg, jpeg + size);
    tjFree(jpeg);
    if (failed)
        throw ToolError(std::string("JPEG encoding failed: ") + tjGetErrorStr2(m_handle));
    return result;
}

} // namespace Cli
} // namespace Orvan
