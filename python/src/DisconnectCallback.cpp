#include "DisconnectCallback.h"

#include <Orvan/IDevice.h>

namespace py = pybind11;

namespace OrvanPy {

DisconnectCallback::DisconnectCallback(Orvan::IDevice* device, py::object function)
    : m_device(device), m_function(std::move(function)) {}

DisconnectCallback::~DisconnectCallback() {
    py::gil_scoped_acquire gil;
    m_function = py::object();
}

void DisconnectCallback::OnDeviceDisconnected(Orvan::IDevice* device) {
    const bool connected = device->IsConnected();
    py::gil_scoped_acquire gil;
    try {
        m_function(connected);
    } catch (py::error_already_set& e) {
        e.discard_as_unraisable(m_function);
    }
}

} // namespace OrvanPy
