// The rules that tie a camera's image size, offsets, binning and pixel format together: which
// values are allowed, and how the others follow when one of them changes.
#ifndef ORVAN_GENTL_VIRTUAL_IMAGEGEOMETRY_H
#define ORVAN_GENTL_VIRTUAL_IMAGEGEOMETRY_H

#include <cstddef>
#include <cstdint>

namespace Orvan {
namespace Producer {

struct ImageGeometry {
    uint32_t sensorWidth = 0;
    uint32_t sensorHeight = 0;
    uint32_t binningHorizontal = 1;
    uint32_t binningVertical = 1;
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t offsetX = 0;
    uint32_t offsetY = 0;
    uint32_t pixelFormat = 0;

    // Packed formats need whole byte groups per line and Bayer formats whole colour-filter
    // cells, so the horizontal step depends on the format and the vertical one on Bayer.
    uint32_t WidthIncrement() const;
    uint32_t HeightIncrement() const;
    uint32_t WidthMin() const;
    uint32_t HeightMin() const;
    uint32_t WidthMax() const; // the binned sensor, whole steps
    uint32_t HeightMax() const;
    // Brings size and offsets back onto the grid and inside the sensor after binning or the
    // pixel format changed, keeping as much of the previous region as possible.
    void Conform();
    // Bytes of one image (for compressed formats the most the encoder can produce).
    size_t ImageBytes() const;
};

} // namespace Producer
} // namespace Orvan

#endif
