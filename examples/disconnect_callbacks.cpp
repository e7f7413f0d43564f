// Notices when a camera is unplugged or comes back, by a disconnect callback.
//
// The system checks its devices' connection every half second and calls the registered callbacks
// of a device on each change, on its own polling thread. The callback is told about a loss and a
// return alike; IDevice::IsConnected says which.
//
//   example_disconnect_callbacks [seconds]   waits that long (default 60) for a change:
//                                            pull the camera's cable to see one
#include <Orvan/OrvanApi.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <iostream>
#include <mutex>

class ConnectionWatcher : public Orvan::IDisconnectCallback {
public:
    void OnDeviceDisconnected(Orvan::IDevice* device) override {
        const bool connected = device->IsConnected();
        std::lock_guard<std::mutex> lock(m_mutex);
        std::cout << (connected ? "Camera is back\n" : "Camera disconnected\n");
        ++m_changes;
        m_changed.notify_all();
    }

    // True when a change came within the time-out.
    bool WaitForChange(std::chrono::seconds timeout) {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, timeout, [&] { return m_changes > 0; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_changes = 0;
};

int main(int argc, char** argv) {
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 60;
    // Outlives its registration: the polling thread may call it until it is deregistered.
    ConnectionWatcher watcher;
    Orvan::ISystem* system = nullptr;
    Orvan::IDevice* device = nullptr;
    try {
        system = Orvan::OpenSystem();
        system->UpdateDevices(1000);
        const std::vector<Orvan::DeviceInfo> devices = system->GetDevices();
        if (devices.empty())
            throw GENERIC_EXCEPTION("no camera found");
        device = system->CreateDevice(devices.front());

        system->RegisterDeviceDisconnectCallback(device, &watcher);
        std::cout << "Watching " << devices.front().ModelName() << " (serial "
                  << devices.front().SerialNumber() << ") for " << seconds << " s\n";
        if (!watcher.WaitForChange(std::chrono::seconds(seconds)))
            std::cout << "No disconnect within " << seconds << " s\n";
        system->DeregisterDeviceDisconnectCallback(&watcher);

        system->DestroyDevice(device);
        Orvan::CloseSystem(system);
        return 0;
    } catch (const GenICam::GenericException& e) {
        std::cerr << "error: " << e.what() << '\n';
        if (system != nullptr)
            system->DeregisterAllDeviceDisconnectCallbacks();
        if (device != nullptr)
            system->DestroyDevice(device);
        if (system != nullptr)
            Orvan::CloseSystem(system);
        return 1;
    }
}
