#include "ImageGeometry.h"

#include "VirtualPixelFormats.h"

#include <algorithm>

namespace Orvan {
namespace Producer {

namespace {

constexpr uint32_t kMinimumWidth = 16;

bool IsBayer(const VirtualPixelFormat* format) {
    return format && format->layout != PixelLayout::Mono && format->layout != PixelLayout::RGB &&
           format->layout != PixelLayout::BGR && format->layout != PixelLayout::RGBa &&
           format->layout != PixelLayout::YCbCr422;
}

uint32_t FloorTo(uint32_t value, uint32_t step) {
    return value / step * step;
}

} // namespace

uint32_t ImageGeometry::WidthIncrement() const {
    const VirtualPixelFormat* format = FindVirtualPixelFormat(pixelFormat);
    if (!format)
        return 1;
    if (format->packing == PixelPacking::LsbFirst || format->packing == PixelPacking::GigEPacked)
        return 4;
    return IsBayer(format) || format->layout == PixelLayout::YCbCr422 ? 2 : 1;
}

uint32_t ImageGeometry::HeightIncrement() const {
    return IsBayer(FindVirtualPixelFormat(pixelFormat)) ? 2 : 1;
}

uint32_t ImageGeometry::WidthMin() const {
    const uint32_t step = WidthIncrement();
    return (kMinimumWidth + step - 1) / step * step;
}

uint32_t ImageGeometry::HeightMin() const {
    return HeightIncrement();
}

uint32_t ImageGeometry::WidthMax() const {
    return FloorTo(sensorWidth / std::max(binningHorizontal, 1u), WidthIncrement());
}

uint32_t ImageGeometry::HeightMax() const {
    return FloorTo(sensorHeight / std::max(binningVertical, 1u), HeightIncrement());
}

void ImageGeometry::Conform() {
    const uint32_t xStep = WidthIncrement(), yStep = HeightIncrement();
    width = std::clamp(FloorTo(width, xStep), WidthMin(), WidthMax());
    height = std::clamp(FloorTo(height, yStep), HeightMin(), HeightMax());
    offsetX = std::min(FloorTo(offsetX, xStep), WidthMax() - width);
    offsetY = std::min(FloorTo(offsetY, yStep), HeightMax() - height);
}

size_t ImageGeometry::ImageBytes() const {
    const VirtualPixelFormat* format = FindVirtualPixelFormat(pixelFormat);
    return format ? Producer::ImageBytes(*format, width, height) : 0;
}

} // namespace Producer
} // namespace Orvan
