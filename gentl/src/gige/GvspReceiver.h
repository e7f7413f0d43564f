// The host end of one GVSP stream channel: a UDP socket and a thread that receives datagrams in
// batches and hands them to a GvspAssembler, which writes payload straight into the stream's
// buffers.
#ifndef ORVAN_GENTL_GIGE_GVSPRECEIVER_H
#define ORVAN_GENTL_GIGE_GVSPRECEIVER_H

#include "../RemoteDevice.h"
#include "GvspAssembler.h"

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
    };

    // Binds a UDP socket on localIp (host order; 0 = any), ephemeral port, large SO_RCVBUF.
    explicit GvspReceiver(uint32_t localIp);
    ~GvspReceiver();
    GvspReceiver(const GvspReceiver&) = delete;
    GvspReceiver& operator=(const GvspReceiver&) = delete;

    uint16_t Port() const { return port_; }
    // Starts the receive thread delivering into sink; resend requests go through requester.
    GenTL::GC_ERROR Start(FrameSink* sink, const Config& config, ResendRequester requester);
    // Returns after the thread's last call into the sink; unfinished frames' buffers are
    // returned.
    void Stop();
    void Configure(const ResendSettings& settings); // takes effect for the next frame
    // Counted over every run since construction.
    StreamStatistics Statistics() const;

private:
    void Run(GvspAssembler& assembler);
    void ApplyPendingSettings(GvspAssembler& assembler);
    void DiscardQueued();

    int fd_ = -1;
    uint16_t port_ = 0;
    std::thread thread_;
    std::atomic<bool> running_{false};
    // Serialises Start and Stop.
    std::mutex lifecycleMutex_;
    // Guards the assembler's replacement against Statistics(), and the settings hand-over.
    mutable std::mutex mutex_;
    std::unique_ptr<GvspAssembler> assembler_;
    StreamStatistics previousRuns_;
    ResendSettings pendingSettings_;
    std::atomic<bool> settingsChanged_{false};
};

} // namespace Producer
} // namespace Orvan

#endif
