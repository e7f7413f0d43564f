#include "StreamChannel.h"

#include "gige/GevProtocol.h"

#include <GenTL/GenTL.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

namespace Orvan {
namespace Emulator {

namespace {

// The producer's own payload types for compressed images travel as device-specific payloads.
constexpr int32_t kCompressedPayload = 1001;
constexpr int32_t kCompressedWithChunks = 1002;
constexpr uint16_t kGvspCompressed = Gev::DeviceSpecificBase | 1;
// Nobody asks for more than this many packets at once; a larger range is a malformed request.
constexpr uint32_t kMaxResendRange = 100000;

uint16_t GvspPayloadType(const Producer::FrameInfo& info) {
    switch (info.payloadType) {
    case GenTL::PAYLOAD_TYPE_IMAGE:
        return Gev::Image;
    case GenTL::PAYLOAD_TYPE_CHUNK_DATA:
        return Gev::ChunkData;
    case kCompressedPayload:
        return kGvspCompressed;
    case kCompressedWithChunks:
        return kGvspCompressed | Gev::kPayloadTypeChunkFlag;
    case Gev::Image | Gev::kPayloadTypeChunkFlag:
        return uint16_t(info.payloadType);
    case GenTL::PAYLOAD_TYPE_MULTI_PART:
        return Gev::MultiPart;
    default:
        return Gev::RawData;
    }
}

// A socket of its own: the don't-fragment bit has the kernel refuse, not split, a datagram the
// route cannot carry in one piece.
void SendUnfragmented(uint32_t fromIp, const Endpoint& to, const uint8_t* data, size_t size) {
    const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return;
    const int discover = IP_PMTUDISC_DO;
    setsockopt(fd, IPPROTO_IP, IP_MTU_DISCOVER, &discover, sizeof discover);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(fromIp);
    if (bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
        address.sin_addr.s_addr = htonl(to.ip);
        address.sin_port = htons(to.port);
        sendto(fd, data, size, 0, reinterpret_cast<sockaddr*>(&address), sizeof address);
    }
    close(fd);
}

// 16-bit block ids skip 0, which means "no block".
uint64_t WireBlockId(uint64_t frameId, bool extendedId) {
    return extendedId ? frameId : (frameId - 1) % 0xFFFF + 1;
}

} // namespace

StreamChannel::StreamChannel(Producer::RemoteDevice& camera, const Options& options)
    : m_camera(camera), m_options(options), m_ring(std::max(options.ringFrames, 2u)),
      m_random(options.seed) {}

bool StreamChannel::Open(uint32_t sourceIp) {
    return m_socket.Bind({sourceIp, 0});
}

void StreamChannel::Close() {
    Configure({}, m_packetSize, false);
    m_socket.Close();
}

void StreamChannel::Configure(const Endpoint& destination, uint32_t packetSize, bool extendedId) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_destination = destination;
    m_packetSize = packetSize;
    m_extendedId = extendedId;
}

StreamChannel::Counters StreamChannel::Statistics() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_counters;
}

void StreamChannel::CountLostFrame() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_counters.framesDropped++;
}

bool StreamChannel::AcquireBuffer(Producer::FillSlot& slot) {
    const size_t payload =
        size_t(m_camera.PayloadSize(m_options.index)) * std::max(m_options.partsPerBlock, 1u);
    std::lock_guard<std::mutex> lock(m_mutex);
    Frame& frame = m_ring[m_next];
    if (m_destination.port == 0 || frame.filling)
        return false;
    m_next = (m_next + 1) % m_ring.size();
    frame.sendable = false;
    frame.filling = true;
    frame.data.resize(payload);
    slot.data = frame.data.data();
    slot.size = frame.data.size();
    slot.token = &frame;
    return true;
}

void StreamChannel::Return(const Producer::FillSlot& slot) {
    std::lock_guard<std::mutex> lock(m_mutex);
    static_cast<Frame*>(slot.token)->filling = false;
}

GvspBlock StreamChannel::DescribeBlock(const Frame& frame, const Producer::FrameInfo& info) const {
    GvspBlock block;
    block.blockId = WireBlockId(info.frameId, m_extendedId);
    block.payloadType = GvspPayloadType(info);
    block.timestamp = info.timestampTicks;
    block.pixelFormat = uint32_t(info.pixelFormat);
    block.width = uint32_t(info.width);
    block.height = uint32_t(info.height);
    block.offsetX = uint32_t(info.offsetX);
    block.offsetY = uint32_t(info.offsetY);
    block.paddingX = uint16_t(info.paddingX);
    block.paddingY = uint16_t(info.paddingY);
    block.data = frame.data.data();
    block.size = std::min<size_t>(size_t(info.sizeFilled), frame.data.size());
    if (block.payloadType == Gev::MultiPart)
        block.parts = info.parts;
    return block;
}

