#include "Errors.h"

#include <Base/GCException.h>

namespace py = pybind11;

namespace OrvanPy {
namespace {

// Owned for the life of the process: exception types must outlive every translation.
PyObject* g_generic = nullptr;
PyObject* g_types[9] = {};

enum Kind {
    kBadAlloc,
    kInvalidArgument,
    kOutOfRange,
    kProperty,
    kRuntime,
    kLogicalError,
    kAccess,
    kTimeout,
    kDynamicCast
};

struct ExceptionType {
    Kind kind;
    const char* name;
    PyObject* builtin;
    const char* doc;
};

PyObject* NewType(py::module_& module, const char* name, PyObject* bases, const char* doc) {
    const std::string qualified = std::string("orvan.") + name;
    PyObject* type = PyErr_NewExceptionWithDoc(qualified.c_str(), doc, bases, nullptr);
    if (type == nullptr)
        throw py::error_already_set();
    Py_INCREF(type);
    module.add_object(name, py::handle(type));
    return type;
}

void AddTypes(py::module_& module) {
    g_generic = NewType(module, "GenericException", PyExc_Exception,
                        "Base of every error the camera SDK reports.");
    const ExceptionType types[] = {
        {kBadAlloc, "BadAllocException", PyExc_MemoryError, "The SDK ran out of memory."},
        {kInvalidArgument, "InvalidArgumentException", PyExc_ValueError,
         "An argument the SDK cannot use."},
        {kOutOfRange, "OutOfRangeException", PyExc_ValueError,
         "A value outside a feature's limits."},
        {kProperty, "PropertyException", nullptr, "A feature's description is inconsistent."},
        {kRuntime, "RuntimeException", PyExc_RuntimeError,
         "A failure of the camera or the transport."},
        {kLogicalError, "LogicalErrorException", PyExc_RuntimeError,
         "An operation not allowed in the current state."},
        {kAccess, "AccessException", PyExc_PermissionError,
         "A feature that is not readable or writable now."},
        {kTimeout, "TimeoutException", PyExc_TimeoutError, "A wait that ran out of time."},
        {kDynamicCast, "DynamicCastException", PyExc_TypeError,
         "A feature used as a type it is not."},
    };
    for (const ExceptionType& type : types) {
        py::tuple bases = type.builtin
                              ? py::make_tuple(py::handle(g_generic), py::handle(type.builtin))
                              : py::make_tuple(py::handle(g_generic));
        g_types[type.kind] = NewType(module, type.name, bases.ptr(), type.doc);
    }
}

void Raise(PyObject* type, const GenICam::GenericException& e) {
    PyErr_SetString(type, e.GetDescription());
}

void Translate(std::exception_ptr thrown) {
    try {
        std::rethrow_exception(thrown);
    } catch (const GenICam::BadAllocException& e) {
        Raise(g_types[kBadAlloc], e);
    } catch (const GenICam::InvalidArgumentException& e) {
        Raise(g_types[kInvalidArgument], e);
    } catch (const GenICam::OutOfRangeException& e) {
        Raise(g_types[kOutOfRange], e);
    } catch (const GenICam::PropertyException& e) {
        Raise(g_types[kProperty], e);
    } catch (const GenICam::RuntimeException& e) {
        Raise(g_types[kRuntime], e);
    } catch (const GenICam::LogicalErrorException& e) {
        Raise(g_types[kLogicalError], e);
    } catch (const GenICam::AccessException& e) {
        Raise(g_types[kAccess], e);
    } catch (const GenICam::TimeoutException& e) {
        Raise(g_types[kTimeout], e);
    } catch (const GenICam::DynamicCastException& e) {
        Raise(g_types[kDynamicCast], e);
    } catch (const GenICam::GenericException& e) {
        Raise(g_generic, e);
    }
}

} // namespace

void RegisterExceptions(py::module_& module) {
    AddTypes(module);
    py::register_exception_translator(Translate);
}

void ThrowMisuse(const std::string& message) {
    throw GenICam::LogicalErrorException(message.c_str(), __FILE__, __LINE__);
}

void ThrowInvalidArgument(const std::string& message) {
    throw GenICam::InvalidArgumentException(message.c_str(), __FILE__, __LINE__);
}

} // namespace OrvanPy
