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

using Npy = py::detail::npy_api;

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

int SampleType(const PixelLayout& layout) {
    if (layout.floating)
        return Npy::NPY_FLOAT_;
    switch (layout.sampleBytes) {
    case 2:
        return Npy::NPY_USHORT_;
    case 4:
        return Npy::NPY_UINT_;
    default:
        return Npy::NPY_UBYTE_;
    }
}

// Rows, columns and, beyond one channel, channels: as NumPy wants shapes and strides.
struct Geometry {
    int dimensions = 1;
    Py_intptr_t shape[3] = {};
    Py_intptr_t strides[3] = {};
};

Geometry Pixels(size_t height, size_t width, size_t channels, size_t sampleBytes, size_t rowBytes) {
    Geometry g;
    g.dimensions = channels == 1 ? 2 : 3;
    g.shape[0] = Py_intptr_t(height);
    g.shape[1] = Py_intptr_t(width);
    g.shape[2] = Py_intptr_t(channels);
    g.strides[0] = Py_intptr_t(rowBytes);
    g.strides[1] = Py_intptr_t(channels * sampleBytes);
    g.strides[2] = Py_intptr_t(sampleBytes);
    return g;
}

// Built through NumPy's own constructor: this runs for every image, and the generic
// pybind11::array constructor allocates its shape and strides on the heap.
py::array NewArray(int type, const Geometry& g, const void* data, bool writable,
                   py::capsule keeper) {
    Npy& api = Npy::get();
    PyObject* made = api.PyArray_NewFromDescr_(
        api.PyArray_Type_, api.PyArray_DescrFromType_(type), g.dimensions,
        const_cast<Py_intptr_t*>(g.shape), const_cast<Py_intptr_t*>(g.strides),
        const_cast<void*>(data), writable ? Npy::NPY_ARRAY_WRITEABLE_ : 0, nullptr);
    if (made == nullptr)
        throw py::error_already_set();
    auto array = py::reinterpret_steal<py::array>(made);
    if (api.PyArray_SetBaseObject_(made, keeper.release().ptr()) != 0)
        throw py::error_already_set();
    return array;
}

Geometry Raw(Orvan::IImage* image) {
    Geometry g;
    g.shape[0] = Py_intptr_t(image->GetSizeFilled());
    g.strides[0] = 1;
    return g;
}

// Pixels that do not fit in the bytes filled (a short, incomplete image) come as raw bytes.
bool Fits(const Geometry& g, size_t filled) {
    const size_t lastRow = size_t(g.strides[1] * g.shape[1]);
    return g.shape[0] > 0 && size_t(g.strides[0] * (g.shape[0] - 1)) + lastRow <= filled;
}

} // namespace

py::array PyImage::View(bool writable) const {
    Orvan::IImage* image = Get();
    const PixelLayout layout = LayoutOf(image->GetPixelFormat());
    const void* data = image->GetData();
    if (layout.packing == Packing::None) {
        const size_t width = image->GetWidth();
        const size_t pixelBytes = layout.channels * layout.sampleBytes;
        const Geometry g = Pixels(image->GetHeight(), width, layout.channels, layout.sampleBytes,
                                  width * pixelBytes + image->GetPaddingX());
        if (Fits(g, image->GetSizeFilled()))
            return NewArray(SampleType(layout), g, data, writable, KeepAlive(m_source));
    }
    return NewArray(Npy::NPY_UBYTE_, Raw(image), data, writable, KeepAlive(m_source));
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
    std::vector<py::ssize_t> shape = {py::ssize_t(height), py::ssize_t(width)};
    if (layout.channels > 1)
        shape.push_back(py::ssize_t(layout.channels));
    py::array result(py::dtype(SampleType(unpacked)), shape);
    UnpackSamples(layout, image->GetData(), image->GetSizeFilled(), result.mutable_data(),
                  width * height * layout.channels);
    return result;
}

} // namespace OrvanPy
