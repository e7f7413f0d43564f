// Every GVSP receive path of ours beside both of Debian's Aravis client's (its plain socket and
// its packet socket), fed the same stream of 4-megapixel Mono8 blocks in 9000-byte packets on
// loopback.
//
// The sender does as little as it can: the packets are built once, whole (Ethernet, IP, UDP,
// GVSP), in a packet socket's transmit ring, and replayed from there; per block it only rewrites
// the block id and makes one system call, with no copy from its own memory. What it cannot shed
// is the kernel's loopback delivery, which runs in its thread. Injected packets addressed to
// 127.0.0.1 count as martian outside a namespace that allows them, so the program runs in a
// network namespace of its own (which also keeps it clear of the tests' cameras); that, and the
// rings, need root.
//
// Two ways, for each receiver:
// - Live: the sender replays as fast as it goes for a fixed time while the receiver runs. On a
//   two-core machine the sender and the kernel's loopback delivery share the machine with the
//   receiver.
// - Drain: the receiving thread is held (a signal parks it) while blocks queue up in its
//   socket or ring, then it works through the backlog alone: its packet rate on one core.
//
// Orvan_PacketRing_Pinned_RealTime is our ring with its thread pinned to the last core at
// real-time priority: what the placement options buy on a busy machine, not a like-for-like
// comparison.
//
// Reported: packets and megabytes per second received, packets lost (sent, never received),
// complete frames per second, and the receiving thread's own CPU time (user and kernel) per
// gigabyte and per packet. On loopback the kernel's delivery runs in the sender's thread: for
// the ring paths (ours and Aravis's packet socket) that includes the kernel's copy into the
// ring, which on a network card's path would fall to its interrupt handling instead.
#include "RemoteDevice.h"
#include "gige/GvspReceiver.h"

#include <arv.h>

#include <arpa/inet.h>
#include <dirent.h>
#include <fcntl.h>
#include <linux/if_packet.h>
#include <net/ethernet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using Orvan::Producer::FillSlot;
using Orvan::Producer::FrameInfo;
using Orvan::Producer::GvspReceiver;
using Orvan::Producer::ReceivePath;

constexpr uint32_t kPacketSize = 9000; // IP packet
constexpr size_t kEthernetHeader = 14;
constexpr size_t kIpHeader = 20;
constexpr size_t kUdpHeader = 8;
constexpr size_t kGvspHeader = 8;
constexpr size_t kPayload = kPacketSize - kIpHeader - kUdpHeader - kGvspHeader;
constexpr uint32_t kWidth = 2048;
constexpr uint32_t kHeight = 2048;
constexpr size_t kImageBytes = size_t{kWidth} * kHeight;
constexpr size_t kDataPackets = (kImageBytes + kPayload - 1) / kPayload;
constexpr size_t kBlockPackets = kDataPackets + 2; // leader and trailer
constexpr size_t kBuffers = 8;
constexpr auto kRunTime = 3s;
constexpr int kSocketBuffer = 64 << 20;
constexpr uint32_t kLoopback = INADDR_LOOPBACK;
constexpr uint16_t kSourcePort = 20202;

void Put(uint8_t* at, uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        at[i] = static_cast<uint8_t>(value >> (8 * (bytes - 1 - i)));
}

uint16_t IpChecksum(const uint8_t* header) {
    uint32_t sum = 0;
    for (size_t i = 0; i < kIpHeader; i += 2)
        sum += uint32_t{header[i]} << 8 | header[i + 1];
    while (sum >> 16)
        sum = (sum & 0xFFFF) + (sum >> 16);
    return static_cast<uint16_t>(~sum);
}

bool WriteFile(const char* path, const char* text) {
    const int fd = open(path, O_WRONLY | O_CLOEXEC);
    const bool written = fd >= 0 && write(fd, text, std::strlen(text)) > 0;
    if (fd >= 0)
        close(fd);
    return written;
}

