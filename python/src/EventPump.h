// A thread that takes a camera's event messages into its node map, where they fire the
// callbacks registered with features.on_change.
#ifndef ORVAN_PYTHON_EVENTPUMP_H
#define ORVAN_PYTHON_EVENTPUMP_H

#include <Orvan/IDevice.h>

#include <atomic>
#include <thread>

namespace OrvanPy {

class EventPump {
public:
    explicit EventPump(Orvan::IDevice* device);
    ~EventPump();
    EventPump(const EventPump&) = delete;
    EventPump& operator=(const EventPump&) = delete;

    // Joins the thread with the GIL released, since a callback may be waiting for it.
    void Stop();

private:
    void Run();

    Orvan::IDevice* m_device;
    std::atomic<bool> m_running{true};
    std::thread m_thread;
};

} // namespace OrvanPy

#endif
