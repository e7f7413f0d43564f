// orvan._testing: what the test suite and the benchmark need beyond the public API. The
// virtual cameras are chosen through the producer's test control; the SDK reads no
// environment variables.
#include "Bindings.h"
#include "Errors.h"
#include "PyCamera.h"

#include <GenTL/OrvanTestControl.h>
#include <pybind11/stl.h>

#include <chrono>
#include <string>
#include <vector>

namespace py = pybind11;

namespace OrvanPy {
namespace {

void Check(int32_t status, const char* what) {
    if (status != ORVAN_TC_OK)
        ThrowInvalidArgument(std::string(what) + " refused (" + std::to_string(status) + ")");
}

void SetVirtualCameras(const std::vector<std::string>& models, uint32_t interfaces) {
    std::vector<const char*> names;
    for (const std::string& model : models)
        names.push_back(model.c_str());
    Check(OrvanTC_SetVirtualCameras(names.data(), uint32_t(names.size()), interfaces),
          "set_virtual_cameras");
}

// The C++ loop a Python loop is measured against: the same GetImage/RequeueBuffer pair on the
// same camera, without the GIL. Returns the seconds taken for `count` images.
double CppAcquisitionLoop(const PyCamera& camera, size_t count, double timeout) {
    Orvan::IDevice* device = camera.Core().Device();
    const uint64_t ms = Milliseconds(timeout);
    py::gil_scoped_release release;
    const auto start = std::chrono::steady_clock::now();
    for (size_t i = 0; i < count; ++i)
        device->RequeueBuffer(device->GetImage(ms));
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

void BindTesting(py::module_& parent) {
    py::module_ m = parent.def_submodule("_testing", "Test and benchmark support; not API.");
    m.def("set_virtual_cameras", &SetVirtualCameras, py::arg("models"), py::arg("interfaces") = 1,
          "Virtual camera models for the next System (Mono, Color, LineScan, ...).");
    m.def("reset", [] { Check(OrvanTC_Reset(), "reset"); });
    m.def(
        "set_connected",
        [](const std::string& id, bool connected) {
            Check(OrvanTC_SetDeviceConnected(id.c_str(), connected ? 1 : 0), "set_connected");
        },
        py::arg("device_id"), py::arg("connected"));
    m.def(
        "buffer_address",
        [](const PyImage& image) { return reinterpret_cast<uintptr_t>(image.Get()->GetData()); },
        "Where the SDK's buffer of the image starts.");
    m.def("cpp_acquisition_loop", &CppAcquisitionLoop, py::arg("camera"), py::arg("count"),
          py::arg("timeout") = 5.0);
}

} // namespace OrvanPy
