// Base of the producer's modules (system, interface, device, data stream): each has a port and
// is an event source. Registered events get handles of their own.
#ifndef ORVAN_GENTL_MODULE_H
#define ORVAN_GENTL_MODULE_H

#include "Event.h"
#include "HandleRegistry.h"
#include "Port.h"

#include <map>
#include <memory>
#include <mutex>

namespace Orvan {
namespace Producer {

class Module : public HandleObject {
public:
    virtual Port& GetPort() = 0;

    GenTL::EVENT_HANDLE RegisterEvent(GenTL::EVENT_TYPE type);
    void UnregisterEvent(GenTL::EVENT_TYPE type);

protected:
    // The event a module offers for that type, or null (GC_ERR_NOT_IMPLEMENTED).
    virtual std::shared_ptr<Event> MakeEvent(GenTL::EVENT_TYPE type);
    // Hooks for modules whose event data come from elsewhere (the camera's event channel).
    virtual void EventRegistered(GenTL::EVENT_TYPE) {}
    virtual void EventUnregistered(GenTL::EVENT_TYPE) {}

    // The registered event of that type, or null.
    std::shared_ptr<Event> FindEvent(GenTL::EVENT_TYPE type) const;
    // Pushes an EVENT_ERROR (code, then text) when one is registered.
    void RaiseError(GenTL::GC_ERROR code, const std::string& text) const;
    // Unregisters every event; called when the module closes.
    void UnregisterAllEvents();

private:
    struct Registration {
        GenTL::EVENT_HANDLE handle;
        std::shared_ptr<Event> event;
    };

    mutable std::mutex m_eventMutex;
    std::map<GenTL::EVENT_TYPE, Registration> m_events;
    bool m_closed = false; // set by UnregisterAllEvents: the module is closing
};

} // namespace Producer
} // namespace Orvan

#endif
