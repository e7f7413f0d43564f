// The acquisition engine of one data stream: the announced buffers, the input pool, the output
// queue and the waits for delivered buffers. Everything here happens under one mutex; the camera's
// thread and the consumer's threads meet only through it.
#ifndef ORVAN_GENTL_BUFFERPOOL_H
#define ORVAN_GENTL_BUFFERPOOL_H

#include "InfoValue.h"
#include "StreamBuffer.h"
#include "WaitGate.h"

#include <GenTL/GenTL.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace Orvan {
namespace Producer {

class BufferPool {
public:
    enum class HandlingMode : uint32_t {
        OldestFirst = 1,
        OldestFirstOverwrite = 2,
        NewestOnly = 3
    };

    struct Counters {
        uint64_t started = 0;    // frames the camera began since the last start
        uint64_t delivered = 0;  // buffers put into the output queue since the last start
        uint64_t lost = 0;       // frames without a buffer, or dropped
        uint64_t incomplete = 0; // delivered buffers marked incomplete
    };

    BufferPool();
    ~BufferPool();

    void* Announce(uint8_t* memory, size_t size, void* userPointer, bool ownMemory);
    // Frees producer memory; hands back the caller's memory and user pointer.
    void Revoke(void* handle, void** memory, void** userPointer);
    void Queue(void* handle);
    void Flush(GenTL::ACQ_QUEUE_TYPE operation);
    void* BufferAt(uint32_t index) const;

    // Acquisition state. Stop puts a buffer the camera still holds back into the input pool.
    void Start(uint64_t frameLimit);
    void Stop();
    bool IsAcquiring() const;

    // Consumer side of EVENT_NEW_BUFFER.
    void WaitDelivered(GenTL::EVENT_NEW_BUFFER_DATA& record, uint64_t timeoutMs);
    void KillWait();
    void AbortWaits();
    size_t OutputCount() const;
    uint64_t DeliveredCount() const;

    // Camera side (FrameSink).
    bool Acquire(FillSlot& slot);
    void Deliver(const FillSlot& slot, const FrameInfo& info);
    void Return(const FillSlot& slot);
    void CountLost();
    void SignalLeader();
    void WaitLeader(uint64_t timeoutMs);
    void ResetLeader();

    void SetHandlingMode(HandlingMode mode);
    HandlingMode GetHandlingMode() const;
    Counters GetCounters() const;
    size_t AnnouncedCount() const;
    size_t InputCount() const;

    // Reads a buffer's state under the pool's lock.
    template <typename Reader>
    auto Inspect(void* handle, Reader reader) const {
        std::lock_guard<std::mutex> lock(m_mutex);
        return reader(Find(handle));
    }

private:
    StreamBuffer& Find(void* handle) const;
    StreamBuffer* TakeFromCamera(const FillSlot& slot);
    void MoveToOutput(StreamBuffer& buffer);
    void MoveAll(std::deque<StreamBuffer*>& from, std::deque<StreamBuffer*>& to,
                 StreamBuffer::Place place);
    void OutsideToInput();

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_leaderWake;
    WaitGate m_gate;
    WaitGate m_leaderGate;
    std::unordered_map<void*, std::unique_ptr<StreamBuffer>> m_buffers;
    std::vector<void*> m_order; // announcement order, for DSGetBufferID
    std::deque<StreamBuffer*> m_input;
    std::deque<StreamBuffer*> m_output;
    std::vector<StreamBuffer*> m_filling; // held by the camera
    bool m_acquiring = false;
    bool m_leaderPending = false;
    uint64_t m_frameLimit = GENTL_INFINITE;
    HandlingMode m_mode = HandlingMode::OldestFirst;
    Counters m_counters;
};

} // namespace Producer
} // namespace Orvan

#endif