// A network namespace of the program's own whose loopback takes injected packets to and from
// 127.0.0.1. Entered before main, while the program has one thread: every thread and socket
// made later lives in it.
const bool kOwnLoopback = [] {
    if (geteuid() != 0 || unshare(CLONE_NEWNET) != 0)
        return false;
    const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request{};
    std::strcpy(request.ifr_name, "lo");
    request.ifr_flags = IFF_UP | IFF_LOOPBACK | IFF_RUNNING;
    const bool up = ioctl(fd, SIOCSIFFLAGS, &request) == 0;
    close(fd);
    return up && WriteFile("/proc/sys/net/ipv4/conf/lo/route_localnet", "1") &&
           WriteFile("/proc/sys/net/ipv4/conf/lo/accept_local", "1");
}();

// CPU time (user and kernel) a thread of this process has used, in seconds. Plain system calls:
// it is read while another thread may be parked anywhere, the allocator included.
double ThreadCpuSeconds(pid_t tid) {
    char path[64];
    std::snprintf(path, sizeof path, "/proc/self/task/%d/schedstat", tid);
    char text[128] = {};
    const int fd = open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return 0;
    const ssize_t length = read(fd, text, sizeof text - 1);
    close(fd);
    return length > 0 ? static_cast<double>(std::strtoull(text, nullptr, 10)) * 1e-9 : 0;
}

std::set<pid_t> Threads() {
    std::set<pid_t> threads;
    if (DIR* tasks = opendir("/proc/self/task")) {
        while (const dirent* entry = readdir(tasks))
            if (entry->d_name[0] != '.')
                threads.insert(static_cast<pid_t>(std::atoi(entry->d_name)));
        closedir(tasks);
    }
    return threads;
}

// Parks a thread in a signal handler until released: its socket or ring keeps filling.
class ThreadParking {
public:
    static void Park(pid_t tid) {
        Install();
        held_ = true;
        parked_ = false;
        syscall(SYS_tgkill, getpid(), tid, SIGUSR1);
        while (!parked_)
            std::this_thread::sleep_for(50us);
    }
    static void Release() { held_ = false; }

private:
    static void Install() {
        static const bool installed = [] {
            struct sigaction action {};
            action.sa_handler = [](int) {
                parked_ = true;
                const timespec nap{0, 50000};
                while (held_)
                    nanosleep(&nap, nullptr);
            };
            action.sa_flags = SA_RESTART;
            return sigaction(SIGUSR1, &action, nullptr) == 0;
        }();
        (void)installed;
    }
    static inline std::atomic<bool> held_{false};
    static inline std::atomic<bool> parked_{false};
};

// A camera's stream channel reduced to replaying pre-built packets from a transmit ring on
// loopback. Each ring block holds one GVSP block's packets, so a packet's slot never changes
// and only its block id is rewritten when the slot comes round again.
class PacketReplay {
public:
    explicit PacketReplay(uint16_t port) {
        fd_ = socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, 0);
        const int version = TPACKET_V2, bypass = 1;
        tpacket_req geometry{};
        geometry.tp_frame_size = kFrameSize;
        geometry.tp_block_size = kBlockSize;
        geometry.tp_block_nr = kRingBlocks;
        geometry.tp_frame_nr = kBlockPackets * kRingBlocks;
        sockaddr_ll address{};
        address.sll_family = AF_PACKET;
        address.sll_ifindex = static_cast<int>(if_nametoindex("lo"));
        if (fd_ < 0 || setsockopt(fd_, SOL_PACKET, PACKET_VERSION, &version, sizeof version) ||
            setsockopt(fd_, SOL_PACKET, PACKET_QDISC_BYPASS, &bypass, sizeof bypass) ||
            setsockopt(fd_, SOL_PACKET, PACKET_TX_RING, &geometry, sizeof geometry) ||
            bind(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address))
            return;
        void* map = mmap(nullptr, kRingBytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd_, 0);
        if (map == MAP_FAILED)
            return;
        ring_ = static_cast<uint8_t*>(map);
        for (size_t block = 0; block < kRingBlocks; ++block)
            for (size_t id = 0; id < kBlockPackets; ++id)
                Build(Frame(block, id), port, id);
    }
    ~PacketReplay() {
        Stop();
        if (ring_ != nullptr)
            munmap(ring_, kRingBytes);
        if (fd_ >= 0)
            close(fd_);
    }

    bool Ready() const { return ring_ != nullptr; }
    void Start() {
        running_ = true;
        thread_ = std::thread([this] {
            while (running_.load(std::memory_order_relaxed))
                SendBlock();
        });
    }
    void Stop() {
        running_ = false;
        if (thread_.joinable())
            thread_.join();
    }
    // Whole blocks, from the calling thread.
    void SendBlocks(size_t count) {
        for (size_t i = 0; i < count; ++i)
            SendBlock();
    }
    uint64_t PacketsSent() const { return sent_; }

