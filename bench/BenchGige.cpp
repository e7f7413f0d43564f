// The GVSP receive path beside Debian's Aravis client, both fed the same synthetic stream of
// 4-megapixel Mono8 blocks in 9000-byte packets on loopback, sent with sendmmsg. Aravis's stream
// is set up through its own fake camera, which is never started: the synthetic sender is the
// only source for both receivers. Two ways:
// - Live: a sender thread pushes as fast as it goes for a fixed time, receiver running. On a
//   machine with few cores the sender and the kernel's loopback path compete with the receiver.
// - Drain (ours only: Aravis's stream drops its socket's backlog when its thread stops): the
//   receiver's thread is held at a frame's start while the blocks queue up in its socket, then
//   it works through the backlog alone: its packet rate on one core.
// Aravis runs with and without its packet socket (a kernel ring it prefers when privileged).
//
// Reported per receiver: packets and megabytes per second received, CPU seconds per gigabyte
// and packets per CPU second (the process's CPU time less the sender thread's; the waiting main
// thread costs next to nothing), packets lost (sent but never received) and complete frames per
// second. On loopback the kernel's delivery work runs in the sender's thread, so it is charged to
// neither receiver, except for the copy out of the socket, which each receiver's own thread does;
// Aravis's packet socket has the kernel copy into its ring in the sender's thread instead.
#include "RemoteDevice.h"
#include "gige/GvspReceiver.h"

#include <arv.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <ctime>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using Orvan::Producer::FillSlot;
using Orvan::Producer::FrameInfo;
using Orvan::Producer::GvspReceiver;

constexpr uint32_t kPacketSize = 9000;
constexpr size_t kHeaderSize = 8;
constexpr size_t kPayload = kPacketSize - 28 - kHeaderSize;
constexpr uint32_t kWidth = 2048;
constexpr uint32_t kHeight = 2048;
constexpr size_t kImageBytes = size_t{kWidth} * kHeight;
constexpr size_t kDataPackets = (kImageBytes + kPayload - 1) / kPayload;
constexpr size_t kBuffers = 8;
constexpr size_t kSendBatch = 64;
constexpr auto kRunTime = 3s;
constexpr int kSocketBuffer = 64 << 20;

