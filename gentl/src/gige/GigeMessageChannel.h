// The host end of a camera's message channel: a UDP socket the camera sends its EVENT and
// EVENTDATA commands to, each acknowledged and handed on whole to the device module's sink
// (the event adapters parse the GVCP message themselves).
#ifndef ORVAN_GENTL_GIGE_GIGEMESSAGECHANNEL_H
#define ORVAN_GENTL_GIGE_GIGEMESSAGECHANNEL_H

#include "../RemoteDevice.h"
#include "GvcpChannel.h"

#include <atomic>
#include <memory>
#include <thread>

namespace Orvan {
namespace Producer {

class GigeMessageChannel {
public:
    explicit GigeMessageChannel(uint32_t localIp);
    ~GigeMessageChannel();
    GigeMessageChannel(const GigeMessageChannel&) = delete;
    GigeMessageChannel& operator=(const GigeMessageChannel&) = delete;

    // Points the camera's message channel here and starts delivering to sink.
    GenTL::GC_ERROR Start(std::shared_ptr<GvcpChannel> control, EventSink* sink);
    // Returns after the last call into the sink; the camera's channel is switched off.
    void Stop();
    uint16_t Port() const { return m_port; }

private:
    void Run(EventSink* sink);

    const uint32_t m_localIp;
    int m_socket = -1;
    uint16_t m_port = 0;
    std::shared_ptr<GvcpChannel> m_control;
    std::thread m_thread;
    std::atomic<bool> m_running{false};
};

} // namespace Producer
} // namespace Orvan

#endif
