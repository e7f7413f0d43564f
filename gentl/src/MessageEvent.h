// An event whose data are byte messages pushed by the producer (errors, camera events, vendor
// stream events), kept in a bounded queue.
#ifndef ORVAN_GENTL_MESSAGEEVENT_H
#define ORVAN_GENTL_MESSAGEEVENT_H

#include "Event.h"
#include "WaitGate.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

namespace Orvan {
namespace Producer {

class MessageEvent : public Event {
public:
    // The oldest messages are dropped beyond this many, so a consumer that never reads cannot
    // make the producer grow without bound.
    static constexpr size_t kQueueLimit = 1024;

    MessageEvent(GenTL::EVENT_TYPE type, size_t maxDataSize)
        : Event(type), m_maxDataSize(maxDataSize) {}

    void Push(const void* data, size_t size);

    void GetData(void* buffer, size_t* size, uint64_t timeoutMs) override;
    void Flush() override;
    void Kill() override;
    void AbortWaits() override;
    size_t NumInQueue() const override;
    uint64_t NumFired() const override;
    size_t MaxDataSize() const override { return m_maxDataSize; }

private:
    const size_t m_maxDataSize;
    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    WaitGate m_gate;
    std::deque<std::vector<uint8_t>> m_queue;
    uint64_t m_fired = 0;
};

} // namespace Producer
} // namespace Orvan

#endif
