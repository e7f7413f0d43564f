#include "CameraCore.h"

#include "Delivery.h"
#include "Errors.h"
#include "EventPump.h"
#include "ImageCallback.h"
#include "NodeCallbacks.h"
#include "SystemCore.h"

#include <chrono>
#include <thread>

namespace py = pybind11;

namespace OrvanPy {

CameraCore::CameraCore(std::shared_ptr<SystemCore> system, const Orvan::DeviceInfo& info)
    : m_system(std::move(system)), m_info(info), m_nodeCallbacks(new NodeCallbacks) {
    Orvan::ISystem* sdk = m_system->Get();
    py::gil_scoped_release release;
    m_device = sdk->CreateDevice(info);
}

CameraCore::~CameraCore() {
    try {
        ForceClose();
    } catch (...) {
        // Nobody is left to tell.
    }
}

Orvan::IDevice* CameraCore::Device() {
    if (m_closed || !m_device)
        ThrowMisuse("the camera is closed");
    return m_device;
}

void CameraCore::Start(size_t buffers) {
    Orvan::IDevice* device = Device();
    if (m_stopPending)
        ThrowMisuse("NumPy arrays over images of the previous acquisition are still alive; "
                    "delete them (or keep copies) before starting again");
    {
        py::gil_scoped_release release;
        device->StartStream(buffers);
    }
    m_streaming = true;
}

void CameraCore::Stop() {
    Device();
    if (!m_streaming)
        return;
    m_streaming = false;
    if (m_views > 0)
        m_stopPending = true;
    else
        StopNow();
}

void CameraCore::StopNow() {
    m_stopPending = false;
    ++m_generation;
    py::gil_scoped_release release;
    m_device->StopStream();
}

void CameraCore::Close() {
    if (m_closed)
        return;
    Detach();
    m_closed = true;
    m_streaming = false;
    if (m_views == 0)
        DestroyNow();
}

void CameraCore::ForceClose() {
    if (!m_device)
        return;
    Detach();
    m_closed = true;
    m_streaming = false;
    DestroyNow();
}

// Nothing of Python's may be called from the SDK's threads once the camera is closed.
void CameraCore::Detach() {
    if (!m_device)
        return;
    if (m_events)
        m_events->Stop();
    m_events.reset();
    if (m_imageCallback) {
        py::gil_scoped_release release;
        m_device->DeregisterAllImageCallbacks();
    }
    m_imageCallback.reset();
    m_nodeCallbacks->Clear();
    if (m_system->IsOpen())
        m_system->RemoveDisconnectCallbacks(m_device);
}

void CameraCore::DestroyNow() {
    ++m_generation;
    m_stopPending = false;
    AbortWaiters();
    Orvan::IDevice* device = m_device;
    m_device = nullptr;
    if (m_system->IsOpen()) {
        Orvan::ISystem* system = m_system->Get();
        py::gil_scoped_release release;
        system->DestroyDevice(device);
    }
    m_system.reset();
}

// Threads blocked in get_image hold the device pointer without the GIL: stopping the stream
// wakes them, and they leave once they get the GIL back.
void CameraCore::AbortWaiters() {
    if (m_waiters == 0)
        return;
    {
        py::gil_scoped_release release;
        try {
            m_device->StopStream();
        } catch (const GenICam::GenericException&) {
            // Already stopped.
        }
    }
    while (m_waiters > 0) {
        py::gil_scoped_release release;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

void CameraCore::ViewClosed() {
    if (--m_views > 0 || !m_device)
        return;
    if (m_closed)
        DestroyNow();
    else if (m_stopPending)
        StopNow();
}

std::shared_ptr<Delivery> CameraCore::NextImage(Timeout timeout) {
    Orvan::IDevice* device = Device();
    if (!m_streaming)
        ThrowMisuse("the camera is not acquiring: call start() or use acquire()");
    // Read before the wait: a stop that overlaps it must leave this delivery stale.
    const uint64_t generation = m_generation;
    Orvan::IImage* image = nullptr;
    ++m_waiters;
    struct Leave {
        int& waiters;
        ~Leave() { --waiters; }
    } leave{m_waiters};
    WaitInSlices(
        timeout,
        [&](uint64_t ms) {
            image = device->GetImage(ms);
            return true;
        },
        [&] { return m_generation == generation && m_streaming; },
        "the acquisition was stopped while waiting for an image");
    return std::make_shared<Delivery>(shared_from_this(), image, generation, false);
}

std::shared_ptr<Delivery> CameraCore::Borrow(Orvan::IImage* image) {
    return std::make_shared<Delivery>(shared_from_this(), image, m_generation, true);
}

void CameraCore::Requeue(Orvan::IImage* image) {
    m_device->RequeueBuffer(image);
}

void CameraCore::SetImageCallback(py::object function) {
    Orvan::IDevice* device = Device();
    if (m_imageCallback) {
        py::gil_scoped_release release;
        device->DeregisterAllImageCallbacks();
    }
    m_imageCallback.reset();
    if (function.is_none())
        return;
    m_imageCallback = std::make_unique<ImageCallback>(this, std::move(function));
    py::gil_scoped_release release;
    device->RegisterImageCallback(m_imageCallback.get());
}

void CameraCore::EnsureEvents() {
    if (!m_events)
        m_events = std::make_unique<EventPump>(Device());
}

} // namespace OrvanPy
