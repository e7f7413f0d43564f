// The _orvan extension module; the orvan package re-exports it.
#include "Bindings.h"
#include "Errors.h"
#include "SystemCore.h"

#include <Orvan/System.h>

namespace py = pybind11;

PYBIND11_MODULE(_orvan, m) {
    m.doc() = "Orvan camera SDK: cameras, features and images as zero-copy NumPy arrays.";
    OrvanPy::RegisterExceptions(m);
    OrvanPy::BindInfo(m);
    OrvanPy::BindFeatures(m);
    OrvanPy::BindImage(m);
    OrvanPy::BindCamera(m);
    OrvanPy::BindSystem(m);
    OrvanPy::BindLogger(m);
    OrvanPy::BindConvert(m);
    OrvanPy::BindTesting(m);
    m.def(
        "version", [] { return std::string(Orvan::GetVersion().c_str()); },
        "The SDK's version text.");
    // The SDK's threads must be stopped while Python can still run the callbacks they call.
    m.def("_close_everything", &OrvanPy::ForceCloseAllSystems);
    py::module_::import("atexit").attr("register")(m.attr("_close_everything"));
}