private:
    static constexpr size_t kFrameSize = 9216; // header, Ethernet frame, alignment
    static constexpr size_t kDataOffset = TPACKET2_HDRLEN - sizeof(sockaddr_ll);
    static constexpr size_t kBlockSize = (kBlockPackets * kFrameSize + 4095) / 4096 * 4096;
    static constexpr size_t kRingBlocks = 8;
    static constexpr size_t kRingBytes = kBlockSize * kRingBlocks;
    static constexpr size_t kBlockIdAt = kEthernetHeader + kIpHeader + kUdpHeader + 2;

    uint8_t* Frame(size_t block, size_t id) const {
        return ring_ + block * kBlockSize + id * kFrameSize;
    }

    static void Build(uint8_t* frame, uint16_t port, size_t id) {
        const bool leader = id == 0, trailer = id == kBlockPackets - 1;
        const size_t body = leader    ? 36
                            : trailer ? 8
                                      : std::min(kPayload, kImageBytes - (id - 1) * kPayload);
        const size_t udpLength = kUdpHeader + kGvspHeader + body;
        uint8_t* ethernet = frame + kDataOffset;
        Put(ethernet + 12, ETHERTYPE_IP, 2);
        uint8_t* ip = ethernet + kEthernetHeader;
        ip[0] = 0x45;
        Put(ip + 2, kIpHeader + udpLength, 2);
        Put(ip + 6, 0x4000, 2); // do not fragment
        ip[8] = 64;
        ip[9] = IPPROTO_UDP;
        Put(ip + 12, kLoopback, 4);
        Put(ip + 16, kLoopback, 4);
        Put(ip + 10, IpChecksum(ip), 2);
        uint8_t* udp = ip + kIpHeader;
        Put(udp, kSourcePort, 2);
        Put(udp + 2, port, 2);
        Put(udp + 4, udpLength, 2); // checksum 0: none
        uint8_t* gvsp = udp + kUdpHeader;
        gvsp[4] = leader ? 1 : trailer ? 2 : 3;
        Put(gvsp + 5, id, 3);
        uint8_t* data = gvsp + kGvspHeader;
        if (leader) {
            Put(data + 2, 1, 2); // image
            Put(data + 12, 0x01080001, 4);
            Put(data + 16, kWidth, 4);
            Put(data + 20, kHeight, 4);
        } else if (trailer) {
            Put(data + 2, 1, 2);
            Put(data + 4, kHeight, 4);
        } else {
            std::memset(data, 0x5A, body);
        }
        auto* header = reinterpret_cast<tpacket2_hdr*>(frame);
        header->tp_len = static_cast<uint32_t>(kEthernetHeader + kIpHeader + udpLength);
    }

    void SendBlock() {
        blockId_ = blockId_ == 0xFFFF ? 1 : blockId_ + 1; // block id 0 is never used
        const size_t block = next_;
        next_ = (next_ + 1) % kRingBlocks;
        for (size_t id = 0; id < kBlockPackets; ++id) {
            uint8_t* frame = Frame(block, id);
            auto* header = reinterpret_cast<tpacket2_hdr*>(frame);
            while (__atomic_load_n(&header->tp_status, __ATOMIC_ACQUIRE) != TP_STATUS_AVAILABLE)
                std::this_thread::yield();
            Put(frame + kDataOffset + kBlockIdAt, blockId_, 2);
            __atomic_store_n(&header->tp_status, TP_STATUS_SEND_REQUEST, __ATOMIC_RELEASE);
        }
        if (send(fd_, nullptr, 0, 0) > 0)
            sent_ += kBlockPackets;
    }

    int fd_ = -1;
    uint8_t* ring_ = nullptr;
    size_t next_ = 0;
    uint16_t blockId_ = 0;
    std::thread thread_;
    std::atomic<bool> running_{false};
    std::atomic<uint64_t> sent_{0};
};

