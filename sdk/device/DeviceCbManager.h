// Tells registered callbacks whenever a device's connection state changes, by polling every
// registered device from one thread of its own. The system owns one.
#ifndef ORVAN_DEVICE_DEVICECBMANAGER_H
#define ORVAN_DEVICE_DEVICECBMANAGER_H

#include <Orvan/IDevice.h>
#include <Orvan/IDisconnectCallback.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
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
    // Once this returns the callback is not running and will not be called again, unless it is
    // the callback that asked (from inside its own call).
    void DeregisterCallback(IDisconnectCallback* callback);
    // Forgets every registration and stops polling; not from inside a callback.
    void DeregisterAllCallbacks();
    // Takes the device's current state as known, without calling anyone.
    void ConnectDevice(IDevice* device);
    // Forgets the device's registrations and waits until the poller no longer uses the device;
    // called before the device object goes away.
    void DisconnectDevice(IDevice* device);

    void CallbackThread();

private:
    struct Registration {
        bool connected;
        IDisconnectCallback* callback;
        IDevice* device;
        uint64_t id; // registrations are visited by id, since the list may change meanwhile
    };

    void PollOnce();
    void PollRegistration(uint64_t id);
    Registration* Find(uint64_t id);
    // With the mutex held: waits until the poller is done with the registration that matches.
    template <typename Matches>
    void WaitUntilIdle(std::unique_lock<std::mutex>& lock, Matches matches);
    bool OnPollingThread() const; // with the mutex held
    void StopThread();

    std::mutex m_mutex;
    std::condition_variable m_idle;
    std::vector<Registration> m_registrations;
    uint64_t m_nextId = 1;
    // What the poller is using right now, outside the mutex: nothing while both are null.
    IDevice* m_busyDevice = nullptr;
    IDisconnectCallback* m_busyCallback = nullptr;
    std::thread m_thread;
    // Kept when the thread is handed over for joining, so a callback still knows its thread.
    std::thread::id m_pollerId;
    std::atomic<bool> m_run{false};
};

} // namespace Orvan

#endif
