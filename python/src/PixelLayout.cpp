#include "PixelLayout.h"

#include "Errors.h"

#include <Base/GCException.h>
#include <Orvan/PixelFormat.h>

#include <cstdio>
#include <unordered_map>

namespace OrvanPy {
namespace {

bool EndsWith(const std::string& text, const char* tail) {
    const std::string suffix(tail);
    return text.size() >= suffix.size() &&
           text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

// The "p" formats run their samples on as one little-endian bit stream; the older "Packed"
// ones put two 10- or 12-bit samples in three bytes.
Packing PackingOf(const std::string& name, size_t bitsPerPixel, size_t channels,
                  size_t bitsPerChannel) {
    if (bitsPerPixel == channels * bitsPerChannel && EndsWith(name, "p"))
        return Packing::LsbFirst;
    if (EndsWith(name, "Packed") && channels == 1 && bitsPerPixel == 12)
        return Packing::GigEPacked;
    const size_t container = bitsPerPixel / channels;
    if (bitsPerPixel % channels == 0 && (container == 8 || container == 16 || container == 32))
        return Packing::None;
    return Packing::Other;
}

PixelLayout ComputeLayout(const std::string& name, uint64_t code) {
    PixelLayout layout;
    size_t bitsPerPixel = 0;
    try {
        bitsPerPixel = Orvan::GetBitsPerPixel(code);
        layout.channels = Orvan::GetNumChannels(code);
        layout.sampleBits = Orvan::GetBitsPerChannel(code);
    } catch (const GenICam::GenericException&) {
        return layout;
    }
    if (layout.channels == 0)
        return layout;
    layout.packing = PackingOf(name, bitsPerPixel, layout.channels, layout.sampleBits);
    layout.floating = EndsWith(name, "f") && layout.packing == Packing::None;
    layout.sampleBytes = bitsPerPixel / layout.channels / 8;
    return layout;
}

// Every listed format's layout is worked out once: the array of each image looks it up.
struct Formats {
    std::unordered_map<uint64_t, std::string> byCode;
    std::unordered_map<std::string, uint64_t> byName;
    std::unordered_map<uint64_t, PixelLayout> layouts;

    void Add(const char* name, uint64_t code) {
        byCode.emplace(code, name);
        byName.emplace(name, code);
        layouts.emplace(code, ComputeLayout(name, code));
    }
};

const Formats& Table() {
    static const Formats formats = [] {
        Formats f;
#define ORVAN_PY_FORMAT(name, code) f.Add(#name, code);
        ORVAN_PFNC_STANDARD_FORMATS(ORVAN_PY_FORMAT)
        ORVAN_PFNC_VENDOR_FORMATS(ORVAN_PY_FORMAT)
#undef ORVAN_PY_FORMAT
        return f;
    }();
    return formats;
}

} // namespace

std::string PixelFormatName(uint64_t code) {
    auto it = Table().byCode.find(code);
    if (it != Table().byCode.end())
        return it->second;
    char text[24];
    std::snprintf(text, sizeof text, "0x%08llX", static_cast<unsigned long long>(code));
    return text;
}

uint64_t PixelFormatCode(const std::string& name) {
    auto it = Table().byName.find(name);
    if (it == Table().byName.end())
        ThrowInvalidArgument("unknown pixel format '" + name + "'");
    return it->second;
}

PixelLayout LayoutOf(uint64_t code) {
    auto it = Table().layouts.find(code);
    return it != Table().layouts.end() ? it->second : PixelLayout{};
}

} // namespace OrvanPy
