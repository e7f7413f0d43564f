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
    } catch (...) {
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
    m_registrations.push_back({true, callback, device, m_nextId++});
    if (!m_thread.joinable()) {
        m_run = true;
        m_thread = std::thread(&DeviceCbManager::CallbackThread, this);
        m_pollerId = m_thread.get_id();
    }
}

void DeviceCbManager::DeregisterCallback(IDisconnectCallback* callback) {
    std::unique_lock<std::mutex> lock(m_mutex);
    auto found = std::find_if(m_registrations.begin(), m_registrations.end(),
                              [&](const Registration& r) { return r.callback == callback; });
    if (found == m_registrations.end())
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Callback handle not found", ORVAN_SITE("DeviceCbManager", "DeregisterCallback"));
    m_registrations.erase(found);
    // The application may free the callback as soon as this returns.
    WaitUntilIdle(lock, [&] { return m_busyCallback == callback; });
}

void DeviceCbManager::DeregisterAllCallbacks() {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        // The poller cannot wait for itself to end.
        if (OnPollingThread())
            ThrowLibraryError<GenICam::LogicalErrorException>(
                "All disconnect callbacks cannot be deregistered from inside a disconnect "
                "callback; deregister them one by one",
                ORVAN_SITE("DeviceCbManager", "DeregisterAllCallbacks"));
        m_registrations.clear();
    }
    StopThread();
}

void DeviceCbManager::ConnectDevice(IDevice* device) {
    const bool connected = ConnectedNow(device);
    std::lock_guard<std::mutex> lock(m_mutex);
    for (Registration& registration : m_registrations)
        if (registration.device == device)
            registration.connected = connected;
}

void DeviceCbManager::DisconnectDevice(IDevice* device) {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_registrations.erase(std::remove_if(m_registrations.begin(), m_registrations.end(),
                                         [&](const Registration& r) { return r.device == device; }),
                          m_registrations.end());
    WaitUntilIdle(lock, [&] { return m_busyDevice == device; });
}

template <typename Matches>
void DeviceCbManager::WaitUntilIdle(std::unique_lock<std::mutex>& lock, Matches matches) {
    // From inside a callback the poller is the one using it, and it is done once it returns.
    if (OnPollingThread())
        return;
    m_idle.wait(lock, [&] { return !matches(); });
}

bool DeviceCbManager::OnPollingThread() const {
    return m_pollerId == std::this_thread::get_id();
}

void DeviceCbManager::CallbackThread() {
    while (m_run) {
        PollOnce();
        SleepPollPeriod(m_run);
    }
}

// Callbacks run without the mutex, so that they may open, destroy, start and stop devices and
// change the registrations; the list is therefore walked by id rather than by position.
void DeviceCbManager::PollOnce() {
    std::vector<uint64_t> ids;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (const Registration& registration : m_registrations)
            ids.push_back(registration.id);
    }
    for (uint64_t id : ids) {
        if (!m_run)
            return;
        PollRegistration(id);
    }
}

void DeviceCbManager::PollRegistration(uint64_t id) {
    IDevice* device = nullptr;
    IDisconnectCallback* callback = nullptr;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        const Registration* registration = Find(id);
        if (!registration)
            return;
        device = m_busyDevice = registration->device;
        callback = m_busyCallback = registration->callback;
    }
    const bool connected = ConnectedNow(device);
    bool changed = false;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        Registration* registration = Find(id);
        changed = registration && registration->connected != connected;
        if (changed)
            registration->connected = connected;
    }
    if (changed) {
        try {
            callback->OnDeviceDisconnected(device);
        } catch (...) {
            // The application's failure must not end polling for everyone else.
        }
    }
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_busyDevice = nullptr;
        m_busyCallback = nullptr;
    }
    m_idle.notify_all();
}

DeviceCbManager::Registration* DeviceCbManager::Find(uint64_t id) {
    for (Registration& registration : m_registrations)
        if (registration.id == id)
            return &registration;
    return nullptr;
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
