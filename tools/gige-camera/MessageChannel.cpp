#include "MessageChannel.h"

#include "GvcpServerCodec.h"
#include "gige/BigEndian.h"
#include "gige/GevProtocol.h"

#include <chrono>

using Orvan::Gev::Get16;

namespace Orvan {
namespace Emulator {

namespace {

// Events come a few per frame; a host that stops acknowledging must not make the queue grow
// without bound.
constexpr size_t kMaxQueued = 256;

} // namespace

MessageChannel::~MessageChannel() {
    Close();
}

bool MessageChannel::Open(uint32_t sourceIp) {
    Close();
    if (!m_socket.Bind({sourceIp, 0}))
        return false;
    m_stopping = false;
    m_thread = std::thread([this] { Run(); });
    return true;
}

void MessageChannel::Close() {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
        m_queue.clear();
        m_destination = {};
    }
    m_wake.notify_all();
    if (m_thread.joinable())
        m_thread.join();
    m_socket.Close();
}

void MessageChannel::Configure(const Endpoint& destination, uint32_t timeoutMs,
                               uint32_t retryCount) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_destination = destination;
    m_timeoutMs = timeoutMs;
    m_retryCount = retryCount;
}

MessageChannel::Counters MessageChannel::Statistics() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_counters;
}

void MessageChannel::DeliverRemoteEvent(const void* data, size_t size) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_destination.port == 0 || m_stopping || m_queue.size() >= kMaxQueued) {
            m_counters.dropped++;
            return;
        }
        m_queue.emplace_back(bytes, bytes + size);
    }
    m_wake.notify_all();
}

void MessageChannel::Run() {
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_stopping || !m_queue.empty(); });
        if (m_stopping)
            return;
        std::vector<uint8_t> message = std::move(m_queue.front());
        m_queue.pop_front();
        if (++m_requestId == 0) // request id 0 is never used
            m_requestId = 1;
        if (!PrepareEventMessage(message, m_requestId))
            continue;
        lock.unlock();
        const bool acknowledged = SendUntilAcknowledged(message);
        lock.lock();
        (acknowledged ? m_counters.acknowledged : m_counters.abandoned)++;
    }
}

bool MessageChannel::SendUntilAcknowledged(std::vector<uint8_t>& message) {
    const uint16_t requestId = Get16(message.data() + 6);
    uint8_t answer[Gev::kGvcpMaxMessage];
    for (uint32_t attempt = 0;; ++attempt) {
        Endpoint destination;
        uint32_t timeoutMs = 0;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            if (m_stopping || m_destination.port == 0 || attempt > m_retryCount)
                return false;
            destination = m_destination;
            timeoutMs = m_timeoutMs;
            m_counters.sent++;
        }
        m_socket.SendTo(destination, message.data(), message.size());
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
        for (;;) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0)
                break;
            Endpoint from;
            const long size = m_socket.ReceiveFrom(answer, sizeof answer, from, int(left.count()));
            if (size >= long(Gev::kGvcpHeaderSize) && Get16(answer + 2) == Gev::EventDataAck &&
                Get16(answer + 6) == requestId)
                return true;
        }
    }
}

} // namespace Emulator
} // namespace Orvan
