// Receives images through a callback instead of asking for each one.
//
// While a device streams with registered callbacks, one SDK thread takes each image, calls every
// callback in registration order and then gives the image back to the pool itself. A callback
// must therefore be quick and must not keep the image; copy it with the image factory if it is
// needed later. GetImage may not be used at the same time.
#include <Orvan/OrvanApi.h>

#include <chrono>
#include <condition_variable>
#include <iostream>
#include <mutex>

class FrameCounter : public Orvan::IImageCallback {
public:
    // Runs on the SDK's callback thread, so shared state needs a lock.
    void OnImage(Orvan::IImage* image) override {
        std::lock_guard<std::mutex> lock(m_mutex);
        ++m_count;
        m_lastFrame = image->GetFrameId();
        m_changed.notify_all();
    }

    // Waits until `count` images have arrived; false when they did not within the time-out.
    bool WaitFor(int count, std::chrono::milliseconds timeout) {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, timeout, [&] { return m_count >= count; });
    }

    uint64_t LastFrame() {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_lastFrame;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_count = 0;
    uint64_t m_lastFrame = 0;
};

int main() {
    // Outlives the device, so the SDK never calls a callback that is gone.
    FrameCounter counter;
    Orvan::ISystem* system = nullptr;
    Orvan::IDevice* device = nullptr;
    try {
        system = Orvan::OpenSystem();
        system->UpdateDevices(1000);
        const std::vector<Orvan::DeviceInfo> devices = system->GetDevices();
        if (devices.empty())
            throw GENERIC_EXCEPTION("no camera found");
        device = system->CreateDevice(devices.front());

        // Register before starting so that no image is missed.
        device->RegisterImageCallback(&counter);
        device->StartStream();
        const bool arrived = counter.WaitFor(20, std::chrono::seconds(10));
        device->StopStream();
        device->DeregisterImageCallback(&counter);

        if (arrived)
            std::cout << "Callback received 20 images, the last one was image "
                      << counter.LastFrame() << '\n';
        else
            std::cout << "Fewer than 20 images arrived within 10 s\n";
        system->DestroyDevice(device);
        Orvan::CloseSystem(system);
        return arrived ? 0 : 1;
    } catch (const GenICam::GenericException& e) {
        std::cerr << "error: " << e.what() << '\n';
        if (device != nullptr)
            system->DestroyDevice(device);
        if (system != nullptr)
            Orvan::CloseSystem(system);
        return 1;
    }
}