// Requeues every buffer at once, as a consumer that keeps up would.
class RequeueingSink : public Orvan::Producer::FrameSink {
public:
    RequeueingSink() : storage_(kBuffers, std::vector<uint8_t>(kImageBytes)) {
        for (auto& buffer : storage_)
            queue_.push_back(buffer.data());
    }
    bool AcquireBuffer(FillSlot& slot) override {
        std::lock_guard<std::mutex> lock(mutex_);
        if (queue_.empty())
            return false;
        slot.data = queue_.front();
        slot.size = kImageBytes;
        queue_.pop_front();
        return true;
    }
    void Deliver(const FillSlot& slot, const FrameInfo&) override { Return(slot); }
    void Return(const FillSlot& slot) override {
        std::lock_guard<std::mutex> lock(mutex_);
        queue_.push_back(slot.data);
    }
    void SignalLeader() override {}
    void CountLostFrame() override {}
    void DeliverStreamEvent(int32_t, const void*, size_t) override {}

private:
    std::vector<std::vector<uint8_t>> storage_;
    std::mutex mutex_;
    std::deque<uint8_t*> queue_;
};

// Every receiver behind one interface: its port and what it counted.
class Receiver {
public:
    virtual ~Receiver() = default;
    virtual bool Ready() const = 0;
    virtual uint16_t Port() const = 0;
    virtual uint64_t Packets() const = 0;
    virtual uint64_t CompleteFrames() const = 0;
};

class OrvanReceiver : public Receiver {
public:
    // placed: the thread pinned to the last core, at real-time priority.
    OrvanReceiver(ReceivePath path, bool placed) : receiver_(kLoopback) {
        GvspReceiver::Config config;
        config.packetSize = kPacketSize;
        config.resend.enabled = false; // nobody answers; Aravis is run the same way
        config.receive.path = path;
        if (placed) {
            config.receive.core = static_cast<int32_t>(std::thread::hardware_concurrency()) - 1;
            config.receive.priority = Orvan::Producer::ThreadPriority::RealTime;
        }
        ready_ = receiver_.Start(&sink_, config, {}) == GenTL::GC_ERR_SUCCESS;
    }
    ~OrvanReceiver() override { receiver_.Stop(); }
    bool Ready() const override { return ready_; }
    uint16_t Port() const override { return receiver_.Port(); }
    uint64_t Packets() const override { return receiver_.Statistics().packetsReceived; }
    uint64_t CompleteFrames() const override {
        const auto stats = receiver_.Statistics();
        return stats.framesDelivered - stats.framesIncomplete;
    }

private:
    RequeueingSink sink_;
    GvspReceiver receiver_;
    bool ready_ = false;
};

class AravisReceiver : public Receiver {
public:
    explicit AravisReceiver(bool packetSocket)
        : fake_(arv_gv_fake_camera_new_full("127.0.0.1", "BENCH01", nullptr)) {
        GError* error = nullptr;
        camera_ = fake_ && arv_gv_fake_camera_is_running(fake_)
                      ? arv_camera_new("127.0.0.1", &error)
                      : nullptr;
        if (camera_ == nullptr)
            return;
        auto* device = ARV_GV_DEVICE(arv_camera_get_device(camera_));
        arv_gv_device_set_packet_size_adjustment(device, ARV_GV_PACKET_SIZE_ADJUSTMENT_NEVER);
        arv_camera_gv_set_packet_size(camera_, kPacketSize, &error);
        arv_gv_device_set_stream_options(device, packetSocket
                                                     ? ARV_GV_STREAM_OPTION_NONE
                                                     : ARV_GV_STREAM_OPTION_PACKET_SOCKET_DISABLED);
        stream_ = arv_camera_create_stream(camera_, nullptr, nullptr, &error);
        if (stream_ == nullptr)
            return;
        g_object_set(stream_, "packet-resend", ARV_GV_STREAM_PACKET_RESEND_NEVER, "socket-buffer",
                     ARV_GV_STREAM_SOCKET_BUFFER_FIXED, "socket-buffer-size", kSocketBuffer,
                     nullptr);
        for (size_t i = 0; i < kBuffers; ++i)
            arv_stream_push_buffer(stream_, arv_buffer_new(kImageBytes, nullptr));
        consumer_ = std::thread([this] {
            while (consuming_) {
                if (ArvBuffer* buffer = arv_stream_timeout_pop_buffer(stream_, 100000))
                    arv_stream_push_buffer(stream_, buffer);
            }
        });
    }
    ~AravisReceiver() override {
        consuming_ = false;
        if (consumer_.joinable())
            consumer_.join();
        if (stream_)
            g_object_unref(stream_);
        if (camera_)
            g_object_unref(camera_);
        if (fake_)
            g_object_unref(fake_);
    }
    bool Ready() const override { return stream_ != nullptr; }
    uint16_t Port() const override { return arv_gv_stream_get_port(ARV_GV_STREAM(stream_)); }
    uint64_t Packets() const override {
        return arv_stream_get_info_uint64_by_name(stream_, "n_received_packets");
    }
    uint64_t CompleteFrames() const override {
        return arv_stream_get_info_uint64_by_name(stream_, "n_completed_buffers");
    }

private:
    ArvGvFakeCamera* fake_;
    ArvCamera* camera_ = nullptr;
    ArvStream* stream_ = nullptr;
    std::atomic<bool> consuming_{true};
    std::thread consumer_;
};

