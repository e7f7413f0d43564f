#include "Module.h"

#include "GenTLError.h"
#include "MessageEvent.h"

#include <cstring>
#include <vector>

namespace Orvan {
namespace Producer {

namespace {
constexpr size_t kErrorEventSize = 1024;
}

GenTL::EVENT_HANDLE Module::RegisterEvent(GenTL::EVENT_TYPE type) {
    std::unique_lock<std::mutex> lock(m_eventMutex);
    if (m_closed)
        throw GenTLError(GenTL::GC_ERR_INVALID_HANDLE, "The module is closed");
    if (m_events.count(type))
        throw GenTLError(GenTL::GC_ERR_RESOURCE_IN_USE,
                         "Event type " + std::to_string(type) + " is already registered");
    std::shared_ptr<Event> event = MakeEvent(type);
    if (!event)
        throw GenTLError(GenTL::GC_ERR_NOT_IMPLEMENTED,
                         "The module does not signal event type " + std::to_string(type));
    GenTL::EVENT_HANDLE handle = HandleRegistry::Instance().Add(event, HandleKind::Event);
    m_events[type] = Registration{handle, event};
    lock.unlock();
    EventRegistered(type);
    return handle;
}

void Module::UnregisterEvent(GenTL::EVENT_TYPE type) {
    std::unique_lock<std::mutex> lock(m_eventMutex);
    auto it = m_events.find(type);
    if (it == m_events.end())
        throw GenTLError(GenTL::GC_ERR_NOT_AVAILABLE,
                         "Event type " + std::to_string(type) + " is not registered");
    Registration registration = it->second;
    m_events.erase(it);
    lock.unlock();
    EventUnregistered(type);
    HandleRegistry::Instance().Remove(registration.handle);
    registration.event->AbortWaits();
}

void Module::UnregisterAllEvents() {
    std::vector<GenTL::EVENT_TYPE> types;
    {
        std::lock_guard<std::mutex> lock(m_eventMutex);
        m_closed = true;
        for (const auto& entry : m_events)
            types.push_back(entry.first);
    }
    for (GenTL::EVENT_TYPE type : types) {
        try {
            UnregisterEvent(type);
        } catch (const GenTLError&) {
            // Another thread unregistered it meanwhile.
        }
    }
}

std::shared_ptr<Event> Module::MakeEvent(GenTL::EVENT_TYPE type) {
    if (type == GenTL::EVENT_ERROR)
        return std::make_shared<MessageEvent>(type, kErrorEventSize);
    return nullptr;
}

std::shared_ptr<Event> Module::FindEvent(GenTL::EVENT_TYPE type) const {
    std::lock_guard<std::mutex> lock(m_eventMutex);
    auto it = m_events.find(type);
    return it == m_events.end() ? nullptr : it->second.event;
}

void Module::RaiseError(GenTL::GC_ERROR code, const std::string& text) const {
    auto event = std::static_pointer_cast<MessageEvent>(FindEvent(GenTL::EVENT_ERROR));
    if (!event)
        return;
    std::vector<uint8_t> data(sizeof(code) + text.size() + 1, 0);
    std::memcpy(data.data(), &code, sizeof(code));
    std::memcpy(data.data() + sizeof(code), text.data(), text.size());
    event->Push(data.data(), data.size());
}

} // namespace Producer
} // namespace Orvan
