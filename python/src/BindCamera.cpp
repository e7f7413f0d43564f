// orvan.Camera, the image iterator and the acquisition scope.
#include "Bindings.h"
#include "PyCamera.h"

#include <pybind11/stl.h>

namespace py = pybind11;

namespace OrvanPy {
namespace {

struct AcquireScope {
    std::shared_ptr<CameraCore> camera;
    std::optional<size_t> buffers;
};

const char* kCameraDoc =
    "An opened camera (System.open()). Use it in a with block, or call close(): both stop the "
    "acquisition and close the camera. Buffers still viewed by NumPy arrays are freed when the "
    "last such array goes.";

void BindAcquisition(py::class_<PyCamera>& c) {
    c.def("start", &PyCamera::Start, py::arg("buffers") = py::none(),
          "Starts acquiring into `buffers` buffers (None: sized to 40 ms of the camera's "
          "throughput).")
        .def(
            "stop", [](const PyCamera& self) { self.Core().Stop(); },
            "Stops acquiring; images not yet requeued become unusable.")
        .def(
            "acquire",
            [](const PyCamera& self, std::optional<size_t> buffers) {
                return AcquireScope{self.Shared(), buffers};
            },
            py::arg("buffers") = py::none(), "with camera.acquire(): starts, then stops.")
        .def("get_image", &PyCamera::GetImage, py::arg("timeout") = 1.0,
             "The next image, waiting up to timeout seconds (None: for ever) with the GIL "
             "released; raises TimeoutException when none came. Ctrl-C interrupts the wait.")
        .def(
            "images",
            [](const PyCamera& self, std::optional<size_t> count, Timeout timeout) {
                return std::make_unique<ImageIterator>(self.Shared(), count, timeout);
            },
            py::arg("count") = py::none(), py::arg("timeout") = 1.0,
            "Iterates over `count` images (None: until stopped), requeueing each as the loop "
            "moves on; starts and stops the acquisition when it was not running.")
        .def(
            "on_image",
            [](const PyCamera& self, py::object function) {
                self.Core().SetImageCallback(std::move(function));
            },
            py::arg("function"),
            "Calls function(image) for every image on the SDK's callback thread, holding the "
            "GIL only for the call; the image is valid during the call. None removes it. "
            "get_image is not available while a callback is set.");
}

void BindState(py::class_<PyCamera>& c) {
    c.def_property_readonly("info", [](const PyCamera& self) { return self.Core().Info(); })
        .def_property_readonly(
            "features", [](const PyCamera& self) { return self.Features(0); },
            "The camera's own features.")
        .def_property_readonly(
            "device_features", [](const PyCamera& self) { return self.Features(1); },
            "The transport layer's device features.")
        .def_property_readonly(
            "stream_features", [](const PyCamera& self) { return self.Features(2); },
            "The transport layer's stream features.")
        .def_property_readonly(
            "interface_features", [](const PyCamera& self) { return self.Features(3); },
            "The features of the interface the camera is on.")
        .def_property_readonly(
            "connected", [](const PyCamera& self) { return self.Core().Device()->IsConnected(); })
        .def_property_readonly("acquiring",
                               [](const PyCamera& self) { return self.Core().Streaming(); })
        .def_property_readonly("closed", [](const PyCamera& self) { return self.Core().Closed(); })
        .def("save_features", &PyCamera::SaveFeatures, py::arg("path"),
             "Writes the camera's streamable features to a feature file.")
        .def("load_features", &PyCamera::LoadFeatures, py::arg("path"),
             "Sets the camera's features from a feature file.")
        .def("close", [](const PyCamera& self) { self.Core().Close(); })
        .def("__enter__", [](const PyCamera& self) { return self; })
        .def("__exit__", [](const PyCamera& self, py::args) { self.Core().Close(); })
        .def("__repr__", [](const PyCamera& self) {
            return "<orvan.Camera " + std::string(self.Core().Info().SerialNumber().c_str()) +
                   (self.Core().Closed() ? " closed>" : ">");
        });
}

// The iterator's slot, which for loops and next() call: it ends the iteration by returning
// nothing, where a StopIteration thrown from C++ would cost every loop an exception's unwinding
// (microseconds).
PyObject* NextOrEnd(PyObject* self) {
    static PyObject* const name = PyUnicode_InternFromString("_next_or_none");
    PyObject* image = PyObject_VectorcallMethod(name, &self, 1, nullptr);
    if (image != Py_None)
        return image;
    Py_DECREF(image);
    return nullptr;
}

} // namespace

void BindCamera(py::module_& m) {
    py::class_<PyCamera> camera(m, "Camera", kCameraDoc);
    BindAcquisition(camera);
    BindState(camera);

    py::class_<ImageIterator>(m, "ImageIterator", "Returned by Camera.images().",
                              py::custom_type_setup([](PyHeapTypeObject* type) {
                                  type->ht_type.tp_iternext = NextOrEnd;
                              }))
        .def("__iter__", [](py::object self) { return self; })
        .def("_next_or_none", &ImageIterator::Next)
        .def("close", &ImageIterator::Close,
             "Requeues the current image and stops an acquisition the iterator started.");

    py::class_<AcquireScope>(m, "AcquireScope", "Returned by Camera.acquire().")
        .def("__enter__",
             [](AcquireScope& self) {
                 self.camera->Start(self.buffers.value_or(Orvan::kAutomaticBufferCount));
                 return PyCamera(self.camera);
             })
        .def("__exit__", [](AcquireScope& self, py::args) {
            if (!self.camera->Closed())
                self.camera->Stop();
        });
}

} // namespace OrvanPy
