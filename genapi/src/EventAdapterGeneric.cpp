#include <GenApi/EventAdapterGeneric.h>

#include <Base/GCException.h>

namespace GenApi {

CEventAdapterGeneric::CEventAdapterGeneric(INodeMap* pNodeMap) : CEventAdapter(pNodeMap) {}

CEventAdapterGeneric::~CEventAdapterGeneric() = default;

void CEventAdapterGeneric::DeliverMessage(const uint8_t[], uint32_t) {
    throw RUNTIME_EXCEPTION("A generic event needs its EventID to be delivered");
}

void CEventAdapterGeneric::DeliverMessage(const uint8_t msg[], uint32_t numBytes,
                                          const gcstring& EventID) {
    if (!msg && numBytes > 0)
        throw INVALID_ARGUMENT_EXCEPTION("Event data is null");
    DeliverEvent(EventID, msg, numBytes);
}

void CEventAdapterGeneric::DeliverMessage(const uint8_t msg[], uint32_t numBytes,
                                          uint64_t EventID) {
    if (!msg && numBytes > 0)
        throw INVALID_ARGUMENT_EXCEPTION("Event data is null");
    DeliverEvent(EventID, msg, numBytes);
}

} // namespace GenApi
