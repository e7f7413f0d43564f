// One stream channel of a camera: points the camera's channel at a GVSP receiver of ours, with
// the packet size the camera uses, and sends the receiver's resend requests back over GVCP.
#ifndef ORVAN_GENTL_GIGE_GIGESTREAMCHANNEL_H
#define ORVAN_GENTL_GIGE_GIGESTREAMCHANNEL_H

#include "../RemoteDevice.h"
#include "GevProtocol.h"
#include "GvcpChannel.h"
#include "GvspReceiver.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>

namespace Orvan {
namespace Producer {

class GigeStreamChannel {
public:
    GigeStreamChannel(uint32_t index, uint32_t localIp);
    ~GigeStreamChannel();

    // featurePacketSize: what the camera's packet-size feature holds, when it has one.
    GenTL::GC_ERROR Start(std::shared_ptr<GvcpChannel> control, FrameSink* sink, uint64_t maxFrames,
                          uint64_t tickFrequency, std::optional<int64_t> featurePacketSize);
    // Returns after the receiver's last call into the sink; the camera stops sending to us.
    void Stop();
    bool Running() const { return m_control != nullptr; }
    void Configure(const ResendSettings& settings);
    StreamStatistics Statistics() const { return m_receiver.Statistics(); }
    // Applies from the next Start.
    void Configure(const ReceiveSettings& settings) { m_receive = settings; }
    ReceiveSettings ReceiveInUse() const { return m_receiver.InUse(); }

private:
    class LimitedSink;
    uint32_t Register(uint32_t base) const {
        return base + m_index * Gev::Reg::StreamChannelStride;
    }

    const uint32_t m_index;
    const uint32_t m_localIp;
    GvspReceiver m_receiver;
    ResendSettings m_settings;
    ReceiveSettings m_receive;
    std::shared_ptr<GvcpChannel> m_control;
    std::unique_ptr<LimitedSink> m_sink;
};

} // namespace Producer
} // namespace Orvan

#endif
