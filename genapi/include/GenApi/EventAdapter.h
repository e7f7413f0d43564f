// Routes the device's event messages to the event ports of a node map (by EventID) and fires
// the callbacks of the nodes that show the event.
#ifndef GENAPI_EVENTADAPTER_H
#define GENAPI_EVENTADAPTER_H

#include <GenApi/INodeMap.h>

#include <cstdint>
#include <memory>

namespace GenApi {

// The node map must outlive the adapter, or be detached from it first.
class CEventAdapter {
public:
    explicit CEventAdapter(INodeMap* pNodeMap = nullptr);
    virtual ~CEventAdapter();
    CEventAdapter(const CEventAdapter&) = delete;
    CEventAdapter& operator=(const CEventAdapter&) = delete;

    virtual void AttachNodeMap(INodeMap* pNodeMap);
    virtual void DetachNodeMap();
    // Throws RuntimeException for a message that is not one of this transport's event
    // messages; nothing of such a message is delivered.
    virtual void DeliverMessage(const uint8_t msg[], uint32_t numBytes) = 0;

protected:
    // The event's bytes become the content of every port with this EventID; those ports and
    // the nodes carrying the EventID are then invalidated, which fires their callbacks.
    void DeliverEvent(uint64_t eventId, const uint8_t* data, size_t length);
    // The same for an EventID given as text: hexadecimal when it parses, else compared as
    // written.
    void DeliverEvent(const gcstring& eventId, const uint8_t* data, size_t length);

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace GenApi

#endif