void StreamChannel::Deliver(const Producer::FillSlot& slot, const Producer::FrameInfo& info) {
    auto* frame = static_cast<Frame*>(slot.token);
    Endpoint destination;
    GvspBlock block;
    uint32_t packetSize = 0;
    bool extendedId = false;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        frame->filling = false;
        block = DescribeBlock(*frame, info);
        if (m_destination.port == 0 || info.incomplete ||
            !GvspPacketWriter(m_packetSize, m_extendedId).CanSend(block)) {
            m_counters.framesDropped++;
            return;
        }
        frame->block = block;
        frame->sendable = true;
        destination = m_destination;
        packetSize = m_packetSize;
        extendedId = m_extendedId;
        m_counters.framesSent++;
    }
    // The frame's bytes stay put until this thread takes the slot again, so resends may read
    // them meanwhile without the lock.
    Transmit(block, GvspPacketWriter(packetSize, extendedId), destination);
}

void StreamChannel::Transmit(const GvspBlock& block, const GvspPacketWriter& writer,
                             const Endpoint& to) {
    std::uniform_real_distribution<double> percent(0, 100);
    m_packet.resize(writer.MaxDatagram());
    m_held.clear();
    uint64_t sent = 0, dropped = 0;
    const uint32_t count = writer.PacketCount(block);
    for (uint32_t id = 0; id < count; ++id) {
        const size_t size = writer.WritePacket(block, id, Gev::Success, m_packet.data());
        if (!Carried(size) ||
            (m_options.lossPercent > 0 && percent(m_random) < m_options.lossPercent)) {
            dropped++;
            continue;
        }
        if (m_held.empty() && m_options.reorderPercent > 0 && id + 1 < count &&
            percent(m_random) < m_options.reorderPercent) {
            m_held.assign(m_packet.begin(), m_packet.begin() + long(size));
            continue;
        }
        m_socket.SendTo(to, m_packet.data(), size);
        sent++;
        if (!m_held.empty()) {
            m_socket.SendTo(to, m_held.data(), m_held.size());
            m_held.clear();
            sent++;
        }
    }
    if (!m_held.empty()) {
        m_socket.SendTo(to, m_held.data(), m_held.size());
        sent++;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    m_counters.packetsSent += sent;
    m_counters.packetsDropped += dropped;
}

StreamChannel::Frame* StreamChannel::FindFrame(uint64_t blockId) {
    for (Frame& frame : m_ring)
        if (frame.sendable && frame.block.blockId == blockId)
            return &frame;
    return nullptr;
}

bool StreamChannel::Carried(size_t datagram) const {
    return m_options.maxPacketSize == 0 ||
           datagram + Gev::kIpUdpOverhead <= m_options.maxPacketSize;
}

void StreamChannel::Resend(const PacketResendRequest& request) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_counters.resendRequests++;
    if (m_destination.port == 0 || request.streamChannel != m_options.index ||
        request.lastPacket < request.firstPacket)
        return;
    const GvspPacketWriter writer(m_packetSize, m_extendedId);
    std::vector<uint8_t> packet(writer.MaxDatagram());
    const Frame* frame = FindFrame(request.blockId);
    const uint32_t available = frame ? writer.PacketCount(frame->block) : 0;
    const uint32_t last = std::min(request.lastPacket, request.firstPacket + kMaxResendRange);
    for (uint32_t id = request.firstPacket; id <= last; ++id) {
        if (frame && id >= available)
            break; // "up to the end" asks past the trailer
        size_t size = 0;
        if (frame) {
            size = writer.WritePacket(frame->block, id, Gev::PacketResend, packet.data());
            m_counters.packetsResent++;
        } else {
            size = writer.WriteUnavailable(request.blockId, id, packet.data());
            m_counters.packetsUnavailable++;
        }
        if (Carried(size))
            m_socket.SendTo(m_destination, packet.data(), size);
        if (!frame)
            break; // one notice per request is enough for the host to give up
    }
}

// The payload is left zero: the camera does not claim the test-data (LFSR) capability.
void StreamChannel::SendTestPacket() {
    std::lock_guard<std::mutex> lock(m_mutex);
    const size_t size = (m_packetSize & Gev::kPacketSizeMask) - Gev::kIpUdpOverhead;
    if (m_destination.port == 0 || !Carried(size))
        return;
    std::vector<uint8_t> packet(size);
    SendUnfragmented(m_socket.Local().ip, m_destination, packet.data(), packet.size());
    m_counters.testPackets++;
}

} // namespace Emulator
} // namespace Orvan
