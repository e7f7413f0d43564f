#include "GvspPacketWriter.h"

#include "gige/BigEndian.h"
#include "gige/GevProtocol.h"

#include <algorithm>
#include <cstring>

using Orvan::Gev::Put16;
using Orvan::Gev::Put32;
using Orvan::Gev::Put64;

namespace Orvan {
namespace Emulator {

namespace {

constexpr uint32_t kMinPacketSize = 576; // what every IPv4 host must accept
constexpr size_t kImageLeaderBytes = 36;
constexpr size_t kChunkLeaderBytes = 12;
constexpr size_t kRawLeaderBytes = 20;

bool IsImage(uint16_t payloadType) {
    const uint16_t base = payloadType & uint16_t(~Gev::kPayloadTypeChunkFlag);
    return base == Gev::Image || base == Gev::ExtendedChunkData;
}

} // namespace

GvspPacketWriter::GvspPacketWriter(uint32_t packetSize, bool extendedId)
    : m_extendedId(extendedId),
      m_header(extendedId ? Gev::kGvspExtendedHeaderSize : Gev::kGvspHeaderSize) {
    const size_t datagram = std::max(packetSize & Gev::kPacketSizeMask, kMinPacketSize);
    // Receivers place payload packet n at (n - 1) times this, so it stays a multiple of 4.
    m_payloadBytes = (datagram - Gev::kIpUdpOverhead - m_header) & ~size_t(3);
}

uint32_t GvspPacketWriter::PacketCount(const GvspBlock& block) const {
    return uint32_t((block.size + m_payloadBytes - 1) / m_payloadBytes) + 2;
}

size_t GvspPacketWriter::WriteHeader(uint64_t blockId, uint8_t format, uint32_t packetId,
                                     uint16_t status, uint8_t* out) const {
    std::memset(out, 0, m_header);
    Put16(out, status);
    if (m_extendedId) {
        out[4] = uint8_t(format | Gev::kGvspExtendedIdFlag);
        Put64(out + 8, blockId);
        Put32(out + 16, packetId);
    } else {
        Put16(out + 2, uint16_t(blockId));
        Put32(out + 4, packetId & 0x00FFFFFF);
        out[4] = format;
    }
    return m_header;
}

size_t GvspPacketWriter::WriteLeader(const GvspBlock& block, uint8_t* out) const {
    Put16(out + 2, block.payloadType);
    Put64(out + 4, block.timestamp);
    if (IsImage(block.payloadType)) {
        Put32(out + 12, block.pixelFormat);
        Put32(out + 16, block.width);
        Put32(out + 20, block.height);
        Put32(out + 24, block.offsetX);
        Put32(out + 28, block.offsetY);
        Put16(out + 32, block.paddingX);
        Put16(out + 34, block.paddingY);
        return kImageLeaderBytes;
    }
    if (block.payloadType == Gev::ChunkData)
        return kChunkLeaderBytes;
    Put64(out + 12, block.size); // raw data and device-specific payloads: their size
    return kRawLeaderBytes;
}

size_t GvspPacketWriter::WriteTrailer(const GvspBlock& block, uint8_t* out) const {
    Put16(out + 2, block.payloadType);
    size_t size = 4;
    if (IsImage(block.payloadType)) {
        Put32(out + 4, block.height);
        size = 8;
    } else if (block.payloadType == Gev::ChunkData) {
        Put32(out + 4, uint32_t(block.size));
        size = 8;
    }
    if (block.payloadType & Gev::kPayloadTypeChunkFlag) {
        Put32(out + size, uint32_t(block.size));
        Put32(out + size + 4, block.chunkLayoutId);
        size += 8;
    }
    return size;
}

size_t GvspPacketWriter::WritePacket(const GvspBlock& block, uint32_t packetId, uint16_t status,
                                     uint8_t* out) const {
    const uint32_t count = PacketCount(block);
    if (packetId >= count)
        return 0;
    if (packetId == 0) {
        const size_t header = WriteHeader(block.blockId, Gev::Leader, 0, status, out);
        std::memset(out + header, 0, kImageLeaderBytes);
        return header + WriteLeader(block, out + header);
    }
    if (packetId == count - 1) {
        const size_t header = WriteHeader(block.blockId, Gev::Trailer, packetId, status, out);
        std::memset(out + header, 0, 24);
        return header + WriteTrailer(block, out + header);
    }
    const size_t header = WriteHeader(block.blockId, Gev::GenericPayload, packetId, status, out);
    const size_t offset = size_t(packetId - 1) * m_payloadBytes;
    const size_t bytes = std::min(m_payloadBytes, block.size - offset);
    std::memcpy(out + header, block.data + offset, bytes);
    return header + bytes;
}

size_t GvspPacketWriter::WriteUnavailable(uint64_t blockId, uint32_t packetId, uint8_t* out) const {
    return WriteHeader(blockId, Gev::GenericPayload, packetId, Gev::PacketUnavailable, out);
}

} // namespace Emulator
} // namespace Orvan