double CpuSeconds(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void Put(uint8_t* at, uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        at[i] = static_cast<uint8_t>(value >> (8 * (bytes - 1 - i)));
}

// A camera's stream channel reduced to its sending loop.
class SyntheticCamera {
public:
    explicit SyntheticCamera(uint16_t port)
        : fd_(socket(AF_INET, SOCK_DGRAM, 0)), image_(kImageBytes, 0x5A),
          headers_((kDataPackets + 2) * kHeaderSize), leader_(36), trailer_(8) {
        setsockopt(fd_, SOL_SOCKET, SO_SNDBUF, &kSocketBuffer, sizeof kSocketBuffer);
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_port = htons(port);
        to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        connect(fd_, reinterpret_cast<sockaddr*>(&to), sizeof to);
        Put(&leader_[2], 1, 2); // image
        Put(&leader_[12], 0x01080001, 4);
        Put(&leader_[16], kWidth, 4);
        Put(&leader_[20], kHeight, 4);
        Put(&trailer_[2], 1, 2);
        Put(&trailer_[4], kHeight, 4);
        for (size_t id = 0; id < kDataPackets + 2; ++id) {
            uint8_t* header = &headers_[id * kHeaderSize];
            header[4] = id == 0 ? 1 : id == kDataPackets + 1 ? 2 : 3;
            Put(header + 5, id, 3);
        }
        Prepare();
    }
    ~SyntheticCamera() {
        Stop();
        close(fd_);
    }

    void Start() {
        running_ = true;
        thread_ = std::thread([this] { Run(); });
    }
    void Stop() {
        running_ = false;
        if (thread_.joinable())
            thread_.join();
    }
    // Sends whole blocks from the calling thread.
    void SendFrames(size_t count) {
        for (size_t i = 0; i < count; ++i)
            SendFrame();
    }
    uint64_t PacketsSent() const { return sent_; }
    double CpuSeconds() const { return cpu_; }

private:
    void Prepare() {
        vectors_.resize(2 * (kDataPackets + 2));
        auto& vectors = vectors_;
        for (size_t id = 0; id < kDataPackets + 2; ++id) {
            vectors[2 * id] = {&headers_[id * kHeaderSize], kHeaderSize};
            if (id == 0) {
                vectors[1] = {leader_.data(), leader_.size()};
            } else if (id == kDataPackets + 1) {
                vectors[2 * id + 1] = {trailer_.data(), trailer_.size()};
            } else {
                const size_t offset = (id - 1) * kPayload;
                vectors[2 * id + 1] = {&image_[offset], std::min(kPayload, kImageBytes - offset)};
            }
        }
        messages_.resize(kDataPackets + 2);
        for (size_t id = 0; id < messages_.size(); ++id) {
            messages_[id].msg_hdr = msghdr{};
            messages_[id].msg_hdr.msg_iov = &vectors[2 * id];
            messages_[id].msg_hdr.msg_iovlen = 2;
        }
    }

    void SendFrame() {
        block_ = block_ == 0xFFFF ? 1 : block_ + 1; // block id 0 is never used
        for (size_t id = 0; id < kDataPackets + 2; ++id)
            Put(&headers_[id * kHeaderSize + 2], block_, 2);
        for (size_t first = 0; first < messages_.size();) {
            const unsigned count =
                static_cast<unsigned>(std::min(kSendBatch, messages_.size() - first));
            const int done = sendmmsg(fd_, &messages_[first], count, 0);
            if (done <= 0)
                break;
            sent_ += static_cast<uint64_t>(done);
            first += static_cast<size_t>(done);
        }
    }

    void Run() {
        const double cpuStart = ::CpuSeconds(CLOCK_THREAD_CPUTIME_ID);
        while (running_.load(std::memory_order_relaxed))
            SendFrame();
        cpu_ = ::CpuSeconds(CLOCK_THREAD_CPUTIME_ID) - cpuStart;
    }

    int fd_;
    std::vector<uint8_t> image_;
    std::vector<uint8_t> headers_;
    std::vector<uint8_t> leader_;
    std::vector<uint8_t> trailer_;
    std::vector<iovec> vectors_;
    std::vector<mmsghdr> messages_;
    uint16_t block_ = 0;
    std::thread thread_;
    std::atomic<bool> running_{false};
    std::atomic<uint64_t> sent_{0};
    double cpu_ = 0;
};

// Requeues every buffer at once, as a consumer that keeps up would. While held, it keeps the
// receiving thread waiting at the next frame's start, so that a backlog builds up.
class RequeueingSink : public Orvan::Producer::FrameSink {
public:
    RequeueingSink() : storage_(kBuffers, std::vector<uint8_t>(kImageBytes)) {
        for (auto& buffer : storage_)
            queue_.push_back(buffer.data());
    }
    void Hold() {
        std::lock_guard<std::mutex> lock(mutex_);
        held_ = true;
    }
    void Release() {
        std::lock_guard<std::mutex> lock(mutex_);
        held_ = false;
        released_.notify_all();
    }
    bool AcquireBuffer(FillSlot& slot) override {
        std::unique_lock<std::mutex> lock(mutex_);
        released_.wait(lock, [this] { return !held_; });
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
    std::condition_variable released_;
    bool held_ = false;
    std::deque<uint8_t*> queue_;
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
    state.counters["cpu_s_per_GB"] = bytes > 0 ? outcome.receiverCpu / (bytes / 1e9) : 0;
    // What one core fully given to the receiver would sustain.
    state.counters["packets_per_cpu_s"] =
        outcome.receiverCpu > 0 ? static_cast<double>(outcome.received) / outcome.receiverCpu : 0;
    state.counters["lost_pct"] =
        outcome.sent > 0 ? 100.0 * lost / static_cast<double>(outcome.sent) : 0;
    state.counters["frames_per_s"] = static_cast<double>(outcome.completeFrames) / outcome.seconds;
}

// Both receivers behind one interface: their port and what they counted.
class Receiver {
public:
    virtual ~Receiver() = default;
    virtual uint16_t Port() const = 0;
    virtual uint64_t Packets() const = 0;
    virtual uint64_t CompleteFrames() const = 0;
};

class OrvanReceiver : public Receiver {
public:
    OrvanReceiver() : receiver_(INADDR_LOOPBACK) {
        GvspReceiver::Config config;
        config.packetSize = kPacketSize;
        config.resend.enabled = false; // nobody answers; Aravis is run the same way
        receiver_.Start(&sink_, config, {});
    }
    ~OrvanReceiver() override {
        sink_.Release();
        receiver_.Stop();
    }
    uint16_t Port() const override { return receiver_.Port(); }
    void Resume() { sink_.Release(); }
    void Pause() { sink_.Hold(); }
    uint64_t Packets() const override { return receiver_.Statistics().packetsReceived; }
    uint64_t CompleteFrames() const override {
        const auto stats = receiver_.Statistics();
        return stats.framesDelivered - stats.framesIncomplete;
    }

private:
    RequeueingSink sink_;
    GvspReceiver receiver_;
};

// Aravis's fake camera takes the standard control port on 127.0.0.1; a test may hold it a while.
ArvGvFakeCamera* StartFakeCamera() {
    const auto deadline = std::chrono::steady_clock::now() + 60s;
    while (std::chrono::steady_clock::now() < deadline) {
        ArvGvFakeCamera* camera = arv_gv_fake_camera_new_full("127.0.0.1", "BENCH01", nullptr);
        if (camera != nullptr && arv_gv_fake_camera_is_running(camera))
            return camera;
        if (camera != nullptr)
            g_object_unref(camera);
        std::this_thread::sleep_for(500ms);
    }
    return nullptr;
}

class AravisReceiver : public Receiver {
public:
    explicit AravisReceiver(bool packetSocket) : fake_(StartFakeCamera()) {
        GError* error = nullptr;
        camera_ = fake_ ? arv_camera_new("127.0.0.1", &error) : nullptr;
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
    bool Ready() const { return stream_ != nullptr; }
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

// Sender and receiver at once for the run time, then a moment for the receiver to drain.
Outcome StreamLive(Receiver& receiver) {
    SyntheticCamera camera(receiver.Port());
    const uint64_t packets = receiver.Packets();
    const uint64_t frames = receiver.CompleteFrames();
    const double cpuStart = CpuSeconds(CLOCK_PROCESS_CPUTIME_ID);
    const auto start = std::chrono::steady_clock::now();
    camera.Start();
    std::this_thread::sleep_for(kRunTime);
    camera.Stop();
    Outcome outcome;
    outcome.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::this_thread::sleep_for(200ms);
    outcome.receiverCpu = CpuSeconds(CLOCK_PROCESS_CPUTIME_ID) - cpuStart - camera.CpuSeconds();
    outcome.sent = camera.PacketsSent();
    outcome.received = receiver.Packets() - packets;
    outcome.completeFrames = receiver.CompleteFrames() - frames;
    return outcome;
}

// Rounds of: queue blocks in the paused receiver's socket, then time the receiver alone until
// the count stops growing (the backlog is gone).
Outcome DrainBacklog(OrvanReceiver& receiver) {
    constexpr int kRounds = 10;
    constexpr size_t kBlocksPerRound = 8; // fits the socket buffer
    SyntheticCamera camera(receiver.Port());
    Outcome outcome;
    for (int round = 0; round < kRounds; ++round) {
        receiver.Pause();
        const uint64_t sentBefore = camera.PacketsSent();
        const uint64_t packets = receiver.Packets();
        const uint64_t frames = receiver.CompleteFrames();
        camera.SendFrames(kBlocksPerRound);
        const double cpuStart = CpuSeconds(CLOCK_PROCESS_CPUTIME_ID);
        const auto start = std::chrono::steady_clock::now();
        receiver.Resume();
        const uint64_t target = packets + camera.PacketsSent() - sentBefore;
        auto last = start;
        uint64_t seen = packets;
        while (seen < target && std::chrono::steady_clock::now() - last < 50ms) {
            std::this_thread::sleep_for(200us);
            const uint64_t now = receiver.Packets();
            if (now != seen) {
                seen = now;
                last = std::chrono::steady_clock::now();
            }
        }
        outcome.seconds += std::chrono::duration<double>(last - start).count();
        outcome.receiverCpu += CpuSeconds(CLOCK_PROCESS_CPUTIME_ID) - cpuStart;
        outcome.received += seen - packets;
        outcome.sent += camera.PacketsSent() - sentBefore;
        outcome.completeFrames += receiver.CompleteFrames() - frames;
    }
    return outcome;
}

void BM_Live_Orvan(benchmark::State& state) {
    for (auto _ : state) {
        OrvanReceiver receiver;
        Report(state, StreamLive(receiver));
    }
}

void LiveAravis(benchmark::State& state, bool packetSocket) {
    for (auto _ : state) {
        AravisReceiver receiver(packetSocket);
        if (!receiver.Ready()) {
            state.SkipWithError("no Aravis camera on 127.0.0.1");
            return;
        }
        Report(state, StreamLive(receiver));
    }
}
void BM_Live_Aravis(benchmark::State& state) {
    LiveAravis(state, false);
}
void BM_Live_AravisPacketSocket(benchmark::State& state) {
    LiveAravis(state, true);
}

void BM_Drain_Orvan(benchmark::State& state) {
    for (auto _ : state) {
        OrvanReceiver receiver;
        Report(state, DrainBacklog(receiver));
    }
}

BENCHMARK(BM_Live_Orvan)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Live_Aravis)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Live_AravisPacketSocket)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Drain_Orvan)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
