// Event adapter for events whose ID the transport layer reports next to the data.
#ifndef GENAPI_EVENTADAPTERGENERIC_H
#define GENAPI_EVENTADAPTERGENERIC_H

#include <GenApi/EventAdapter.h>

namespace GenApi {

class CEventAdapterGeneric : public CEventAdapter {
public:
    explicit CEventAdapterGeneric(INodeMap* pNodeMap = nullptr);
    ~CEventAdapterGeneric() override;

    // Without an ID the message cannot be routed: throws RuntimeException.
    void DeliverMessage(const uint8_t msg[], uint32_t numBytes) override;
    // The whole message becomes the content of the ports with this EventID.
    virtual void DeliverMessage(const uint8_t msg[], uint32_t numBytes, const gcstring& EventID);
    virtual void DeliverMessage(const uint8_t msg[], uint32_t numBytes, uint64_t EventID);
};

} // namespace GenApi

#endif
