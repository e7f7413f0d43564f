// The GenICam exceptions as Python exceptions under orvan.GenericException, each also the
// built-in exception a Python programmer would catch for that kind of failure.
#ifndef ORVAN_PYTHON_ERRORS_H
#define ORVAN_PYTHON_ERRORS_H

#include <pybind11/pybind11.h>

#include <string>

namespace OrvanPy {

void RegisterExceptions(pybind11::module_& module);

// Misuse the binding itself refuses (an image used after requeue, a closed camera): raised as
// orvan.LogicalErrorException with the message given.
[[noreturn]] void ThrowMisuse(const std::string& message);
[[noreturn]] void ThrowInvalidArgument(const std::string& message);

} // namespace OrvanPy

#endif
