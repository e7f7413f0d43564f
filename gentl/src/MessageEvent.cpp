#include "MessageEvent.h"

#include "GenTLError.h"

#include <cstring>

namespace Orvan {
namespace Producer {

void MessageEvent::Push(const void* data, size_t size) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    std::vector<uint8_t> message(bytes, bytes + std::min(size, m_maxDataSize));
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_queue.size() == kQueueLimit)
        m_queue.pop_front();
    m_queue.push_back(std::move(message));
    ++m_fired;
    if (m_gate.HasWaiters())
        m_wake.notify_all();
}

void MessageEvent::GetData(void* buffer, size_t* size, uint64_t timeoutMs) {
    RequirePointer(buffer, "buffer");
    RequirePointer(size, "size");
    std::unique_lock<std::mutex> lock(m_mutex);
    ThrowUnlessReady(m_gate.Wait(lock, m_wake, timeoutMs, [this] { return !m_queue.empty(); }));
    const std::vector<uint8_t>& message = m_queue.front();
    if (*size < message.size()) {
        *size = message.size();
        throw GenTLError(GenTL::GC_ERR_BUFFER_TOO_SMALL,
                         "The event data needs " + std::to_string(message.size()) + " bytes");
    }
    std::memcpy(buffer, message.data(), message.size());
    *size = message.size();
    m_queue.pop_front();
}

void MessageEvent::Flush() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_queue.clear();
}

void MessageEvent::Kill() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_gate.Kill(m_wake);
}

void MessageEvent::AbortWaits() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_gate.AbortAll(m_wake);
}

size_t MessageEvent::NumInQueue() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_queue.size();
}

uint64_t MessageEvent::NumFired() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_fired;
}

} // namespace Producer
} // namespace Orvan
