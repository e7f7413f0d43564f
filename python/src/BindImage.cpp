// orvan.Image.
#include "Bindings.h"
#include "PixelLayout.h"
#include "PyImage.h"

namespace py = pybind11;

namespace OrvanPy {
namespace {

template <class T>
auto Property(T (Orvan::IImage::*getter)()) {
    return [getter](const PyImage& image) { return (image.Get()->*getter)(); };
}

template <class T>
auto BufferProperty(T (Orvan::IBuffer::*getter)()) {
    return [getter](const PyImage& image) { return (image.Get()->*getter)(); };
}

const char* kImageDoc =
    "One image. A delivered image's pixels are the camera's buffer: `array` views them without a "
    "copy until requeue() (or the end of `with camera.get_image() as image:`), after which the "
    "image refuses every use; keep copy() to hold pixels longer.";

void BindPixels(py::class_<PyImage>& c) {
    c.def_property_readonly("array", &PyImage::Array,
                            "Read-only NumPy view of the pixels: (height, width) for mono and "
                            "Bayer formats, (height, width, channels) for RGB, BGR, RGBa; uint8 "
                            "or uint16 by sample size. Packed formats give the raw bytes (see "
                            "unpacked()). The buffer goes back to the camera only once every "
                            "such array is gone.")
        .def("unpacked", &PyImage::Unpacked,
             "A new array with one element per sample (uint8 to 8 bits, uint16 above) for "
             "packed formats such as Mono12p or Mono12Packed; a copy of array otherwise.")
        .def("copy", &PyImage::Copy, "An image that owns a copy of the pixels.")
        .def("requeue", &PyImage::Requeue,
             "Gives the buffer back to the camera; the image is unusable afterwards.")
        .def_property_readonly("valid", &PyImage::Valid,
                               "False once requeued or once its acquisition stopped.");
}

void BindProperties(py::class_<PyImage>& c) {
    c.def_property_readonly("width", Property(&Orvan::IImage::GetWidth))
        .def_property_readonly("height", Property(&Orvan::IImage::GetHeight))
        .def_property_readonly("offset_x", Property(&Orvan::IImage::GetOffsetX))
        .def_property_readonly("offset_y", Property(&Orvan::IImage::GetOffsetY))
        .def_property_readonly(
            "pixel_format",
            [](const PyImage& image) { return PixelFormatName(image.Get()->GetPixelFormat()); },
            "The pixel format's name, such as 'Mono8'.")
        .def_property_readonly("bits_per_pixel", Property(&Orvan::IImage::GetBitsPerPixel))
        .def_property_readonly("timestamp_ns", Property(&Orvan::IImage::GetTimestampNs))
        .def_property_readonly("frame_id", BufferProperty(&Orvan::IBuffer::GetFrameId))
        .def_property_readonly("size", BufferProperty(&Orvan::IBuffer::GetSizeFilled),
                               "Bytes of payload delivered.")
        .def_property_readonly("incomplete", BufferProperty(&Orvan::IBuffer::IsIncomplete))
        .def(
            "verify_crc", [](const PyImage& image) { return image.Get()->VerifyCRC(); },
            "True when the CRC chunk matches the pixels received.")
        .def("chunk", &PyImage::Chunk, py::arg("name"),
             "The value of a chunk of this image, such as chunk('ChunkExposureTime'); KeyError "
             "when the image has no such chunk.");
}

} // namespace

void BindImage(py::module_& m) {
    py::class_<PyImage> image(m, "Image", kImageDoc);
    BindPixels(image);
    BindProperties(image);
    image.def("__enter__", [](const PyImage& self) { return self; })
        .def("__exit__", [](const PyImage& self, py::args) { self.Requeue(); })
        .def("__repr__", &PyImage::Repr);
}

} // namespace OrvanPy
