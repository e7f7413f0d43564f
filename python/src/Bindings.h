// The parts of the orvan module, each added by its own file.
#ifndef ORVAN_PYTHON_BINDINGS_H
#define ORVAN_PYTHON_BINDINGS_H

#include <pybind11/pybind11.h>

namespace OrvanPy {

void BindInfo(pybind11::module_& module);
void BindFeatures(pybind11::module_& module);
void BindImage(pybind11::module_& module);
void BindCamera(pybind11::module_& module);
void BindSystem(pybind11::module_& module);
void BindLogger(pybind11::module_& module);
void BindTesting(pybind11::module_& module);
void BindConvert(pybind11::module_& module);

} // namespace OrvanPy

#endif