struct Outcome {
    uint64_t sent = 0;
    uint64_t received = 0;
    uint64_t completeFrames = 0;
    double seconds = 0;
    double receiverCpu = 0;
};

void Report(benchmark::State& state, const Outcome& outcome) {
    const double bytes = static_cast<double>(outcome.received) * kPayload;
    const double lost =
        static_cast<double>(outcome.sent - std::min(outcome.sent, outcome.received));
    state.counters["packets_per_s"] = static_cast<double>(outcome.received) / outcome.seconds;
    state.counters["MB_per_s"] = bytes / 1e6 / outcome.seconds;
    state.counters["lost_pct"] =
        outcome.sent > 0 ? 100.0 * lost / static_cast<double>(outcome.sent) : 0;
    state.counters["frames_per_s"] = static_cast<double>(outcome.completeFrames) / outcome.seconds;
    state.counters["cpu_s_per_GB"] = bytes > 0 ? outcome.receiverCpu / (bytes / 1e9) : 0;
    // What one core fully given to the receiving thread would sustain.
    state.counters["packets_per_cpu_s"] =
        outcome.receiverCpu > 0 ? static_cast<double>(outcome.received) / outcome.receiverCpu : 0;
}

// The receiver's own receiving thread: of the threads it started, the one that works when
// packets come.
pid_t ReceivingThread(const std::set<pid_t>& before, PacketReplay& camera) {
    std::vector<std::pair<pid_t, double>> started;
    for (pid_t tid : Threads())
        if (before.count(tid) == 0)
            started.emplace_back(tid, ThreadCpuSeconds(tid));
    camera.SendBlocks(4);
    std::this_thread::sleep_for(200ms);
    pid_t busiest = 0;
    double most = -1;
    for (const auto& [tid, cpu] : started) {
        const double used = ThreadCpuSeconds(tid) - cpu;
        if (used > most) {
            most = used;
            busiest = tid;
        }
    }
    return busiest;
}

// Sender and receiver at once for the run time, then a moment for the receiver to drain.
Outcome StreamLive(Receiver& receiver, PacketReplay& camera, pid_t thread) {
    const uint64_t packets = receiver.Packets();
    const uint64_t frames = receiver.CompleteFrames();
    const uint64_t sent = camera.PacketsSent();
    const double cpuStart = ThreadCpuSeconds(thread);
    const auto start = std::chrono::steady_clock::now();
    camera.Start();
    std::this_thread::sleep_for(kRunTime);
    camera.Stop();
    Outcome outcome;
    outcome.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::this_thread::sleep_for(200ms);
    outcome.receiverCpu = ThreadCpuSeconds(thread) - cpuStart;
    outcome.sent = camera.PacketsSent() - sent;
    outcome.received = receiver.Packets() - packets;
    outcome.completeFrames = receiver.CompleteFrames() - frames;
    return outcome;
}

