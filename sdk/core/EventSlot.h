// A registered event that some threads wait on while another may take it away (stop a stream,
// switch events off, destroy the device). Taking it away ends the waits in progress with
// EventKill and returns only once every waiter has left, so the event can then be unregistered
// and its wrapper deleted without pulling it from under anyone.
#ifndef ORVAN_CORE_EVENTSLOT_H
#define ORVAN_CORE_EVENTSLOT_H

#include "TLEvent.h"

#include <condition_variable>
#include <memory>
#include <mutex>

namespace Orvan {

class EventSlot {
public:
    EventSlot() = default;
    EventSlot(const EventSlot&) = delete;
    EventSlot& operator=(const EventSlot&) = delete;

    void Set(std::unique_ptr<TLEvent> event);
    bool IsSet() const;

    // Calls use(event) with the event kept alive for the whole call. Returns false, without
    // calling, when the slot is empty.
    template <typename Use>
    bool With(Use use) {
        TLEvent* event = Enter();
        if (!event)
            return false;
        struct Exit {
            EventSlot* slot;
            ~Exit() { slot->Leave(); }
        } exit{this};
        use(event);
        return true;
    }

    // Empties the slot, ends every wait on the event and hands it over once nobody uses it; null
    // when the slot was empty.
    std::unique_ptr<TLEvent> Take();

private:
    TLEvent* Enter();
    void Leave();

    mutable std::mutex m_mutex;
    std::condition_variable m_idle;
    std::unique_ptr<TLEvent> m_event;
    unsigned m_users = 0;
};

} // namespace Orvan

#endif
