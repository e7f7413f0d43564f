#include "gige/GvspReceiver.h"
#include "GvspFakeSink.h"
#include "GvspTestPackets.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <thread>

namespace {

using namespace Orvan::Producer;
using namespace std::chrono_literals;

constexpr uint32_t kLoopback = 0x7F000001;
constexpr size_t kStride = 1000;

sockaddr_in Endpoint(uint32_t ip, uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(ip);
    return address;
}

// Plays the camera's stream channel: keeps what it sent so that it can send it again.
class Sender {
public:
    explicit Sender(uint16_t port) : fd_(socket(AF_INET, SOCK_DGRAM, 0)) {
        to_ = Endpoint(kLoopback, port);
    }
    ~Sender() { close(fd_); }

    void Send(const GvspTest::Block& block, uint32_t skipPacket = UINT32_MAX) {
        const auto datagrams = GvspTest::Datagrams(block);
        std::lock_guard<std::mutex> lock(mutex_);
        sent_[block.id] = datagrams;
        for (uint32_t id = 0; id < datagrams.size(); ++id)
            if (id != skipPacket)
                Transmit(datagrams[id], to_);
    }
    void Resend(uint64_t block, uint32_t first, uint32_t last) {
        std::lock_guard<std::mutex> lock(mutex_);
        const auto& datagrams = sent_[block];
        for (uint32_t id = first; id <= last && id < datagrams.size(); ++id)
            Transmit(datagrams[id], to_);
    }
    // The same datagrams to where the stream is not: another port, another address.
    void SendElsewhere(const GvspTest::Block& block, const sockaddr_in& to) {
        for (const auto& datagram : GvspTest::Datagrams(block))
            Transmit(datagram, to);
    }

private:
    void Transmit(const GvspTest::Datagram& d, const sockaddr_in& to) {
        sendto(fd_, d.data(), d.size(), 0, reinterpret_cast<const sockaddr*>(&to), sizeof to);
    }

    int fd_;
    sockaddr_in to_{};
    std::mutex mutex_;
    std::map<uint64_t, std::vector<GvspTest::Datagram>> sent_;
};

GvspReceiver::Config ConfigFor(ReceivePath path) {
    GvspReceiver::Config config;
    config.packetSize = static_cast<uint32_t>(kStride + 28 + 8);
    config.tickFrequency = 1000;
    config.receive.path = path;
    return config;
}

std::string PathName(const ::testing::TestParamInfo<ReceivePath>& info) {
    static const char* const names[] = {"Auto", "Socket", "PacketRing", "Xdp"};
    return names[static_cast<int>(info.param)];
}

// Every receive path runs the same cases; the packet ring needs CAP_NET_RAW, and Auto takes
// it whenever it may.
class GvspReceiverPath : public ::testing::TestWithParam<ReceivePath> {
protected:
    void SetUp() override {
        if (GetParam() == ReceivePath::PacketRing && geteuid() != 0)
            GTEST_SKIP() << "the packet ring needs CAP_NET_RAW";
        if (GetParam() == ReceivePath::Xdp) {
            GvspTest::FakeSink sink(1, 8000);
            GvspReceiver probe(kLoopback);
            if (probe.Start(&sink, ConfigFor(ReceivePath::Xdp), {}) != GenTL::GC_ERR_SUCCESS)
                GTEST_SKIP() << "no AF_XDP here (it needs root, libxdp and an XDP-capable kernel)";
        }
    }
    ReceivePath Expected() const {
        if (GetParam() != ReceivePath::Auto)
            return GetParam();
        return geteuid() == 0 ? ReceivePath::PacketRing : ReceivePath::Socket;
    }
};

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

TEST_P(GvspReceiverPath, StreamsOverLoopbackAndRecoversLostPacketsByResend) {
    GvspTest::FakeSink sink(8, 8000);
    GvspReceiver receiver(kLoopback);
    ASSERT_NE(receiver.Port(), 0);
    Sender sender(receiver.Port());
    ASSERT_EQ(receiver.Start(&sink, ConfigFor(GetParam()),
                             [&](uint64_t block, uint32_t first, uint32_t last) {
                                 sender.Resend(block, first, last);
                             }),
              GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(receiver.InUse().path, Expected());
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

// Also counts every packet exactly once: none of those sent elsewhere, and on loopback, where a
// packet ring sees each packet leave and arrive, only the arriving one.
TEST_P(GvspReceiverPath, StopReturnsBuffersOfUnfinishedFramesAndStartsAgain) {
    GvspTest::FakeSink sink(2, 8000);
    GvspReceiver receiver(kLoopback);
    Sender sender(receiver.Port());
    const int decoy = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in decoyAddress = Endpoint(kLoopback, 0);
    socklen_t length = sizeof decoyAddress;
    ASSERT_EQ(bind(decoy, reinterpret_cast<sockaddr*>(&decoyAddress), length), 0);
    getsockname(decoy, reinterpret_cast<sockaddr*>(&decoyAddress), &length);
    EXPECT_EQ(receiver.Start(nullptr, ConfigFor(GetParam()), {}), GenTL::GC_ERR_INVALID_PARAMETER);
    auto config = ConfigFor(GetParam());
    config.resend.frameTimeoutUs = 60000000; // only Stop ends the frame
    for (int run = 1; run <= 2; ++run) {
        ASSERT_EQ(receiver.Start(&sink, config, {}), GenTL::GC_ERR_SUCCESS);
        EXPECT_EQ(receiver.Start(&sink, config, {}), GenTL::GC_ERR_RESOURCE_IN_USE);
        sender.SendElsewhere(MakeBlock(run + 2), decoyAddress);
        sender.SendElsewhere(MakeBlock(run + 4), Endpoint(kLoopback + 1, receiver.Port()));
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
    close(decoy);
}

// The thread runs where it was put, at the priority the receiver says it got.
TEST(GvspReceiver, PlacesItsThreadOnTheCoreAskedFor) {
    struct Observer : GvspTest::FakeSink {
        Observer() : FakeSink(2, 8000) {}
        void Deliver(const FillSlot& slot, const FrameInfo& info) override {
            core = sched_getcpu();
            policy = sched_getscheduler(0);
            FakeSink::Deliver(slot, info);
        }
        std::atomic<int> core{-1};
        std::atomic<int> policy{-1};
    } sink;
    GvspReceiver receiver(kLoopback);
    Sender sender(receiver.Port());
    auto config = ConfigFor(ReceivePath::Auto);
    cpu_set_t allowed;
    ASSERT_EQ(sched_getaffinity(0, sizeof allowed, &allowed), 0);
    for (int core = 0; core < CPU_SETSIZE; ++core)
        if (CPU_ISSET(core, &allowed))
            config.receive.core = core; // the last one this process may use
    config.receive.priority = ThreadPriority::RealTime;
    ASSERT_EQ(receiver.Start(&sink, config, {}), GenTL::GC_ERR_SUCCESS);
    sender.Send(MakeBlock(1));
    ASSERT_TRUE(sink.WaitFor(1, 5s));
    receiver.Stop();
    const ReceiveSettings placed = receiver.InUse();
    EXPECT_EQ(placed.core, config.receive.core);
    EXPECT_EQ(sink.core.load(), config.receive.core);
    EXPECT_EQ(sink.policy.load() == SCHED_FIFO, placed.priority == ThreadPriority::RealTime);
}

INSTANTIATE_TEST_SUITE_P(EveryPath, GvspReceiverPath,
                         ::testing::Values(ReceivePath::Socket, ReceivePath::PacketRing,
                                           ReceivePath::Xdp, ReceivePath::Auto),
                         PathName);

} // namespace
