#include "StreamWorker.h"

#include <algorithm>

namespace Orvan {
namespace Producer {

namespace {

constexpr int32_t kPayloadRawData = 2;
constexpr int32_t kEventSensorTriggerEvent = 1001;

struct TriggerEventData {
    uint64_t timestampNs;
    uint32_t channel;
    uint32_t polarity;
};

} // namespace

StreamWorker::StreamWorker(StreamHost& host, uint32_t index, StreamRole role, FrameSink& sink)
    : m_host(host), m_index(index), m_role(role), m_sink(sink), m_thread([this] { Run(); }) {}

StreamWorker::~StreamWorker() {
    Join();
}

void StreamWorker::Join() {
    if (m_thread.joinable())
        m_thread.join();
}

void StreamWorker::Run() {
    FrameOrder order;
    while (m_host.NextFrame(m_index, order)) {
        m_host.Notify(CameraEvent::FrameStart, order.frameId, order.startNs);
        m_sink.SignalLeader();
        if (!m_host.SleepUntil(m_index, order.startNs + order.exposureNs))
            continue; // abandoned: the next wait tells whether to stop
        m_host.Notify(CameraEvent::ExposureEnd, order.frameId, order.startNs + order.exposureNs);
        Produce(order);
    }
}

void StreamWorker::Produce(const FrameOrder& order) {
    if (order.faulty && order.fault == FrameFault::Drop) {
        m_sink.CountLostFrame();
        return;
    }
    FillSlot slot;
    if (!m_sink.AcquireBuffer(slot)) {
        m_sink.CountLostFrame();
        return;
    }
    FrameInfo info = Fill(order, slot);
    if (order.faulty)
        Spoil(order, slot, info);
    m_sink.Deliver(slot, info);
    if (m_role == StreamRole::EventData) {
        for (uint32_t t = 0; t < order.events.triggers; ++t) {
            const TriggerEventData trigger{order.startNs, 0, 1};
            m_sink.DeliverStreamEvent(kEventSensorTriggerEvent, &trigger, sizeof trigger);
        }
    }
}

FrameInfo StreamWorker::Fill(const FrameOrder& order, const FillSlot& slot) {
    const FrameSettings& settings = order.settings;
    if (m_role == StreamRole::EventData) {
        FrameInfo info;
        info.frameId = order.frameId;
        info.timestampNs = info.timestampTicks = order.startNs;
        info.payloadType = kPayloadRawData;
        info.imagePresent = false;
        info.sizeFilled = info.dataSize =
            m_events.Encode(order.events, order.startNs, order.exposureNs, slot.data, slot.size);
        return info;
    }
    if (m_role == StreamRole::Multipart) {
        // The consumer sizes multipart buffers as a whole number of parts; fill as many as fit,
        // up to the lines the sensor could hold.
        const size_t partBytes = std::max<size_t>(settings.geometry.ImageBytes(), 1);
        const uint32_t maxParts =
            std::max(settings.geometry.HeightMax() / std::max(settings.geometry.height, 1u), 1u);
        const uint32_t parts = uint32_t(std::min<size_t>(slot.size / partBytes, maxParts));
        if (parts > 0) {
            const uint64_t first = m_nextImage;
            m_nextImage += parts;
            m_host.ExtendFrame(m_index, parts - 1);
            return m_composer.ComposeMultipart(settings, order.frameId, first, parts, order.startNs,
                                               slot);
        }
    }
    return m_composer.Compose(settings, order.frameId, order.startNs, slot);
}

void StreamWorker::Spoil(const FrameOrder& order, const FillSlot& slot, FrameInfo& info) {
    if (order.fault == FrameFault::Corrupt && info.sizeFilled > 0) {
        // The middle of the picture: away from the frame stamp and from the chunk trailer.
        const size_t image =
            std::min<size_t>(order.settings.geometry.ImageBytes(), info.sizeFilled);
        slot.data[image / 2] ^= 0xA5;
    } else if (order.fault == FrameFault::Incomplete) {
        info.incomplete = true;
        info.sizeFilled /= 2;
        info.dataSize = info.sizeFilled;
    }
}

} // namespace Producer
} // namespace Orvan
