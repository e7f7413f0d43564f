// EVENT_NEW_BUFFER of a data stream: its queue is the stream's output queue itself, so taking the
// event data is what removes a buffer from that queue.
#ifndef ORVAN_GENTL_NEWBUFFEREVENT_H
#define ORVAN_GENTL_NEWBUFFEREVENT_H

#include "BufferPool.h"
#include "Event.h"

#include <memory>

namespace Orvan {
namespace Producer {

class NewBufferEvent : public Event {
public:
    explicit NewBufferEvent(std::shared_ptr<BufferPool> pool)
        : Event(GenTL::EVENT_NEW_BUFFER), m_pool(std::move(pool)) {}

    void GetData(void* buffer, size_t* size, uint64_t timeoutMs) override;
    // Flushing the event discards the output queue, as ACQ_QUEUE_OUTPUT_DISCARD does.
    void Flush() override { m_pool->Flush(GenTL::ACQ_QUEUE_OUTPUT_DISCARD); }
    void Kill() override { m_pool->KillWait(); }
    void AbortWaits() override { m_pool->AbortWaits(); }
    size_t NumInQueue() const override { return m_pool->OutputCount(); }
    uint64_t NumFired() const override { return m_pool->DeliveredCount(); }
    size_t MaxDataSize() const override { return sizeof(GenTL::EVENT_NEW_BUFFER_DATA); }

private:
    std::shared_ptr<BufferPool> m_pool;
};

} // namespace Producer
} // namespace Orvan

#endif
