#include "GvspReceiver.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <system_error>
#include <vector>

namespace Orvan {
namespace Producer {

namespace {

// A few milliseconds of bursts at line rate; the kernel clamps the plain request to its limit,
// the forced one needs privileges and is tried first.
constexpr int kReceiveBufferBytes = 64 * 1024 * 1024;
constexpr size_t kBatchSize = 64;
// How long a quiet socket blocks the thread before timeouts and Stop are looked at.
constexpr long kWakeUpUs = 2000;

uint64_t NowUs() {
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::microseconds>(
                                     std::chrono::steady_clock::now().time_since_epoch())
                                     .count());
}

void Accumulate(StreamStatistics& total, const StreamStatistics& run) {
    total.packetsReceived += run.packetsReceived;
    total.packetsRecovered += run.packetsRecovered;
    total.packetsLost += run.packetsLost;
    total.resendRequests += run.resendRequests;
    total.framesDelivered += run.framesDelivered;
    total.framesIncomplete += run.framesIncomplete;
    total.framesLost += run.framesLost;
}

} // namespace

GvspReceiver::GvspReceiver(uint32_t localIp) {
    fd_ = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd_ < 0)
        return;
    int size = kReceiveBufferBytes;
    if (setsockopt(fd_, SOL_SOCKET, SO_RCVBUFFORCE, &size, sizeof size) != 0)
        setsockopt(fd_, SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
    timeval wake{0, kWakeUpUs};
    setsockopt(fd_, SOL_SOCKET, SO_RCVTIMEO, &wake, sizeof wake);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(localIp);
    socklen_t length = sizeof address;
    if (bind(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        close(fd_);
        fd_ = -1;
        return;
    }
    port_ = ntohs(address.sin_port);
}

GvspReceiver::~GvspReceiver() {
    Stop();
    if (fd_ >= 0)
        close(fd_);
}

GenTL::GC_ERROR GvspReceiver::Start(FrameSink* sink, const Config& config,
                                    ResendRequester requester) {
    if (sink == nullptr || config.packetSize < GvspAssembler::MinimumPacketSize(config.extendedIds))
        return GenTL::GC_ERR_INVALID_PARAMETER;
    if (fd_ < 0)
        return GenTL::GC_ERR_IO;
    std::lock_guard<std::mutex> lifecycle(lifecycleMutex_);
    if (thread_.joinable())
        return GenTL::GC_ERR_RESOURCE_IN_USE;
    GvspAssembler::Options options;
    options.tickFrequency = config.tickFrequency;
    options.packetSize = config.packetSize;
    options.extendedIds = config.extendedIds;
    options.batchSize = kBatchSize;
    auto assembler =
        std::make_unique<GvspAssembler>(*sink, options, config.resend, std::move(requester));
    DiscardQueued();
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (assembler_)
            Accumulate(previousRuns_, assembler_->Statistics());
        assembler_ = std::move(assembler);
        settingsChanged_ = false;
    }
    running_ = true;
    try {
        thread_ = std::thread([this, assembler = assembler_.get()] { Run(*assembler); });
    } catch (const std::system_error&) {
        running_ = false;
        return GenTL::GC_ERR_ERROR;
    }
    return GenTL::GC_ERR_SUCCESS;
}

void GvspReceiver::Stop() {
    std::lock_guard<std::mutex> lifecycle(lifecycleMutex_);
    if (!thread_.joinable())
        return;
    running_ = false;
    thread_.join();
    assembler_->Abort();
}

// Datagrams left over from an earlier acquisition would start frames of a stream that is gone.
void GvspReceiver::DiscardQueued() {
    // Bounded: a camera that is already sending again must not keep Start from returning.
    constexpr int kMostDiscarded = 1 << 16;
    uint8_t sink = 0;
    for (int i = 0; i < kMostDiscarded; ++i)
        if (recv(fd_, &sink, sizeof sink, MSG_DONTWAIT | MSG_TRUNC) < 0)
            break;
}

void GvspReceiver::Configure(const ResendSettings& settings) {
    std::lock_guard<std::mutex> lock(mutex_);
    pendingSettings_ = settings;
    settingsChanged_ = true;
}

StreamStatistics GvspReceiver::Statistics() const {
    std::lock_guard<std::mutex> lock(mutex_);
    StreamStatistics total = previousRuns_;
    if (assembler_)
        Accumulate(total, assembler_->Statistics());
    return total;
}

void GvspReceiver::ApplyPendingSettings(GvspAssembler& assembler) {
    if (!settingsChanged_.exchange(false))
        return;
    std::lock_guard<std::mutex> lock(mutex_);
    assembler.SetResendSettings(pendingSettings_);
}

void GvspReceiver::Run(GvspAssembler& assembler) {
    const size_t batch = assembler.BatchSize();
    std::vector<mmsghdr> messages(batch);
    std::vector<iovec> vectors(2 * batch);
    while (running_.load(std::memory_order_relaxed)) {
        ApplyPendingSettings(assembler);
        GvspAssembler::Slot* slots = assembler.PrepareBatch();
        for (size_t i = 0; i < batch; ++i) {
            vectors[2 * i] = {slots[i].header, assembler.HeaderSize()};
            vectors[2 * i + 1] = {slots[i].body, slots[i].bodyCapacity};
            messages[i].msg_hdr = msghdr{};
            messages[i].msg_hdr.msg_iov = &vectors[2 * i];
            messages[i].msg_hdr.msg_iovlen = 2;
        }
        const int received =
            recvmmsg(fd_, messages.data(), static_cast<unsigned>(batch), MSG_WAITFORONE, nullptr);
        const uint64_t now = NowUs();
        if (received > 0) {
            for (int i = 0; i < received; ++i) {
                slots[i].length = messages[i].msg_len;
                slots[i].truncated = (messages[i].msg_hdr.msg_flags & MSG_TRUNC) != 0;
            }
            assembler.ProcessBatch(static_cast<size_t>(received), now);
        }
        assembler.Poll(now);
    }
}

} // namespace Producer
} // namespace Orvan
