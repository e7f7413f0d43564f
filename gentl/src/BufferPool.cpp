#include "BufferPool.h"

#include "GenTLError.h"
#include "HandleRegistry.h"

#include <algorithm>

namespace Orvan {
namespace Producer {

using Place = StreamBuffer::Place;

BufferPool::BufferPool() = default;
BufferPool::~BufferPool() = default;

void* BufferPool::Announce(uint8_t* memory, size_t size, void* userPointer, bool ownMemory) {
    auto buffer = std::make_unique<StreamBuffer>();
    buffer->handle = HandleRegistry::Instance().NewHandleValue();
    buffer->base = memory;
    buffer->size = size;
    buffer->userPointer = userPointer;
    if (ownMemory)
        buffer->ownMemory.reset(memory);
    void* handle = buffer->handle;
    std::lock_guard<std::mutex> lock(m_mutex);
    m_buffers.emplace(handle, std::move(buffer));
    m_order.push_back(handle);
    return handle;
}

void BufferPool::Revoke(void* handle, void** memory, void** userPointer) {
    std::unique_ptr<StreamBuffer> revoked; // producer memory is freed outside the lock
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        StreamBuffer& buffer = Find(handle);
        if (buffer.place != Place::Outside)
            throw GenTLError(GenTL::GC_ERR_BUSY,
                             "The buffer is queued or being filled; flush or stop first");
        auto it = m_buffers.find(handle);
        revoked = std::move(it->second);
        m_buffers.erase(it);
        m_order.erase(std::find(m_order.begin(), m_order.end(), handle));
    }
    if (memory)
        *memory = revoked->ownMemory ? nullptr : revoked->base;
    if (userPointer)
        *userPointer = revoked->userPointer;
}

void BufferPool::Queue(void* handle) {
    std::lock_guard<std::mutex> lock(m_mutex);
    StreamBuffer& buffer = Find(handle);
    if (buffer.place != Place::Outside)
        throw GenTLError(GenTL::GC_ERR_BUSY, "The buffer is already queued or being filled");
    buffer.place = Place::Input;
    buffer.newData = false;
    m_input.push_back(&buffer);
}

void BufferPool::MoveAll(std::deque<StreamBuffer*>& from, std::deque<StreamBuffer*>& to,
                         Place place) {
    for (StreamBuffer* buffer : from) {
        buffer->place = place;
        to.push_back(buffer);
    }
    from.clear();
}

void BufferPool::OutsideToInput() {
    for (void* handle : m_order) {
        StreamBuffer& buffer = *m_buffers.at(handle);
        if (buffer.place == Place::Outside) {
            buffer.place = Place::Input;
            buffer.newData = false;
            m_input.push_back(&buffer);
        }
    }
}

void BufferPool::Flush(GenTL::ACQ_QUEUE_TYPE operation) {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::deque<StreamBuffer*> outside;
    switch (operation) {
    case GenTL::ACQ_QUEUE_INPUT_TO_OUTPUT:
        for (StreamBuffer* buffer : m_input)
            buffer->newData = false;
        MoveAll(m_input, m_output, Place::Output);
        if (m_gate.HasWaiters())
            m_wake.notify_all();
        break;
    case GenTL::ACQ_QUEUE_OUTPUT_DISCARD:
        MoveAll(m_output, outside, Place::Outside);
        break;
    case GenTL::ACQ_QUEUE_ALL_TO_INPUT:
        MoveAll(m_output, m_input, Place::Input);
        OutsideToInput();
        break;
    case GenTL::ACQ_QUEUE_UNQUEUED_TO_INPUT:
        OutsideToInput();
        break;
    case GenTL::ACQ_QUEUE_ALL_DISCARD:
        MoveAll(m_input, outside, Place::Outside);
        MoveAll(m_output, outside, Place::Outside);
        break;
    default:
        throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER, "Unknown flush operation");
    }
}

void* BufferPool::BufferAt(uint32_t index) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (index >= m_order.size())
        throw GenTLError(GenTL::GC_ERR_INVALID_INDEX,
                         "Only " + std::to_string(m_order.size()) + " buffers are announced");
    return m_order[index];
}

void BufferPool::Start(uint64_t frameLimit) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_acquiring)
        throw GenTLError(GenTL::GC_ERR_RESOURCE_IN_USE, "Acquisition is already running");
    m_acquiring = true;
    m_frameLimit = frameLimit == 0 ? GENTL_INFINITE : frameLimit;
    m_counters = Counters();
    m_leaderPending = false;
}

void BufferPool::Stop() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_acquiring = false;
    // The camera has returned from its last call; whatever it still held goes back to the front
    // of the input pool rather than being lost.
    for (StreamBuffer* buffer : m_filling) {
        buffer->place = Place::Input;
        m_input.push_front(buffer);
    }
    m_filling.clear();
    m_gate.AbortAll(m_wake);
    m_leaderGate.AbortAll(m_leaderWake);
}

