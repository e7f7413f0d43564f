// One of our handles standing for a module of a foreign producer: the producer, its own
// handle, and our handle of the parent module (what the IFGetParentTL kind of calls answer).
#ifndef ORVAN_GENTL_GENTL_FOREIGNMODULE_H
#define ORVAN_GENTL_GENTL_FOREIGNMODULE_H

#include "../HandleRegistry.h"
#include "ForeignProducer.h"

#include <memory>
#include <string>

namespace Orvan {
namespace Producer {

class ForeignModule {
public:
    ForeignModule(std::shared_ptr<ForeignProducer> producer, HandleKind kind, void* foreign,
                  void* parent)
        : m_producer(std::move(producer)), m_kind(kind), m_foreign(foreign), m_parent(parent) {}

    ForeignProducer& Producer() const { return *m_producer; }
    const ProducerFunctions& Functions() const { return m_producer->Functions(); }
    const std::shared_ptr<ForeignProducer>& SharedProducer() const { return m_producer; }
    HandleKind Kind() const { return m_kind; }
    void* Foreign() const { return m_foreign; }
    void* Parent() const { return m_parent; }

    // Events are found again by their source and type when unregistered.
    GenTL::EVENT_TYPE eventType = 0;
    // Interfaces answer INTERFACE_INFO_ID with the id we list them under.
    std::string interfaceId;

private:
    const std::shared_ptr<ForeignProducer> m_producer;
    const HandleKind m_kind;
    void* const m_foreign;
    void* const m_parent;
};

} // namespace Producer
} // namespace Orvan

#endif
