#include "ImageCallback.h"

#include "CameraCore.h"
#include "Delivery.h"
#include "PyImage.h"

namespace py = pybind11;

namespace OrvanPy {

ImageCallback::ImageCallback(CameraCore* camera, py::object function)
    : m_camera(camera), m_function(std::move(function)) {}

ImageCallback::~ImageCallback() {
    py::gil_scoped_acquire gil;
    m_function = py::object();
}

void ImageCallback::OnImage(Orvan::IImage* image) {
    py::gil_scoped_acquire gil;
    std::shared_ptr<Delivery> delivery = m_camera->Borrow(image);
    try {
        m_function(PyImage(delivery));
    } catch (py::error_already_set& e) {
        e.discard_as_unraisable(m_function);
    }
    delivery->Return();
}

} // namespace OrvanPy
