// Tells registered callbacks whenever a device's connection state changes, by polling every
// registered device from one thread of its own. The system owns one.
#ifndef ORVAN_DEVICE_DEVICECBMANAGER_H
#define ORVAN_DEVICE_DEVICECBMANAGER_H

#include <Orvan/IDevice.h>
#include <Orvan/IDisconnectCallback.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

namespace Orvan {

class DeviceCbManager {
public:
    DeviceCbManager() = default;
    DeviceCbManager(const DeviceCbManager&) = delete;
    DeviceCbManager& operator=(const DeviceCbManager&) = delete;
    // Stops the polling thread.
    virtual ~DeviceCbManager();

    // The device counts as connected at registration. The first registration starts polling.
    void RegisterCallback(IDevice* device, IDisconnectCallback* callback);
    void DeregisterCallback(IDisconnectCallback* callback);
    // Forgets every registration and stops polling.
    void DeregisterAllCallbacks();
    // Takes the device's current state as known, without calling anyone.
    void ConnectDevice(IDevice* device);
    // Forgets the device's registrations; called before the device object goes away.
    void DisconnectDevice(IDevice* device);

    void CallbackThread();

private:
    struct Registration {
        bool connected;
        IDisconnectCallback* callback;
        IDevice* device;
    };

    void PollOnce();
    void StopThread();

    std::mutex m_mutex;
    std::vector<Registration> m_registrations;
    std::thread m_thread;
    std::atomic<bool> m_run{false};
};

} // namespace Orvan

#endif
