#include "SystemCore.h"

#include "CameraCore.h"
#include "DisconnectCallback.h"
#include "Errors.h"
#include "NodeCallbacks.h"

#include <pybind11/pybind11.h>

#include <algorithm>

namespace py = pybind11;

namespace OrvanPy {
namespace {

// Guarded by the GIL.
std::vector<SystemCore*>& OpenSystems() {
    static std::vector<SystemCore*> systems;
    return systems;
}

} // namespace

SystemCore::SystemCore() : m_nodeCallbacks(new NodeCallbacks) {
    {
        py::gil_scoped_release release;
        m_system = Orvan::OpenSystem();
    }
    OpenSystems().push_back(this);
}

SystemCore::~SystemCore() {
    try {
        Shutdown();
    } catch (...) {
        // Closing is best effort once nobody can be told.
    }
    auto& systems = OpenSystems();
    systems.erase(std::remove(systems.begin(), systems.end(), this), systems.end());
}

Orvan::ISystem* SystemCore::Get() {
    if (!m_system)
        ThrowMisuse("the system is closed");
    return m_system;
}

void SystemCore::Track(const std::shared_ptr<CameraCore>& camera) {
    m_cameras.erase(std::remove_if(m_cameras.begin(), m_cameras.end(),
                                   [](const std::weak_ptr<CameraCore>& c) { return c.expired(); }),
                    m_cameras.end());
    m_cameras.push_back(camera);
}

void SystemCore::CloseCameras() {
    for (const std::weak_ptr<CameraCore>& weak : std::vector<std::weak_ptr<CameraCore>>(m_cameras))
        if (std::shared_ptr<CameraCore> camera = weak.lock())
            camera->Close();
}

void SystemCore::ForceClose() {
    // The last camera to go may hold the last reference to this system.
    const std::shared_ptr<SystemCore> self = shared_from_this();
    for (const std::weak_ptr<CameraCore>& weak : std::vector<std::weak_ptr<CameraCore>>(m_cameras))
        if (std::shared_ptr<CameraCore> camera = weak.lock())
            camera->ForceClose();
    Shutdown();
}

void SystemCore::AddDisconnectCallback(std::unique_ptr<DisconnectCallback> callback) {
    DisconnectCallback* raw = callback.get();
    m_disconnects.push_back(std::move(callback));
    try {
        py::gil_scoped_release release;
        Get()->RegisterDeviceDisconnectCallback(raw->Device(), raw);
    } catch (...) {
        m_disconnects.pop_back();
        throw;
    }
}

void SystemCore::RemoveDisconnectCallbacks(Orvan::IDevice* device) {
    for (auto it = m_disconnects.begin(); it != m_disconnects.end();) {
        if ((*it)->Device() != device) {
            ++it;
            continue;
        }
        {
            py::gil_scoped_release release;
            m_system->DeregisterDeviceDisconnectCallback(it->get());
        }
        it = m_disconnects.erase(it);
    }
}

void SystemCore::Shutdown() {
    if (!m_system)
        return;
    Orvan::ISystem* system = m_system;
    {
        py::gil_scoped_release release;
        system->DeregisterAllDeviceDisconnectCallbacks();
    }
    m_disconnects.clear();
    m_nodeCallbacks->Clear();
    m_system = nullptr;
    py::gil_scoped_release release;
    Orvan::CloseSystem(system);
}

void ForceCloseAllSystems() {
    for (SystemCore* system : std::vector<SystemCore*>(OpenSystems()))
        system->ForceClose();
}

} // namespace OrvanPy
