// Calls a Python callable with the camera's new connection state (True when it is back), on
// the system's polling thread, taking the GIL only for the call.
#ifndef ORVAN_PYTHON_DISCONNECTCALLBACK_H
#define ORVAN_PYTHON_DISCONNECTCALLBACK_H

#include <Orvan/IDisconnectCallback.h>
#include <pybind11/pybind11.h>

namespace OrvanPy {

class DisconnectCallback : public Orvan::IDisconnectCallback {
public:
    DisconnectCallback(Orvan::IDevice* device, pybind11::object function);
    ~DisconnectCallback() override;
    DisconnectCallback(const DisconnectCallback&) = delete;
    DisconnectCallback& operator=(const DisconnectCallback&) = delete;

    Orvan::IDevice* Device() const { return m_device; }
    void OnDeviceDisconnected(Orvan::IDevice* device) override;

private:
    Orvan::IDevice* m_device;
    pybind11::object m_function;
};

} // namespace OrvanPy

#endif
