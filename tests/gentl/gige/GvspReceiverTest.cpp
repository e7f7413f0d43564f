#include "gige/GvspReceiver.h"
#include "GvspFakeSink.h"
#include "GvspTestPackets.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <map>
#include <mutex>
#include <thread>

namespace {

using namespace Orvan::Producer;
using namespace std::chrono_literals;

constexpr uint32_t kLoopback = 0x7F000001;
constexpr size_t kStride = 1000;

// Plays the camera's stream channel: keeps what it sent so that it can send it again.
class Sender {
public:
    explicit Sender(uint16_t port) : fd_(socket(AF_INET, SOCK_DGRAM, 0)) {
        to_.sin_family = AF_INET;
        to_.sin_port = htons(port);
        to_.sin_addr.s_addr = htonl(kLoopback);
    }
    ~Sender() { close(fd_); }

    void Send(const GvspTest::Block& block, uint32_t skipPacket = UINT32_MAX) {
        const auto datagrams = GvspTest::Datagrams(block);
        std::lock_guard<std::mutex> lock(mutex_);
        sent_[block.id] = datagrams;
        for (uint32_t id = 0; id < datagrams.size(); ++id)
            if (id != skipPacket)
                Transmit(datagrams[id]);
    }
    void Resend(uint64_t block, uint32_t first, uint32_t last) {
        std::lock_guard<std::mutex> lock(mutex_);
        const auto& datagrams = sent_[block];
        for (uint32_t id = first; id <= last && id < datagrams.size(); ++id)
            Transmit(datagrams[id]);
    }

private:
    void Transmit(const GvspTest::Datagram& d) {
        sendto(fd_, d.data(), d.size(), 0, reinterpret_cast<const sockaddr*>(&to_), sizeof to_);
    }

    int fd_;
    sockaddr_in to_{};
    std::mutex mutex_;
    std::map<uint64_t, std::vector<GvspTest::Datagram>> sent_;
};

GvspReceiver::Config MakeConfig() {
    GvspReceiver::Config config;
    config.packetSize = static_cast<uint32_t>(kStride + 28 + 8);
    config.tickFrequency = 1000;
    return config;
}

GvspTest::Block MakeBlock(uint64_t id) {
    GvspTest::Block block;
    block.id = id;
    block.stride = kStride;
    block.timestamp = id;
    block.width = 100;
    block.height = 75;
    block.data = GvspTest::Pattern(7500, static_cast<uint8_t>(id));
    return block;
}

TEST(GvspReceiver, StreamsOverLoopbackAndRecoversLostPacketsByResend) {
    GvspTest::FakeSink sink(8, 8000);
    GvspReceiver receiver(kLoopback);
    ASSERT_NE(receiver.Port(), 0);
    Sender sender(receiver.Port());
    ASSERT_EQ(receiver.Start(&sink, MakeConfig(),
                             [&](uint64_t block, uint32_t first, uint32_t last) {
                                 sender.Resend(block, first, last);
                             }),
              GenTL::GC_ERR_SUCCESS);
    constexpr uint64_t kFrames = 30;
    for (uint64_t id = 1; id <= kFrames; ++id) {
        // Every third block loses a payload packet, every tenth its trailer.
        sender.Send(MakeBlock(id), id % 10 == 0 ? 9 : id % 3 == 0 ? 4 : UINT32_MAX);
        std::this_thread::sleep_for(1ms);
    }
    sender.Send(MakeBlock(kFrames + 1)); // lets the last lost trailer be noticed
    ASSERT_TRUE(sink.WaitFor(kFrames, 10s));
    receiver.Stop();
    const auto frames = sink.Frames();
    for (uint64_t i = 0; i < kFrames; ++i) {
        EXPECT_EQ(frames[i].info.frameId, i + 1);
        EXPECT_FALSE(frames[i].info.incomplete) << i;
        EXPECT_EQ(frames[i].info.timestampNs, (i + 1) * 1000000);
        EXPECT_EQ(frames[i].data, MakeBlock(i + 1).data) << i;
    }
    const auto stats = receiver.Statistics();
    EXPECT_GE(stats.packetsRecovered, 12u);
    EXPECT_GE(stats.framesDelivered, kFrames);
    EXPECT_EQ(stats.framesIncomplete, 0u);
}

TEST(GvspReceiver, StopReturnsBuffersOfUnfinishedFramesAndStartsAgain) {
    GvspTest::FakeSink sink(2, 8000);
    GvspReceiver receiver(kLoopback);
    Sender sender(receiver.Port());
    EXPECT_EQ(receiver.Start(nullptr, MakeConfig(), {}), GenTL::GC_ERR_INVALID_PARAMETER);
    auto config = MakeConfig();
    config.resend.frameTimeoutUs = 60000000; // only Stop ends the frame
    for (int run = 1; run <= 2; ++run) {
        ASSERT_EQ(receiver.Start(&sink, config, {}), GenTL::GC_ERR_SUCCESS);
        EXPECT_EQ(receiver.Start(&sink, config, {}), GenTL::GC_ERR_RESOURCE_IN_USE);
        sender.Send(MakeBlock(run), 9); // never finishes
        const auto deadline = std::chrono::steady_clock::now() + 5s;
        while (receiver.Statistics().packetsReceived < 9u * run &&
               std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(1ms);
        receiver.Stop();
        EXPECT_EQ(sink.Returned(), static_cast<size_t>(run));
        EXPECT_EQ(sink.Queued(), 2u);
    }
    EXPECT_EQ(receiver.Statistics().packetsReceived, 18u);
}

} // namespace
