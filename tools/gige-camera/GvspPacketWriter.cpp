#include "GvspPacketWriter.h"

#include "gige/BigEndian.h"
#include "gige/GevProtocol.h"

#include <algorithm>
#include <cstring>

using Orvan::Gev::Put16;
using Orvan::Gev::Put32;
using Orvan::Gev::Put48;
using Orvan::Gev::Put64;

namespace Orvan {
namespace Emulator {

namespace {

constexpr size_t kImageLeaderBytes = 36;
constexpr size_t kLongestTrailer = 24;
constexpr size_t kChunkLeaderBytes = 12;
constexpr size_t kRawLeaderBytes = 20;

bool IsImage(uint16_t payloadType) {
    const uint16_t base = payloadType & uint16_t(~Gev::kPayloadTypeChunkFlag);
    return base == Gev::Image || base == Gev::ExtendedChunkData;
}

// Beyond the data types GenTL and GVSP share, a part is the device's own.
uint16_t WirePartType(int32_t dataType) {
    return Gev::Part::SameInGenTL(dataType) ? uint16_t(dataType)
                                            : uint16_t(Gev::DeviceSpecificBase);
}

size_t LeaderBytes(const GvspBlock& block) {
    return block.payloadType == Gev::MultiPart
               ? Gev::Part::LeaderFixedSize + block.parts.size() * Gev::Part::LeaderPartSize
               : kImageLeaderBytes;
}

size_t TrailerBytes(const GvspBlock& block) {
    return block.payloadType == Gev::MultiPart ? 4 + block.parts.size() * Gev::Part::TrailerPartSize
                                               : kLongestTrailer;
}

} // namespace

GvspPacketWriter::GvspPacketWriter(uint32_t packetSize, bool extendedId)
    : m_extendedId(extendedId),
      m_header(extendedId ? Gev::kGvspExtendedHeaderSize : Gev::kGvspHeaderSize) {
    const size_t datagram = std::max(packetSize & Gev::kPacketSizeMask, Gev::kMinPacketSize);
    // Receivers place payload packet n at (n - 1) times this, so it stays a multiple of 4.
    m_payloadBytes = (datagram - Gev::kIpUdpOverhead - m_header) & ~size_t(3);
}

bool GvspPacketWriter::CanSend(const GvspBlock& block) const {
    // The part count travels in one byte of the extended header.
    const bool countable = !m_extendedId || block.parts.size() <= 0xFF;
    return countable && std::max(LeaderBytes(block), TrailerBytes(block)) <= m_payloadBytes;
}

size_t GvspPacketWriter::PartPackets(const Producer::FramePart& part) const {
    const size_t perPacket = m_payloadBytes - Gev::Part::DataHeaderSize;
    return (part.size + perPacket - 1) / perPacket;
}

uint32_t GvspPacketWriter::PacketCount(const GvspBlock& block) const {
    if (block.payloadType != Gev::MultiPart)
        return uint32_t((block.size + m_payloadBytes - 1) / m_payloadBytes) + 2;
    size_t count = 2;
    for (const Producer::FramePart& part : block.parts)
        count += PartPackets(part);
    return uint32_t(count);
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
    if (block.payloadType == Gev::MultiPart)
        return WritePartLeader(block, out);
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
    if (block.payloadType == Gev::MultiPart)
        return WritePartTrailer(block, out);
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
    if ((packetId == 0 || packetId == count - 1) && !CanSend(block))
        return 0;
    if (packetId == 0) {
        const size_t header = WriteHeader(block.blockId, Gev::Leader, 0, status, out);
        if (m_extendedId && block.payloadType == Gev::MultiPart)
            out[Gev::Part::HeaderPartCount] = uint8_t(block.parts.size());
        std::memset(out + header, 0, LeaderBytes(block));
        return header + WriteLeader(block, out + header);
    }
    if (packetId == count - 1) {
        const size_t header = WriteHeader(block.blockId, Gev::Trailer, packetId, status, out);
        std::memset(out + header, 0, TrailerBytes(block));
        return header + WriteTrailer(block, out + header);
    }
    if (block.payloadType == Gev::MultiPart) {
        const size_t header =
            WriteHeader(block.blockId, Gev::MultiPartPayload, packetId, status, out);
        return header + WritePartData(block, packetId, out + header);
    }
    const size_t header = WriteHeader(block.blockId, Gev::GenericPayload, packetId, status, out);
    const size_t offset = size_t(packetId - 1) * m_payloadBytes;
    const size_t bytes = std::min(m_payloadBytes, block.size - offset);
    std::memcpy(out + header, block.data + offset, bytes);
    return header + bytes;
}

size_t GvspPacketWriter::WritePartLeader(const GvspBlock& block, uint8_t* out) const {
    namespace P = Gev::Part;
    uint8_t* descriptor = out + P::LeaderFixedSize;
    for (const Producer::FramePart& part : block.parts) {
        Put16(descriptor + P::DataType, WirePartType(part.dataType));
        Put48(descriptor + P::Length, part.size);
        Put32(descriptor + P::Format, uint32_t(part.format));
        descriptor[P::SourceId] = uint8_t(part.sourceId);
        Put16(descriptor + P::PurposeId, uint16_t(part.purposeId));
        Put16(descriptor + P::RegionId, uint16_t(part.regionId));
        Put32(descriptor + P::SizeX, uint32_t(part.width));
        Put32(descriptor + P::SizeX + 4, uint32_t(part.height));
        Put32(descriptor + P::SizeX + 8, uint32_t(part.offsetX));
        Put32(descriptor + P::SizeX + 12, uint32_t(part.offsetY));
        Put16(descriptor + P::PaddingX, uint16_t(part.paddingX));
        descriptor += P::LeaderPartSize;
    }
    return size_t(descriptor - out);
}

size_t GvspPacketWriter::WritePartTrailer(const GvspBlock& block, uint8_t* out) const {
    uint8_t* record = out + 4;
    for (const Producer::FramePart& part : block.parts) {
        Put16(record, WirePartType(part.dataType));
        Put48(record + 2, part.size);
        Put32(record + 8, uint32_t(part.height));
        record += Gev::Part::TrailerPartSize;
    }
    return size_t(record - out);
}

// Packet ids after the leader run through the first part's packets, then the second's, ...
size_t GvspPacketWriter::WritePartData(const GvspBlock& block, uint32_t packetId,
                                       uint8_t* out) const {
    const size_t perPacket = m_payloadBytes - Gev::Part::DataHeaderSize;
    size_t index = packetId - 1;
    for (size_t p = 0; p < block.parts.size(); ++p) {
        const Producer::FramePart& part = block.parts[p];
        if (index >= PartPackets(part)) {
            index -= PartPackets(part);
            continue;
        }
        const size_t offset = index * perPacket;
        const size_t bytes = std::min<size_t>(perPacket, part.size - offset);
        out[0] = uint8_t(p);
        out[1] = offset + bytes == part.size ? Gev::Part::EndOfPart : 0;
        Put48(out + 2, offset);
        std::memcpy(out + Gev::Part::DataHeaderSize, block.data + part.offset + offset, bytes);
        return Gev::Part::DataHeaderSize + bytes;
    }
    return 0;
}

size_t GvspPacketWriter::WriteUnavailable(uint64_t blockId, uint32_t packetId, uint8_t* out) const {
    return WriteHeader(blockId, Gev::GenericPayload, packetId, Gev::PacketUnavailable, out);
}

} // namespace Emulator
} // namespace Orvan
