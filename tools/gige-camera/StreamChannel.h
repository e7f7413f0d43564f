// One stream channel of the camera: a frame sink of its own for one of the virtual camera's
// streams, owning a small ring of frame buffers, which sends each delivered frame as GVSP
// packets to the channel's destination (a multipart buffer as a multi-part block), optionally
// losing and reordering some (deterministically, from a seed), and answers resend requests
// from the frames still in the ring. A size limit makes it behave like a path with a smaller
// MTU: larger packets, test packets included, never arrive.
#ifndef ORVAN_TOOLS_GIGE_CAMERA_STREAMCHANNEL_H
#define ORVAN_TOOLS_GIGE_CAMERA_STREAMCHANNEL_H

#include "GvcpServerCodec.h"
#include "GvspPacketWriter.h"
#include "RemoteDevice.h"
#include "UdpSocket.h"

#include <cstdint>
#include <mutex>
#include <random>
#include <vector>

namespace Orvan {
namespace Emulator {

class StreamChannel : public Producer::FrameSink {
public:
    struct Options {
        double lossPercent = 0;    // of first transmissions; resent packets always arrive
        double reorderPercent = 0; // packets held back behind their successor
        uint32_t seed = 1;
        uint32_t ringFrames = 32;   // frames kept for resends
        uint32_t index = 0;         // the channel number, and the camera stream it serves
        uint32_t partsPerBlock = 1; // frames a multipart stream's buffer holds
        uint32_t maxPacketSize = 0; // larger packets (IP and UDP headers counted) are dropped
    };
    struct Counters {
        uint64_t framesSent = 0;
        uint64_t framesDropped = 0; // no destination, or the camera's frame did not fit
        uint64_t packetsSent = 0;
        uint64_t packetsDropped = 0; // lost on purpose, or larger than the path carries
        uint64_t testPackets = 0;    // sent on the host's request
        uint64_t resendRequests = 0;
        uint64_t packetsResent = 0;
        uint64_t packetsUnavailable = 0;
    };

    StreamChannel(Producer::RemoteDevice& camera, const Options& options);

    bool Open(uint32_t sourceIp);
    void Close();
    uint16_t SourcePort() const { return m_socket.Local().port; }

    // Destination port 0 closes the channel: frames are dropped from then on.
    void Configure(const Endpoint& destination, uint32_t packetSize, bool extendedId);
    void Resend(const PacketResendRequest& request);
    // A datagram of exactly the packet size on the wire with the don't-fragment bit set, for the
    // host's packet-size test.
    void SendTestPacket();
    Counters Statistics() const;

    // FrameSink, called by the camera's stream thread.
    bool AcquireBuffer(Producer::FillSlot& slot) override;
    void Deliver(const Producer::FillSlot& slot, const Producer::FrameInfo& info) override;
    void Return(const Producer::FillSlot& slot) override;
    void SignalLeader() override {}
    void CountLostFrame() override;
    void DeliverStreamEvent(int32_t, const void*, size_t) override {}

private:
    struct Frame {
        std::vector<uint8_t> data;
        GvspBlock block;
        bool filling = false;
        bool sendable = false; // delivered, and still answering resends
    };

    GvspBlock DescribeBlock(const Frame& frame, const Producer::FrameInfo& info) const;
    void Transmit(const GvspBlock& block, const GvspPacketWriter& writer, const Endpoint& to);
    // What a path of the configured limit lets through.
    bool Carried(size_t datagram) const;
    Frame* FindFrame(uint64_t blockId);

    Producer::RemoteDevice& m_camera;
    const Options m_options;
    UdpSocket m_socket;
    std::vector<Frame> m_ring;
    size_t m_next = 0;
    std::mt19937 m_random;
    std::vector<uint8_t> m_packet, m_held; // stream thread only

    mutable std::mutex m_mutex;
    Endpoint m_destination;
    uint32_t m_packetSize = 1500;
    bool m_extendedId = false;
    Counters m_counters;
};

} // namespace Emulator
} // namespace Orvan

#endif