// Rounds of: queue blocks while the receiving thread is parked, then time it alone until its
// count stops growing (the backlog is gone).
Outcome DrainBacklog(Receiver& receiver, PacketReplay& camera, pid_t thread) {
    constexpr int kRounds = 40;
    // Fits our socket buffer and both rings. Aravis's plain socket asks for its buffer without
    // exceeding the system's limit (net.core.rmem_max), so part of its backlog is dropped.
    constexpr size_t kBlocksPerRound = 6;
    Outcome outcome;
    for (int round = 0; round < kRounds; ++round) {
        ThreadParking::Park(thread);
        const uint64_t sentBefore = camera.PacketsSent();
        const uint64_t packets = receiver.Packets();
        const uint64_t frames = receiver.CompleteFrames();
        camera.SendBlocks(kBlocksPerRound);
        const double cpuStart = ThreadCpuSeconds(thread);
        const auto start = std::chrono::steady_clock::now();
        ThreadParking::Release();
        const uint64_t target = packets + camera.PacketsSent() - sentBefore;
        auto last = start;
        uint64_t seen = packets;
        while (seen < target && std::chrono::steady_clock::now() - last < 20ms) {
            std::this_thread::sleep_for(100us);
            const uint64_t now = receiver.Packets();
            if (now != seen) {
                seen = now;
                last = std::chrono::steady_clock::now();
            }
        }
        outcome.seconds += std::chrono::duration<double>(last - start).count();
        outcome.receiverCpu += ThreadCpuSeconds(thread) - cpuStart;
        outcome.received += seen - packets;
        outcome.sent += camera.PacketsSent() - sentBefore;
        outcome.completeFrames += receiver.CompleteFrames() - frames;
    }
    return outcome;
}

enum class Peer {
    OrvanSocket,
    OrvanPacketRing,
    OrvanPacketRingPlaced,
    AravisSocket,
    AravisPacketSocket
};

std::unique_ptr<Receiver> MakeReceiver(Peer peer) {
    switch (peer) {
    case Peer::OrvanSocket:
        return std::make_unique<OrvanReceiver>(ReceivePath::Socket, false);
    case Peer::OrvanPacketRing:
        return std::make_unique<OrvanReceiver>(ReceivePath::PacketRing, false);
    case Peer::OrvanPacketRingPlaced:
        return std::make_unique<OrvanReceiver>(ReceivePath::PacketRing, true);
    case Peer::AravisSocket:
        return std::make_unique<AravisReceiver>(false);
    case Peer::AravisPacketSocket:
        return std::make_unique<AravisReceiver>(true);
    }
    return nullptr;
}

using Way = Outcome (*)(Receiver&, PacketReplay&, pid_t);

void Run(benchmark::State& state, Peer peer, Way way) {
    if (!kOwnLoopback) {
        state.SkipWithError("needs root: a network namespace of its own and packet rings");
        return;
    }
    for (auto _ : state) {
        const std::set<pid_t> before = Threads();
        const auto receiver = MakeReceiver(peer);
        PacketReplay camera(receiver->Ready() ? receiver->Port() : 0);
        if (!receiver->Ready() || !camera.Ready()) {
            state.SkipWithError("the receiver or the replaying sender could not be set up");
            return;
        }
        const pid_t thread = ReceivingThread(before, camera);
        Report(state, way(*receiver, camera, thread));
    }
}

void BM_Live(benchmark::State& state, Peer peer) {
    Run(state, peer, StreamLive);
}
void BM_Drain(benchmark::State& state, Peer peer) {
    Run(state, peer, DrainBacklog);
}

#define EVERY_RECEIVER(way)                                                                        \
    BENCHMARK_CAPTURE(way, Orvan_Socket, Peer::OrvanSocket)->Apply(Once);                          \
    BENCHMARK_CAPTURE(way, Orvan_PacketRing, Peer::OrvanPacketRing)->Apply(Once);                  \
    BENCHMARK_CAPTURE(way, Orvan_PacketRing_Pinned_RealTime, Peer::OrvanPacketRingPlaced)          \
        ->Apply(Once);                                                                             \
    BENCHMARK_CAPTURE(way, Aravis_Socket, Peer::AravisSocket)->Apply(Once);                        \
    BENCHMARK_CAPTURE(way, Aravis_PacketSocket, Peer::AravisPacketSocket)->Apply(Once)

void Once(benchmark::internal::Benchmark* benchmark) {
    benchmark->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
}

EVERY_RECEIVER(BM_Live);
EVERY_RECEIVER(BM_Drain);

} // namespace
