// The control channel against a scripted camera on loopback: what it does when answers are
// late, lost, stray or postponed, and how it splits large memory transfers.
#include "gige/GvcpChannel.h"
#include "ScriptedCamera.h"
#include "gige/GevProtocol.h"
#include "gige/GvcpCodec.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>

using namespace Orvan::Producer;
using namespace GigeTest;
namespace Gev = Orvan::Gev;

namespace {

std::vector<uint8_t> Value(uint32_t v) {
    return {uint8_t(v >> 24), uint8_t(v >> 16), uint8_t(v >> 8), uint8_t(v)};
}

// A generous timeout: the machine is shared, and a silent camera is the only thing waited for.
GvcpChannel::Options Patient() {
    return {300, 2};
}

} // namespace

TEST(GvcpChannel, IgnoresStrayAnswersAndWaitsOutPendingOnes) {
    ScriptedCamera camera([](const Command& c) -> Replies {
        return {{Ack(0, Gev::ReadRegAck, uint16_t(c.id - 1), Value(0xBAD))}, // late answer
                {{0x42, 0x01, 0x00}},                                        // garbage
                {Ack(0, Gev::PendingAck, c.id, {0, 0, 0x03, 0xE8})},
                {Ack(0, Gev::ReadRegAck, c.id, Value(0x600D))}};
    });
    GvcpChannel channel(kLoopback, camera.Port(), kLoopback, Patient());
    uint32_t value = 0;
    ASSERT_EQ(channel.ReadRegister(0x0A00, value), GenTL::GC_ERR_SUCCESS)
        << channel.LastErrorText();
    EXPECT_EQ(value, 0x600Du);
}

TEST(GvcpChannel, PendingAckExtendsTheWaitBeyondTheTimeout) {
    ScriptedCamera camera([](const Command& c) -> Replies {
        // Asks for 2 s, then answers after 1.2 s: far beyond the single 300 ms try.
        return {{Ack(0, Gev::PendingAck, c.id, {0, 0, 0x07, 0xD0})},
                {Ack(0, Gev::WriteRegAck, c.id, {0, 0, 0, 1}), 1200}};
    });
    GvcpChannel channel(kLoopback, camera.Port(), kLoopback, {300, 0});
    EXPECT_EQ(channel.WriteRegister(0x0A00, 2), GenTL::GC_ERR_SUCCESS) << channel.LastErrorText();
    EXPECT_EQ(camera.Commands(), 1) << "a postponed command is not sent again";
}

TEST(GvcpChannel, RetriesWhenAnAnswerIsLostAndReportsSilence) {
    std::atomic<int> seen{0};
    ScriptedCamera camera([&](const Command& c) -> Replies {
        if (seen++ == 0)
            return {}; // the first answer is lost
        return {{Ack(0, Gev::WriteRegAck, c.id, {0, 0, 0, 1})}};
    });
    GvcpChannel channel(kLoopback, camera.Port(), kLoopback, Patient());
    EXPECT_EQ(channel.WriteRegister(0x0A00, 2), GenTL::GC_ERR_SUCCESS) << channel.LastErrorText();
    EXPECT_EQ(seen, 2);

    ScriptedCamera silent([](const Command&) { return Replies{}; });
    GvcpChannel lost(kLoopback, silent.Port(), kLoopback, {100, 2});
    uint32_t value = 0;
    EXPECT_EQ(lost.ReadRegister(0, value), GenTL::GC_ERR_TIMEOUT);
    EXPECT_EQ(silent.Commands(), 3);
    EXPECT_NE(lost.LastErrorText().find("did not answer"), std::string::npos);
}

TEST(GvcpChannel, CameraStatusBecomesTheError) {
    ScriptedCamera camera([](const Command& c) -> Replies {
        return {{Ack(Gev::AccessDenied, Gev::WriteRegAck, c.id, {0, 0, 0, 0})}};
    });
    GvcpChannel channel(kLoopback, camera.Port(), kLoopback, Patient());
    EXPECT_EQ(channel.WriteRegister(0x0A00, 2), GenTL::GC_ERR_ACCESS_DENIED);
    EXPECT_NE(channel.LastErrorText().find("another application"), std::string::npos);
}

TEST(GvcpChannel, LargeUnalignedMemoryTransfersAreSplit) {
    std::vector<uint8_t> memory(4096);
    for (size_t i = 0; i < memory.size(); ++i)
        memory[i] = uint8_t(i * 13);
    std::vector<uint16_t> ids;
    // The camera's thread writes what the test reads after the answer arrived; the sanitizer
    // does not see through the socket, the mutex makes the order explicit.
    std::mutex mutex;
    ScriptedCamera camera([&](const Command& c) -> Replies {
        std::lock_guard<std::mutex> lock(mutex);
        ids.push_back(c.id);
        const uint32_t address = uint32_t(c.payload[0]) << 24 | uint32_t(c.payload[1]) << 16 |
                                 uint32_t(c.payload[2]) << 8 | c.payload[3];
        if (c.code == Gev::ReadMemCmd) {
            const size_t count = size_t(c.payload[6]) << 8 | c.payload[7];
            if (count > Gev::kReadMemMax || count % 4 != 0 || address % 4 != 0)
                return {{Ack(Gev::InvalidParameter, Gev::ReadMemAck, c.id, {})}};
            std::vector<uint8_t> payload(c.payload.begin(), c.payload.begin() + 4);
            payload.insert(payload.end(), memory.begin() + address,
                           memory.begin() + address + count);
            return {{Ack(0, Gev::ReadMemAck, c.id, payload)}};
        }
        const size_t count = c.payload.size() - 4;
        std::copy(c.payload.begin() + 4, c.payload.end(), memory.begin() + address);
        return {{Ack(0, Gev::WriteMemAck, c.id, {0, 0, uint8_t(count >> 8), uint8_t(count)})}};
    });
    GvcpChannel channel(kLoopback, camera.Port(), kLoopback, Patient());
    std::vector<uint8_t> got(1500);
    ASSERT_EQ(channel.ReadMemory(3, got.data(), got.size()), GenTL::GC_ERR_SUCCESS)
        << channel.LastErrorText();
    std::unique_lock<std::mutex> lock(mutex);
    EXPECT_TRUE(std::equal(got.begin(), got.end(), memory.begin() + 3));
    EXPECT_EQ(ids.size(), 3u) << "1504 aligned bytes in pieces of at most 536";
    for (size_t i = 1; i < ids.size(); ++i)
        EXPECT_EQ(ids[i], uint16_t(ids[i - 1] + 1)) << "request ids count up";

    const std::vector<uint8_t> text = {'h', 'e', 'l', 'l', 'o'};
    const std::vector<uint8_t> before(memory.begin() + 1000, memory.begin() + 1010);
    lock.unlock();
    ASSERT_EQ(channel.WriteMemory(1002, text.data(), text.size()), GenTL::GC_ERR_SUCCESS);
    lock.lock();
    EXPECT_TRUE(std::equal(text.begin(), text.end(), memory.begin() + 1002));
    EXPECT_EQ(memory[1001], before[1]) << "bytes around an unaligned write keep their value";
    EXPECT_EQ(memory[1007], before[7]);
}
