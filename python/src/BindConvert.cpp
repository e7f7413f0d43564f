// orvan.convert: the image factory's pixel-format conversion, its result as a NumPy array.
#include "Bindings.h"
#include "Errors.h"
#include "OwnedImage.h"
#include "PixelLayout.h"
#include "PyImage.h"

#include <Orvan/ImageFactory.h>

#include <map>

namespace py = pybind11;

namespace OrvanPy {
namespace {

Orvan::DemosaicMethod MethodNamed(const std::string& name) {
    static const std::map<std::string, Orvan::DemosaicMethod> methods = {
        {"bilinear", Orvan::DemosaicMethod::Bilinear},
        {"hq", Orvan::DemosaicMethod::HighQualityLinear},
        {"ahd", Orvan::DemosaicMethod::AdaptiveHomogeneityDirected}};
    auto it = methods.find(name);
    if (it == methods.end())
        ThrowInvalidArgument("demosaicing method is bilinear, hq or ahd; not '" + name + "'");
    return it->second;
}

// The converted pixels stay in the factory's image, which the array keeps alive: no copy.
py::array Convert(const PyImage& image, const std::string& pixelFormat, const std::string& method) {
    const uint64_t target = PixelFormatCode(pixelFormat);
    const Orvan::DemosaicMethod demosaic = MethodNamed(method);
    Orvan::IImage* source = image.Get();
    std::shared_ptr<SystemCore> system = image.Source()->System();
    Orvan::IImage* converted = nullptr;
    {
        py::gil_scoped_release release;
        converted = Orvan::ImageFactory::Convert(source, target, demosaic);
    }
    return PyImage(std::make_shared<OwnedImage>(std::move(system), converted)).View(true);
}

} // namespace

void BindConvert(py::module_& m) {
    m.def("convert", &Convert, py::arg("image"), py::arg("pixel_format"), py::arg("method") = "hq",
          "The image converted to pixel_format (Mono8, Mono16, RGB8, BGR8, RGBa8, BGRa8, RGB16, "
          "BGR16, ...), Bayer sources demosaiced by method (bilinear, hq or ahd), as a new "
          "writable NumPy array: convert(image, 'BGR8') is ready for OpenCV.");
}

} // namespace OrvanPy
