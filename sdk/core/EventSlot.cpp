#include "EventSlot.h"

namespace Orvan {

void EventSlot::Set(std::unique_ptr<TLEvent> event) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_event = std::move(event);
}

bool EventSlot::IsSet() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_event != nullptr;
}

TLEvent* EventSlot::Enter() {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_event)
        ++m_users;
    return m_event.get();
}

// Notifies under the mutex: the owner may destroy the slot as soon as Take sees no users.
void EventSlot::Leave() {
    std::lock_guard<std::mutex> lock(m_mutex);
    --m_users;
    m_idle.notify_all();
}

std::unique_ptr<TLEvent> EventSlot::Take() {
    std::unique_lock<std::mutex> lock(m_mutex);
    std::unique_ptr<TLEvent> event = std::move(m_event);
    if (!event)
        return event;
    // One kill ends one wait; a user that is not waiting leaves a kill nobody will consume,
    // which is harmless on an event that is going away.
    for (unsigned user = 0; user < m_users; ++user)
        event->Kill();
    m_idle.wait(lock, [this] { return m_users == 0; });
    return event;
}

} // namespace Orvan
