// The arrays of orvan.Image: views over the image's own memory, whose base object keeps the
// image's source alive and counted as viewed until NumPy lets the array go.
#include "Errors.h"
#include "PixelLayout.h"
#include "PyImage.h"
#include "Unpacking.h"

#include <vector>

namespace py = pybind11;

namespace OrvanPy {
namespace {

struct Keeper {
    std::shared_ptr<ImageSource> source;
};

py::capsule KeepAlive(const std::shared_ptr<ImageSource>& source) {
    auto* keeper = new Keeper{source};
    source->ViewOpened();
    return py::capsule(keeper, [](void* pointer) {
        auto* held = static_cast<Keeper*>(pointer);
        try {
            held->source->ViewClosed();
        } catch (...) {
            // Runs inside NumPy's deallocation: nothing can be raised from here.
        }
        delete held;
    });
}

py::dtype SampleType(const PixelLayout& layout) {
    if (layout.floating)
        return py::dtype("float32");
    switch (layout.sampleBytes) {
    case 2:
        return py::dtype::of<uint16_t>();
    case 4:
        return py::dtype::of<uint32_t>();
    default:
        return py::dtype::of<uint8_t>();
    }
}

std::vector<py::ssize_t> Shape(size_t height, size_t width, size_t channels) {
    if (channels == 1)
        return {py::ssize_t(height), py::ssize_t(width)};
    return {py::ssize_t(height), py::ssize_t(width), py::ssize_t(channels)};
}

py::array ReadOnly(py::array array) {
    py::detail::array_proxy(array.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
    return array;
}

py::array Raw(Orvan::IImage* image, py::capsule keeper) {
    const py::ssize_t size = py::ssize_t(image->GetSizeFilled());
    return py::array(py::dtype::of<uint8_t>(), {size}, {py::ssize_t(1)}, image->GetData(), keeper);
}

py::array Direct(Orvan::IImage* image, const PixelLayout& layout, py::capsule keeper) {
    const size_t width = image->GetWidth();
    const size_t height = image->GetHeight();
    const size_t pixelBytes = layout.channels * layout.sampleBytes;
    const size_t rowBytes = width * pixelBytes + image->GetPaddingX();
    if (height == 0 || rowBytes * (height - 1) + width * pixelBytes > image->GetSizeFilled())
        return Raw(image, keeper);
    std::vector<py::ssize_t> strides = {py::ssize_t(rowBytes), py::ssize_t(pixelBytes)};
    if (layout.channels > 1)
        strides.push_back(py::ssize_t(layout.sampleBytes));
    return py::array(SampleType(layout), Shape(height, width, layout.channels), strides,
                     image->GetData(), keeper);
}

} // namespace

py::array PyImage::View(bool writable) const {
    Orvan::IImage* image = Get();
    const PixelLayout layout = LayoutOf(image->GetPixelFormat());
    py::array array = layout.packing == Packing::None ? Direct(image, layout, KeepAlive(m_source))
                                                      : Raw(image, KeepAlive(m_source));
    return writable ? array : ReadOnly(array);
}

py::array PyImage::Unpacked() const {
    Orvan::IImage* image = Get();
    PixelLayout layout = LayoutOf(image->GetPixelFormat());
    if (layout.packing == Packing::None)
        return Array().attr("copy")();
    const size_t width = image->GetWidth();
    const size_t height = image->GetHeight();
    layout.sampleBytes = layout.sampleBits <= 8 ? 1 : 2;
    PixelLayout unpacked = layout;
    unpacked.packing = Packing::None;
    py::array result(SampleType(unpacked), Shape(height, width, layout.channels));
    UnpackSamples(layout, image->GetData(), image->GetSizeFilled(), result.mutable_data(),
                  width * height * layout.channels);
    return result;
}

} // namespace OrvanPy
