// The one SDK system of the process as Python holds it: opened on construction, closed when
// the last Python object that needs it (the System, a camera, an image copy) is gone, or at
// interpreter exit, whichever comes first.
#ifndef ORVAN_PYTHON_SYSTEMCORE_H
#define ORVAN_PYTHON_SYSTEMCORE_H

#include <Orvan/OrvanApi.h>

#include <memory>
#include <vector>

namespace OrvanPy {

class CameraCore;
class DisconnectCallback;
class NodeCallbacks;

class SystemCore : public std::enable_shared_from_this<SystemCore> {
public:
    SystemCore();
    ~SystemCore();
    SystemCore(const SystemCore&) = delete;
    SystemCore& operator=(const SystemCore&) = delete;

    // Throws orvan.LogicalErrorException once the system is closed.
    Orvan::ISystem* Get();
    bool IsOpen() const { return m_system != nullptr; }

    void Track(const std::shared_ptr<CameraCore>& camera);
    // Asks every camera to close; each one does once no NumPy array views its buffers.
    void CloseCameras();
    // Closes cameras and the system now, arrays or not: interpreter exit.
    void ForceClose();

    NodeCallbacks& Callbacks() { return *m_nodeCallbacks; }

    void AddDisconnectCallback(std::unique_ptr<DisconnectCallback> callback);
    void RemoveDisconnectCallbacks(Orvan::IDevice* device);

private:
    void Shutdown();

    Orvan::ISystem* m_system = nullptr;
    std::vector<std::weak_ptr<CameraCore>> m_cameras;
    std::vector<std::unique_ptr<DisconnectCallback>> m_disconnects;
    std::unique_ptr<NodeCallbacks> m_nodeCallbacks;
};

// Every system still open, for the exit handler.
void ForceCloseAllSystems();

} // namespace OrvanPy

#endif
