#include "GvspReceiver.h"

#include "../LastError.h"
#include "PacketRing.h"
#include "ReceiveThreadPlacement.h"
#include "XdpSource.h"

#include <chrono>
#include <string>
#include <system_error>

namespace Orvan {
namespace Producer {

namespace {

constexpr size_t kBatchSize = 64;

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

GvspReceiver::GvspReceiver(uint32_t localIp) : localIp_(localIp), socket_(localIp) {}

GvspReceiver::~GvspReceiver() {
    Stop();
}

GenTL::GC_ERROR GvspReceiver::Start(FrameSink* sink, const Config& config,
                                    ResendRequester requester) {
    if (sink == nullptr || config.packetSize < GvspAssembler::MinimumPacketSize(config.extendedIds))
        return GenTL::GC_ERR_INVALID_PARAMETER;
    if (Port() == 0)
        return GenTL::GC_ERR_IO;
    std::lock_guard<std::mutex> lifecycle(lifecycleMutex_);
    if (thread_.joinable())
        return GenTL::GC_ERR_RESOURCE_IN_USE;
    const GenTL::GC_ERROR opened = OpenSource(config);
    if (opened != GenTL::GC_ERR_SUCCESS)
        return opened;
    GvspAssembler::Options options;
    options.tickFrequency = config.tickFrequency;
    options.packetSize = config.packetSize;
    options.extendedIds = config.extendedIds;
    options.batchSize = kBatchSize;
    auto assembler =
        std::make_unique<GvspAssembler>(*sink, options, config.resend, std::move(requester));
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (assembler_)
            Accumulate(previousRuns_, assembler_->Statistics());
        assembler_ = std::move(assembler);
        settingsChanged_ = false;
    }
    PacketSource* source = ring_ ? ring_.get() : &socket_;
    running_ = true;
    try {
        thread_ =
            std::thread([this, assembler = assembler_.get(), source] { Run(*assembler, *source); });
    } catch (const std::system_error&) {
        running_ = false;
        return GenTL::GC_ERR_ERROR;
    }
    pthread_setname_np(thread_.native_handle(), "orvan-gvsp");
    ReceiveSettings placed = PlaceReceiveThread(thread_.native_handle(), config.receive);
    placed.path = ring_ ? ringPath_ : ReceivePath::Socket;
    std::lock_guard<std::mutex> lock(mutex_);
    inUse_ = placed;
    return GenTL::GC_ERR_SUCCESS;
}

// AF_XDP or the ring when asked for or Auto finds one (AF_XDP only where the driver writes into
// its memory without a copy);
// the socket otherwise, and always the socket's leftovers from an earlier acquisition dropped:
// they would start frames of a stream that is gone.
GenTL::GC_ERROR GvspReceiver::OpenSource(const Config& config) {
    ring_.reset();
    const ReceivePath wanted = config.receive.path;
    std::string why;
    if (wanted == ReceivePath::Xdp || wanted == ReceivePath::Auto) {
        ring_ = XdpSource::Open(localIp_, Port(), config.packetSize,
                                wanted == ReceivePath::Xdp ? XdpSource::Mode::NativeOrGeneric
                                                           : XdpSource::Mode::NativeZeroCopy,
                                why);
        ringPath_ = ReceivePath::Xdp;
    }
    if (!ring_ && (wanted == ReceivePath::PacketRing || wanted == ReceivePath::Auto)) {
        ring_ = PacketRing::Open(localIp_, Port(), config.packetSize, why);
        ringPath_ = ReceivePath::PacketRing;
    }
    if (!ring_ && wanted != ReceivePath::Socket && wanted != ReceivePath::Auto) {
        SetLastError(
            GenTL::GC_ERR_NOT_AVAILABLE,
            std::string(wanted == ReceivePath::Xdp ? "No AF_XDP socket" : "No packet ring") +
                " for the stream: " + why);
        return GenTL::GC_ERR_NOT_AVAILABLE;
    }
    socket_.Mute(ring_ != nullptr);
    socket_.Discard();
    return GenTL::GC_ERR_SUCCESS;
}

void GvspReceiver::Stop() {
    std::lock_guard<std::mutex> lifecycle(lifecycleMutex_);
    if (!thread_.joinable())
        return;
    running_ = false;
    thread_.join();
    assembler_->Abort();
    ring_.reset();
    socket_.Mute(false);
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

ReceiveSettings GvspReceiver::InUse() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return inUse_;
}

void GvspReceiver::ApplyPendingSettings(GvspAssembler& assembler) {
    if (!settingsChanged_.exchange(false))
        return;
    std::lock_guard<std::mutex> lock(mutex_);
    assembler.SetResendSettings(pendingSettings_);
}

void GvspReceiver::Run(GvspAssembler& assembler, PacketSource& source) {
    const size_t batch = assembler.BatchSize();
    while (running_.load(std::memory_order_relaxed)) {
        ApplyPendingSettings(assembler);
        GvspAssembler::Slot* slots = assembler.PrepareBatch();
        const size_t received = source.Receive(slots, batch, assembler.HeaderSize());
        const uint64_t now = NowUs();
        if (received > 0)
            assembler.ProcessBatch(received, now);
        assembler.Poll(now);
    }
}

} // namespace Producer
} // namespace Orvan
