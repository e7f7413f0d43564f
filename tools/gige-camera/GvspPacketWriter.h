// Cuts one block (a frame's buffer) into GVSP packets: leader, payload packets, trailer, in the
// standard (16-bit block id, 24-bit packet id) or extended-id form; a multi-part block's parts go
// one after the other, each in packets of its own. Any packet can be written again by its id,
// which is how the emulator answers resend requests without keeping packets.
#ifndef ORVAN_TOOLS_GIGE_CAMERA_GVSPPACKETWRITER_H
#define ORVAN_TOOLS_GIGE_CAMERA_GVSPPACKETWRITER_H

#include "RemoteDevice.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Orvan {
namespace Emulator {

// What a leader and trailer describe. The payload type is the GVSP one (with the chunk flag
// 0x4000 when chunks follow the image); image fields matter for image payloads only, parts
// (where each lies in data, its GenTL data type, format and size) for multi-part ones.
struct GvspBlock {
    uint64_t blockId = 1;
    uint16_t payloadType = 0x0001;
    uint64_t timestamp = 0;
    uint32_t pixelFormat = 0;
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t offsetX = 0;
    uint32_t offsetY = 0;
    uint16_t paddingX = 0;
    uint16_t paddingY = 0;
    uint32_t chunkLayoutId = 0;
    const uint8_t* data = nullptr;
    size_t size = 0;
    std::vector<Producer::FramePart> parts;
};

class GvspPacketWriter {
public:
    // packetSize counts IP and UDP headers, like the stream channel packet size register.
    GvspPacketWriter(uint32_t packetSize, bool extendedId);

    // Largest datagram WritePacket produces: the buffer a caller provides.
    size_t MaxDatagram() const { return m_header + m_payloadBytes; }
    // Whether the block's leader and trailer fit a packet (a multi-part block's list its parts).
    bool CanSend(const GvspBlock& block) const;
    // Packet ids run from 0 (leader) to PacketCount() - 1 (trailer).
    uint32_t PacketCount(const GvspBlock& block) const;
    // Writes packet `packetId` of the block into out; returns its size (0 for an id beyond the
    // trailer). status goes into the header (0, or the resend status for a resent packet).
    size_t WritePacket(const GvspBlock& block, uint32_t packetId, uint16_t status,
                       uint8_t* out) const;
    // A header-only packet telling the receiver that a requested packet is gone.
    size_t WriteUnavailable(uint64_t blockId, uint32_t packetId, uint8_t* out) const;

private:
    size_t WriteHeader(uint64_t blockId, uint8_t format, uint32_t packetId, uint16_t status,
                       uint8_t* out) const;
    size_t WriteLeader(const GvspBlock& block, uint8_t* out) const;
    size_t WriteTrailer(const GvspBlock& block, uint8_t* out) const;
    size_t WritePartLeader(const GvspBlock& block, uint8_t* out) const;
    size_t WritePartTrailer(const GvspBlock& block, uint8_t* out) const;
    size_t WritePartData(const GvspBlock& block, uint32_t packetId, uint8_t* out) const;
    size_t PartPackets(const Producer::FramePart& part) const;

    bool m_extendedId;
    size_t m_header;
    size_t m_payloadBytes; // image bytes per payload packet
};

} // namespace Emulator
} // namespace Orvan

#endif
