#include "GigeStreamChannel.h"

#include "../LastError.h"
#include "GevProtocol.h"

namespace Orvan {
namespace Producer {

// Passes frames on until maxFrames have been delivered, then lets the rest go quietly: the
// frames beyond the limit were not asked for, so they are neither delivered nor lost.
class GigeStreamChannel::LimitedSink : public FrameSink {
public:
    LimitedSink(FrameSink* sink, uint64_t maxFrames) : m_sink(sink), m_left(maxFrames) {}

    bool AcquireBuffer(FillSlot& slot) override {
        return m_left.load() != 0 && m_sink->AcquireBuffer(slot);
    }
    void Deliver(const FillSlot& slot, const FrameInfo& info) override {
        uint64_t left = m_left.load();
        if (left != GENTL_INFINITE && left != 0)
            m_left.store(left - 1);
        m_sink->Deliver(slot, info);
    }
    void Return(const FillSlot& slot) override { m_sink->Return(slot); }
    void SignalLeader() override {
        if (m_left.load() != 0)
            m_sink->SignalLeader();
    }
    void CountLostFrame() override {
        if (m_left.load() != 0)
            m_sink->CountLostFrame();
    }
    void DeliverStreamEvent(int32_t eventType, const void* data, size_t size) override {
        m_sink->DeliverStreamEvent(eventType, data, size);
    }

private:
    FrameSink* const m_sink;
    std::atomic<uint64_t> m_left; // GENTL_INFINITE: no limit
};

GigeStreamChannel::GigeStreamChannel(uint32_t index, uint32_t localIp)
    : m_index(index), m_localIp(localIp), m_receiver(localIp) {}

GigeStreamChannel::~GigeStreamChannel() {
    Stop();
}

GenTL::GC_ERROR GigeStreamChannel::Start(std::shared_ptr<GvcpChannel> control, FrameSink* sink,
                                         uint64_t maxFrames, uint64_t tickFrequency,
                                         std::optional<int64_t> featurePacketSize) {
    if (m_receiver.Port() == 0) {
        SetLastError(GenTL::GC_ERR_IO, "No socket for the stream");
        return GenTL::GC_ERR_IO;
    }
    uint32_t packetSizeRegister = 0;
    GenTL::GC_ERROR status =
        control->ReadRegister(Register(Gev::Reg::StreamChannelPacketSize), packetSizeRegister);
    if (status == GenTL::GC_ERR_SUCCESS)
        status = control->WriteRegister(Register(Gev::Reg::StreamChannelDestination), m_localIp);
    if (status == GenTL::GC_ERR_SUCCESS)
        status = control->WriteRegister(Register(Gev::Reg::StreamChannelPort), m_receiver.Port());
    if (status != GenTL::GC_ERR_SUCCESS) {
        SetLastError(status,
                     "Setting up the camera's stream channel failed: " + control->LastErrorText());
        return status;
    }
    GvspReceiver::Config config;
    config.tickFrequency = tickFrequency != 0 ? tickFrequency : config.tickFrequency;
    // The feature is what the camera's own description says it uses; the register is the
    // fallback for cameras whose description names it differently.
    const uint32_t packetSize = featurePacketSize && *featurePacketSize > 0
                                    ? static_cast<uint32_t>(*featurePacketSize)
                                    : packetSizeRegister & Gev::kPacketSizeMask;
    if (packetSize > Gev::kIpUdpOverhead)
        config.packetSize = packetSize;
    config.resend = m_settings;
    config.receive = m_receive;
    std::weak_ptr<GvcpChannel> weakControl = control;
    const uint16_t channelIndex = static_cast<uint16_t>(m_index);
    auto requester = [weakControl, channelIndex](uint64_t blockId, uint32_t first, uint32_t last) {
        // Block ids beyond 16 bits and packet ids beyond 24 bits only exist in the extended form.
        const bool extended = blockId > 0xFFFF || last > 0xFFFFFF;
        if (std::shared_ptr<GvcpChannel> channel = weakControl.lock())
            channel->SendPacketResend(channelIndex, blockId, first, last, extended);
    };
    m_sink = std::make_unique<LimitedSink>(sink, maxFrames);
    status = m_receiver.Start(m_sink.get(), config, requester);
    if (status != GenTL::GC_ERR_SUCCESS) {
        control->WriteRegister(Register(Gev::Reg::StreamChannelPort), 0);
        m_sink.reset();
        return status;
    }
    m_control = std::move(control);
    return GenTL::GC_ERR_SUCCESS;
}

void GigeStreamChannel::Stop() {
    if (!m_control)
        return;
    m_receiver.Stop();
    // Port 0 closes the channel; without a destination the camera sends nothing either.
    m_control->WriteRegister(Register(Gev::Reg::StreamChannelPort), 0);
    m_control->WriteRegister(Register(Gev::Reg::StreamChannelDestination), 0);
    m_control.reset();
    m_sink.reset();
}

void GigeStreamChannel::Configure(const ResendSettings& settings) {
    m_settings = settings;
    m_receiver.Configure(settings);
}

} // namespace Producer
} // namespace Orvan
