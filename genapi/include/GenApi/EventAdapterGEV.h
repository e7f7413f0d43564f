// Event adapter for GigE Vision: GVCP EVENT and EVENTDATA messages, with or without the
// extended-id flag, one or several events per message.
#ifndef GENAPI_EVENTADAPTERGEV_H
#define GENAPI_EVENTADAPTERGEV_H

#include <GenApi/EventAdapter.h>

namespace GenApi {

class CEventAdapterGEV : public CEventAdapter {
public:
    explicit CEventAdapterGEV(INodeMap* pNodeMap = nullptr);
    ~CEventAdapterGEV() override;

    // Each event port receives the whole event, its header included, as descriptions address
    // it (the timestamp at 8, or at 16 with extended ids).
    void DeliverMessage(const uint8_t msg[], uint32_t numBytes) override;
};

} // namespace GenApi

#endif
