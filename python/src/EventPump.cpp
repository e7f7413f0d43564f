#include "EventPump.h"

#include <Base/GCException.h>
#include <pybind11/pybind11.h>

#include <chrono>

namespace py = pybind11;

namespace OrvanPy {
namespace {

constexpr uint64_t kWaitMs = 50;

} // namespace

EventPump::EventPump(Orvan::IDevice* device) : m_device(device) {
    {
        py::gil_scoped_release release;
        m_device->InitializeEvents();
    }
    m_thread = std::thread([this] { Run(); });
}

EventPump::~EventPump() {
    Stop();
}

void EventPump::Stop() {
    if (!m_thread.joinable())
        return;
    m_running = false;
    py::gil_scoped_release release;
    m_thread.join();
    try {
        m_device->DeinitializeEvents();
    } catch (const GenICam::GenericException&) {
        // The camera may already be gone.
    }
}

void EventPump::Run() {
    while (m_running) {
        try {
            m_device->WaitOnEvent(kWaitMs);
        } catch (const GenICam::TimeoutException&) {
        } catch (const GenICam::GenericException&) {
            // A camera that fails to deliver events is retried, not spun on.
            std::this_thread::sleep_for(std::chrono::milliseconds(kWaitMs));
        }
    }
}

} // namespace OrvanPy
