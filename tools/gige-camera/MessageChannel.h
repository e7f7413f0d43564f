// The camera's message channel: the virtual camera's events, sent as EVENTDATA commands to the
// host that configured the channel, each resent until acknowledged or out of retries.
#ifndef ORVAN_TOOLS_GIGE_CAMERA_MESSAGECHANNEL_H
#define ORVAN_TOOLS_GIGE_CAMERA_MESSAGECHANNEL_H

#include "RemoteDevice.h"
#include "UdpSocket.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace Orvan {
namespace Emulator {

class MessageChannel : public Producer::EventSink {
public:
    struct Counters {
        uint64_t sent = 0; // transmissions, retries included
        uint64_t acknowledged = 0;
        uint64_t abandoned = 0; // retries exhausted
        uint64_t dropped = 0;   // no destination, or the queue overflowed
    };

    MessageChannel() = default;
    ~MessageChannel() override;

    // Binds the channel's source socket on the camera's address and starts its thread.
    bool Open(uint32_t sourceIp);
    void Close();
    uint16_t SourcePort() const { return m_socket.Local().port; }

    // Destination port 0 closes the channel: events are dropped.
    void Configure(const Endpoint& destination, uint32_t timeoutMs, uint32_t retryCount);
    Counters Statistics() const;

    void DeliverRemoteEvent(const void* data, size_t size) override;

private:
    void Run();
    bool SendUntilAcknowledged(std::vector<uint8_t>& message);

    UdpSocket m_socket;
    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::vector<uint8_t>> m_queue;
    Endpoint m_destination;
    uint32_t m_timeoutMs = 300;
    uint32_t m_retryCount = 3;
    uint16_t m_requestId = 0;
    Counters m_counters;
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace Emulator
} // namespace Orvan

#endif
