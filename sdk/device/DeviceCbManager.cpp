#include "DeviceCbManager.h"

#include "core/ErrorTranslation.h"

#include <algorithm>
#include <cerrno>
#include <ctime>

namespace Orvan {
namespace {

// A device that cannot even be asked counts as gone.
bool ConnectedNow(IDevice* device) {
    try {
        return device->IsConnected();
    } catch (const GenICam::GenericException&) {
        return false;
    }
}

void SleepPollPeriod(const std::atomic<bool>& run) {
    timespec remaining = {0, 500000000};
    while (run && nanosleep(&remaining, &remaining) != 0 && errno == EINTR) {
    }
}

} // namespace

DeviceCbManager::~DeviceCbManager() {
    StopThread();
}

void DeviceCbManager::RegisterCallback(IDevice* device, IDisconnectCallback* callback) {
    if (!callback)
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Null disconnect callback pointer specified",
            ORVAN_SITE("DeviceCbManager", "RegisterCallback"));
    if (!device)
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Device is null", ORVAN_SITE("DeviceCbManager", "RegisterCallback"));
    std::lock_guard<std::mutex> lock(m_mutex);
    m_registrations.push_back({true, callback, device});
    if (!m_thread.joinable()) {
        m_run = true;
        m_thread = std::thread(&DeviceCbManager::CallbackThread, this);
    }
}

void DeviceCbManager::DeregisterCallback(IDisconnectCallback* callback) {
    std::lock_guard<std::mutex> lock(m_mutex);
    auto found = std::find_if(m_registrations.begin(), m_registrations.end(),
                              [&](const Registration& r) { return r.callback == callback; });
    if (found == m_registrations.end())
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Callback handle not found", ORVAN_SITE("DeviceCbManager", "DeregisterCallback"));
    m_registrations.erase(found);
}

void DeviceCbManager::DeregisterAllCallbacks() {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_registrations.clear();
    }
    StopThread();
}

void DeviceCbManager::ConnectDevice(IDevice* device) {
    std::lock_guard<std::mutex> lock(m_mutex);
    for (Registration& registration : m_registrations)
        if (registration.device == device)
            registration.connected = ConnectedNow(device);
}

void DeviceCbManager::DisconnectDevice(IDevice* device) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_registrations.erase(std::remove_if(m_registrations.begin(), m_registrations.end(),
                                         [&](const Registration& r) { return r.device == device; }),
                          m_registrations.end());
}

void DeviceCbManager::CallbackThread() {
    while (m_run) {
        PollOnce();
        SleepPollPeriod(m_run);
    }
}

void DeviceCbManager::PollOnce() {
    std::lock_guard<std::mutex> lock(m_mutex);
    for (Registration& registration : m_registrations) {
        const bool connected = ConnectedNow(registration.device);
        if (connected == registration.connected)
            continue;
        registration.connected = connected;
        try {
            registration.callback->OnDeviceDisconnected(registration.device);
        } catch (...) {
            // The application's failure must not end polling for everyone else.
        }
    }
}

// The thread takes the mutex on every pass, so it is joined outside it.
void DeviceCbManager::StopThread() {
    std::thread thread;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_run = false;
        thread = std::move(m_thread);
    }
    if (thread.joinable())
        thread.join();
}

} // namespace Orvan
