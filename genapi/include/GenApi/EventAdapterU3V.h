// Event adapter for USB3 Vision EVENT_CMD messages of the event endpoint.
#ifndef GENAPI_EVENTADAPTERU3V_H
#define GENAPI_EVENTADAPTERU3V_H

#include <GenApi/EventAdapter.h>

namespace GenApi {

class CEventAdapterU3V : public CEventAdapter {
public:
    explicit CEventAdapterU3V(INodeMap* pNodeMap = nullptr);
    ~CEventAdapterU3V() override;

    // The event port receives the command-specific part: reserved, event ID, timestamp, data.
    void DeliverMessage(const uint8_t msg[], uint32_t numBytes) override;
};

} // namespace GenApi

#endif
