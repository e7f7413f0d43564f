// orvan.System: the SDK's system, opened on construction.
#include "Bindings.h"
#include "CameraSelection.h"
#include "DisconnectCallback.h"
#include "Errors.h"
#include "NodeCallbacks.h"
#include "PyCamera.h"
#include "SystemCore.h"
#include "Waiting.h"

#include <pybind11/stl.h>

namespace py = pybind11;

namespace OrvanPy {
namespace {

class PySystem {
public:
    PySystem() : m_core(std::make_shared<SystemCore>()) {}

    SystemCore& Core() const {
        if (!m_core)
            ThrowMisuse("the system is closed");
        return *m_core;
    }

    std::vector<Orvan::DeviceInfo> Devices(double timeout) const {
        Orvan::ISystem* system = Core().Get();
        const uint64_t ms = Milliseconds(timeout);
        py::gil_scoped_release release;
        system->UpdateDevices(ms);
        return system->GetDevices();
    }

    std::vector<Orvan::InterfaceInfo> Interfaces() const {
        Orvan::ISystem* system = Core().Get();
        py::gil_scoped_release release;
        return system->GetInterfaces();
    }

    PyCamera Open(py::handle which) const {
        std::vector<Orvan::DeviceInfo> devices = Core().Get()->GetDevices();
        if (devices.empty() || !py::isinstance<Orvan::DeviceInfo>(which))
            devices = Devices(1.0);
        auto camera = std::make_shared<CameraCore>(m_core, SelectCamera(devices, which));
        m_core->Track(camera);
        return PyCamera(camera);
    }

    FeatureMap Features() const {
        std::shared_ptr<SystemCore> core = m_core;
        Core();
        FeatureMap::Source source;
        source.owner = core;
        source.nodeMap = [core] { return core->Get()->GetTLSystemNodeMap(); };
        source.callbacks = [core]() -> NodeCallbacks& { return core->Callbacks(); };
        return FeatureMap(std::move(source));
    }

    void OnDisconnect(const PyCamera& camera, py::object function) const {
        if (!PyCallable_Check(function.ptr()))
            throw py::type_error("on_disconnect needs a callable");
        Core().AddDisconnectCallback(
            std::make_unique<DisconnectCallback>(camera.Core().Device(), std::move(function)));
    }

    // Cameras still viewed by arrays keep the system open until those arrays go.
    void Close() {
        if (!m_core)
            return;
        m_core->CloseCameras();
        m_core.reset();
    }

private:
    std::shared_ptr<SystemCore> m_core;
};

const char* kSystemDoc =
    "The camera SDK's system: opened on construction, closed by close() or at the end of "
    "`with orvan.System() as system:`. One per process.";

} // namespace

void BindSystem(py::module_& m) {
    py::class_<PySystem>(m, "System", kSystemDoc)
        .def(py::init<>())
        .def("devices", &PySystem::Devices, py::arg("timeout") = 1.0,
             "Searches every interface for cameras, waiting up to timeout seconds per "
             "interface with the GIL released; returns a list of DeviceInfo.")
        .def("interfaces", &PySystem::Interfaces, "The transport interfaces, as InterfaceInfo.")
        .def("open", &PySystem::Open, py::arg("camera") = 0,
             "Opens a camera named by a DeviceInfo, an index, or a serial number, user-defined "
             "name, IPv4 address or index as text.")
        .def_property_readonly("features", &PySystem::Features,
                               "The transport layer's system features.")
        .def("on_disconnect", &PySystem::OnDisconnect, py::arg("camera"), py::arg("function"),
             "Calls function(connected) on the system's polling thread whenever the camera is "
             "lost (False) or comes back (True).")
        .def("close", &PySystem::Close, "Closes every camera and the system.")
        .def("__enter__", [](py::object self) { return self; })
        .def("__exit__", [](PySystem& self, py::args) { self.Close(); });
}

} // namespace OrvanPy
