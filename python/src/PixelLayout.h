// Pixel-format names and how a format's pixels map onto a NumPy array.
#ifndef ORVAN_PYTHON_PIXELLAYOUT_H
#define ORVAN_PYTHON_PIXELLAYOUT_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace OrvanPy {

// The PFNC name, or "0x..." for a code the SDK does not list.
std::string PixelFormatName(uint64_t code);
// Throws orvan.InvalidArgumentException for a name the SDK does not list.
uint64_t PixelFormatCode(const std::string& name);

enum class Packing { None, LsbFirst, GigEPacked, Other };

struct PixelLayout {
    Packing packing = Packing::Other;
    size_t channels = 1;
    size_t sampleBytes = 1; // 1, 2 or 4 when packing is None
    size_t sampleBits = 8;  // bits carried per sample
    bool floating = false;  // IEEE samples (the "f" formats)
};

// Packing::Other (raw bytes) for a code the SDK does not list.
PixelLayout LayoutOf(uint64_t code);

} // namespace OrvanPy

#endif
