// The message channel: set up through the camera's registers, every event acknowledged,
// handed on whole, and a repeated message (its acknowledge was lost) delivered once.
#include "gige/GigeMessageChannel.h"
#include "ScriptedCamera.h"
#include "gige/GevProtocol.h"

#include <gtest/gtest.h>

#include <map>
#include <mutex>

using namespace Orvan::Producer;
using namespace GigeTest;
namespace Gev = Orvan::Gev;

namespace {

class RecordingSink : public EventSink {
public:
    void DeliverRemoteEvent(const void* data, size_t size) override {
        std::lock_guard<std::mutex> lock(m_mutex);
        auto bytes = static_cast<const uint8_t*>(data);
        m_events.emplace_back(bytes, bytes + size);
    }
    std::vector<std::vector<uint8_t>> Events() {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_events;
    }

private:
    std::mutex m_mutex;
    std::vector<std::vector<uint8_t>> m_events;
};

uint32_t Word(const std::vector<uint8_t>& bytes, size_t at) {
    return uint32_t(bytes[at]) << 24 | uint32_t(bytes[at + 1]) << 16 |
           uint32_t(bytes[at + 2]) << 8 | bytes[at + 3];
}

// An EVENTDATA command asking for an acknowledge: one standard event with 4 data bytes.
std::vector<uint8_t> EventData(uint16_t requestId, uint16_t eventId) {
    std::vector<uint8_t> payload = {0, 0, uint8_t(eventId >> 8), uint8_t(eventId), 0xFF, 0xFF,
                                    0, 1};
    payload.resize(payload.size() + 8, 0); // timestamp
    payload.insert(payload.end(), {1, 2, 3, 4});
    return Datagram({0x42, Gev::kFlagAckRequired, 0x00, 0xC2, 0, uint8_t(payload.size()),
                     uint8_t(requestId >> 8), uint8_t(requestId)},
                    payload);
}

} // namespace

TEST(GigeMessageChannel, AcknowledgesAndDeliversEachEventOnce) {
    std::mutex mutex;
    std::map<uint32_t, uint32_t> registers;
    ScriptedCamera camera([&](const Command& c) -> Replies {
        std::lock_guard<std::mutex> lock(mutex);
        registers[Word(c.payload, 0)] = Word(c.payload, 4);
        return {{Ack(0, Gev::WriteRegAck, c.id, {0, 0, 0, 1})}};
    });
    auto control = std::make_shared<GvcpChannel>(kLoopback, camera.Port(), kLoopback,
                                                 GvcpChannel::Options{300, 2});
    RecordingSink sink;
    GigeMessageChannel messages(kLoopback);
    ASSERT_EQ(messages.Start(control, &sink), GenTL::GC_ERR_SUCCESS);
    {
        std::lock_guard<std::mutex> lock(mutex);
        EXPECT_EQ(registers[Gev::Reg::MessageChannelDestination], kLoopback);
        EXPECT_EQ(registers[Gev::Reg::MessageChannelPort], messages.Port());
    }

    // The camera's side: sends, and waits for the acknowledge of each message.
    int sender = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in target{};
    target.sin_family = AF_INET;
    target.sin_addr.s_addr = htonl(kLoopback);
    target.sin_port = htons(messages.Port());
    auto send = [&](const std::vector<uint8_t>& message) {
        sendto(sender, message.data(), message.size(), 0, reinterpret_cast<sockaddr*>(&target),
               sizeof target);
        pollfd waiting{sender, POLLIN, 0};
        std::vector<uint8_t> ack(64);
        if (poll(&waiting, 1, 5000) <= 0)
            return std::vector<uint8_t>{};
        ack.resize(
            static_cast<size_t>(std::max<ssize_t>(0, recv(sender, ack.data(), ack.size(), 0))));
        return ack;
    };
    const auto first = EventData(7, 0x9001);
    EXPECT_EQ(send(first), Ack(0, Gev::EventDataAck, 7, {}));
    EXPECT_EQ(send(first), Ack(0, Gev::EventDataAck, 7, {})) << "a repeat is acknowledged too";
    EXPECT_EQ(send(EventData(8, 0x9002)), Ack(0, Gev::EventDataAck, 8, {}));
    close(sender);

    messages.Stop();
    const auto events = sink.Events();
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0], first) << "the whole message, header included";
    EXPECT_EQ(events[1][11], 0x02);
    std::lock_guard<std::mutex> lock(mutex);
    EXPECT_EQ(registers[Gev::Reg::MessageChannelPort], 0u) << "Stop switches the channel off";
}
