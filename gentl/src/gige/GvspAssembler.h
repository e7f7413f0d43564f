// Reassembly of GVSP blocks into the stream's buffers, without a socket: the receive thread (or
// a test, or the fuzzer) fills batch slots with datagrams and hands them over, and calls Poll
// for the time-driven work (resend requests, incomplete frames).
//
// Slots are prepared so that the body of the next in-order packet lands right where it belongs
// in the current frame's buffer; only a packet that turns out to belong elsewhere is copied.
// Multi-part blocks are laid out part after part as their leader describes them, and their
// packets, which address their part themselves, are always copied.
// Not thread-safe except Statistics(): one thread drives an assembler.
#ifndef ORVAN_GENTL_GIGE_GVSPASSEMBLER_H
#define ORVAN_GENTL_GIGE_GVSPASSEMBLER_H

#include "../RemoteDevice.h"
#include "GvspPacket.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace Orvan {
namespace Producer {

class GvspAssembler {
public:
    using ResendRequester =
        std::function<void(uint64_t blockId, uint32_t firstPacket, uint32_t lastPacket)>;

    struct Options {
        uint64_t tickFrequency = 1000000000;
        uint32_t packetSize = 1500; // incl. IP and UDP headers
        bool extendedIds = false;
        size_t batchSize = 64;
        // More frames than this waiting for packets: the oldest is given up. Frames are handed
        // over in order, so at high frame rates this must cover a few resend round trips.
        size_t maxFramesInFlight = 32;
    };

    // Where one datagram of a batch goes: header bytes, then the body.
    struct Slot {
        uint8_t* header = nullptr; // HeaderSize() bytes
        uint8_t* body = nullptr;
        size_t bodyCapacity = 0;
        size_t length = 0;      // datagram bytes received (header and body)
        bool truncated = false; // the datagram was longer than the slot
    };

    // The smallest packet size that leaves room for a leader in a payload slot.
    static uint32_t MinimumPacketSize(bool extendedIds);

    GvspAssembler(FrameSink& sink, const Options& options, const ResendSettings& resend,
                  ResendRequester requester);
    ~GvspAssembler();
    GvspAssembler(const GvspAssembler&) = delete;
    GvspAssembler& operator=(const GvspAssembler&) = delete;

    size_t HeaderSize() const { return headerSize_; }
    size_t BatchSize() const { return slots_.size(); }
    // Points every slot at where the next in-order packets belong; valid until ProcessBatch.
    Slot* PrepareBatch();
    void ProcessBatch(size_t count, uint64_t nowUs);
    // One datagram held in one piece (goes through a batch of one).
    void OnDatagram(const uint8_t* data, size_t size, uint64_t nowUs);
    // Resend requests and timeouts that are due.
    void Poll(uint64_t nowUs);
    // Applies to frames that start after the call.
    void SetResendSettings(const ResendSettings& settings) { resend_ = settings; }
    // Gives the buffers of unfinished frames back to the sink.
    void Abort();
    StreamStatistics Statistics() const;

private:
    struct Frame;
    struct Counters {
        std::atomic<uint64_t> packetsReceived{0};
        std::atomic<uint64_t> packetsRecovered{0};
        std::atomic<uint64_t> packetsLost{0};
        std::atomic<uint64_t> resendRequests{0};
        std::atomic<uint64_t> framesDelivered{0};
        std::atomic<uint64_t> framesIncomplete{0};
        std::atomic<uint64_t> framesLost{0};
    };

    void EvacuateMisplaced(size_t count);
    void Handle(const Slot& slot, bool inPlace, uint64_t nowUs);
    // Null for a late packet of a finished frame, or a frame without a buffer.
    Frame* FindOrOpen(uint64_t blockId, bool leader, uint64_t nowUs);
    Frame* Open(uint64_t blockId, uint64_t nowUs);
    void StoreData(Frame& frame, uint32_t packetId, const uint8_t* body, size_t size, bool inPlace);
    void LayOutParts(Frame& frame);
    void StorePart(Frame& frame, const uint8_t* body, size_t size);
    bool MarkReceived(Frame& frame, uint32_t packetId, uint64_t nowUs);
    void UpdateDone(Frame& frame);
    void RequestMissing(Frame& frame, uint32_t first, uint32_t last);
    void PollFrame(Frame& frame, uint64_t nowUs);
    uint32_t GapLimit(const Frame& frame) const;
    uint32_t EstimatedLastId(const Frame& frame) const;
    void FlushDone();
    void Finish(Frame& frame);
    FrameInfo Describe(const Frame& frame) const;
    void DescribeParts(const Frame& frame, FrameInfo& info) const;
    void Bump(std::atomic<uint64_t>& counter, uint64_t by = 1) {
        counter.store(counter.load(std::memory_order_relaxed) + by, std::memory_order_relaxed);
    }

    FrameSink& sink_;
    Options options_;
    ResendSettings resend_;
    ResendRequester requester_;
    size_t headerSize_;
    size_t stride_; // payload bytes of every data packet but the last
    std::vector<Slot> slots_;
    std::vector<uint8_t> headerScratch_;
    std::vector<uint8_t> bodyScratch_;
    // Where each slot's body was aimed: a frame buffer position, or nothing (scratch).
    std::vector<Frame*> slotFrame_;
    std::vector<uint32_t> slotPacket_;
    std::vector<Frame> pool_;
    std::vector<Frame*> inFlight_; // oldest first
    bool anySeen_ = false;
    uint64_t newestBlock_ = 0;
    Counters counters_;
};

} // namespace Producer
} // namespace Orvan

#endif
