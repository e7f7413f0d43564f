// The host end of one GVSP stream channel: a UDP socket that owns the port, a packet source (the
// socket itself, a packet ring or AF_XDP) and a thread that hands batches of datagrams to a
// GvspAssembler, which writes payload straight into the stream's buffers.
#ifndef ORVAN_GENTL_GIGE_GVSPRECEIVER_H
#define ORVAN_GENTL_GIGE_GVSPRECEIVER_H

#include "../RemoteDevice.h"
#include "GvspAssembler.h"
#include "SocketSource.h"

#include <GenTL/GenTL.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace Orvan {
namespace Producer {

class GvspReceiver {
public:
    using ResendRequester =
        std::function<void(uint64_t blockId, uint32_t firstPacket, uint32_t lastPacket)>;
    struct Config {
        uint64_t tickFrequency = 1000000000; // camera timestamp ticks per second
        uint32_t packetSize = 1500;          // negotiated GVSP packet size incl. IP/UDP headers
        ResendSettings resend;
        bool extendedIds = false;
        ReceiveSettings receive;
    };

    // Binds a UDP socket on localIp (host order; 0 = any), ephemeral port, large SO_RCVBUF.
    explicit GvspReceiver(uint32_t localIp);
    ~GvspReceiver();
    GvspReceiver(const GvspReceiver&) = delete;
    GvspReceiver& operator=(const GvspReceiver&) = delete;

    uint16_t Port() const { return socket_.Port(); }
    // Starts the receive thread delivering into sink; resend requests go through requester.
    // GC_ERR_NOT_AVAILABLE when AF_XDP or the packet ring was asked for and cannot be had.
    GenTL::GC_ERROR Start(FrameSink* sink, const Config& config, ResendRequester requester);
    // Returns after the thread's last call into the sink; unfinished frames' buffers are
    // returned.
    void Stop();
    void Configure(const ResendSettings& settings); // takes effect for the next frame
    // Counted over every run since construction.
    StreamStatistics Statistics() const;
    // What the last Start obtained (path Auto: never started).
    ReceiveSettings InUse() const;

private:
    GenTL::GC_ERROR OpenSource(const Config& config);
    void Run(GvspAssembler& assembler, PacketSource& source);
    void ApplyPendingSettings(GvspAssembler& assembler);

    const uint32_t localIp_;
    SocketSource socket_;
    std::unique_ptr<PacketSource> ring_; // this run's, when AF_XDP or the packet ring receives
    ReceivePath ringPath_ = ReceivePath::PacketRing; // which of them
    std::thread thread_;
    std::atomic<bool> running_{false};
    // Serialises Start and Stop.
    std::mutex lifecycleMutex_;
    // Guards the assembler's replacement against Statistics(), the settings hand-over and
    // what is in use.
    mutable std::mutex mutex_;
    std::unique_ptr<GvspAssembler> assembler_;
    StreamStatistics previousRuns_;
    ResendSettings pendingSettings_;
    std::atomic<bool> settingsChanged_{false};
    ReceiveSettings inUse_;
};

} // namespace Producer
} // namespace Orvan

#endif