bool BufferPool::IsAcquiring() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_acquiring;
}

void BufferPool::WaitDelivered(GenTL::EVENT_NEW_BUFFER_DATA& record, uint64_t timeoutMs) {
    std::unique_lock<std::mutex> lock(m_mutex);
    ThrowUnlessReady(m_gate.Wait(lock, m_wake, timeoutMs, [this] { return !m_output.empty(); }));
    StreamBuffer* buffer = m_output.front();
    m_output.pop_front();
    buffer->place = Place::Outside;
    record.BufferHandle = buffer->handle;
    record.pUserPointer = buffer->userPointer;
}

void BufferPool::KillWait() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_gate.Kill(m_wake);
}

void BufferPool::AbortWaits() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_gate.AbortAll(m_wake);
}

size_t BufferPool::OutputCount() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_output.size();
}

uint64_t BufferPool::DeliveredCount() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_counters.delivered;
}

bool BufferPool::Acquire(FillSlot& slot) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_acquiring || m_counters.delivered >= m_frameLimit)
        return false;
    ++m_counters.started;
    StreamBuffer* buffer = nullptr;
    if (!m_input.empty()) {
        buffer = m_input.front();
        m_input.pop_front();
    } else if (m_mode == HandlingMode::OldestFirstOverwrite && !m_output.empty()) {
        // The oldest undelivered frame is overwritten: that frame counts as lost.
        buffer = m_output.front();
        m_output.pop_front();
        ++m_counters.lost;
    } else {
        return false;
    }
    buffer->place = Place::Filling;
    m_filling.push_back(buffer);
    slot.data = buffer->base;
    slot.size = buffer->size;
    slot.token = buffer;
    return true;
}

StreamBuffer* BufferPool::TakeFromCamera(const FillSlot& slot) {
    // The token is only trusted if this pool handed it out and has not taken it back.
    auto it = std::find(m_filling.begin(), m_filling.end(), slot.token);
    if (it == m_filling.end())
        return nullptr;
    StreamBuffer* buffer = *it;
    m_filling.erase(it);
    return buffer;
}

void BufferPool::MoveToOutput(StreamBuffer& buffer) {
    if (m_mode == HandlingMode::NewestOnly) {
        // Only the newest frame waits for the consumer; older ones are refilled.
        MoveAll(m_output, m_input, Place::Input);
    }
    buffer.place = Place::Output;
    m_output.push_back(&buffer);
    if (m_gate.HasWaiters())
        m_wake.notify_one();
}

void BufferPool::Deliver(const FillSlot& slot, const FrameInfo& info) {
    std::lock_guard<std::mutex> lock(m_mutex);
    StreamBuffer* buffer = TakeFromCamera(slot);
    if (!buffer)
        return;
    buffer->frame = info;
    buffer->newData = true;
    ++m_counters.delivered;
    if (info.incomplete)
        ++m_counters.incomplete;
    MoveToOutput(*buffer);
}

void BufferPool::Return(const FillSlot& slot) {
    std::lock_guard<std::mutex> lock(m_mutex);
    StreamBuffer* buffer = TakeFromCamera(slot);
    if (!buffer)
        return;
    buffer->place = Place::Input;
    m_input.push_front(buffer);
}

void BufferPool::CountLost() {
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_counters.lost;
}

void BufferPool::SignalLeader() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_leaderPending = true;
    if (m_leaderGate.HasWaiters())
        m_leaderWake.notify_all();
}

void BufferPool::WaitLeader(uint64_t timeoutMs) {
    std::unique_lock<std::mutex> lock(m_mutex);
    WaitGate::Result result =
        m_leaderGate.Wait(lock, m_leaderWake, timeoutMs, [this] { return m_leaderPending; });
    if (result == WaitGate::Result::Timeout)
        throw GenTLError(GenTL::GC_ERR_TIMEOUT, "No frame started within the timeout");
    ThrowUnlessReady(result);
    m_leaderPending = false;
}

void BufferPool::ResetLeader() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_leaderPending = false;
}

void BufferPool::SetHandlingMode(HandlingMode mode) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_mode = mode;
}

BufferPool::HandlingMode BufferPool::GetHandlingMode() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_mode;
}

BufferPool::Counters BufferPool::GetCounters() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_counters;
}

size_t BufferPool::AnnouncedCount() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_order.size();
}

size_t BufferPool::InputCount() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_input.size();
}

StreamBuffer& BufferPool::Find(void* handle) const {
    auto it = m_buffers.find(handle);
    if (it == m_buffers.end())
        throw GenTLError(GenTL::GC_ERR_INVALID_HANDLE, "Not a buffer of this data stream");
    return *it->second;
}

} // namespace Producer
} // namespace Orvan
