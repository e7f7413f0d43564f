#include "GvspPacket.h"

#include "BigEndian.h"

#include "GevProtocol.h"

#include <algorithm>

namespace Orvan {
namespace Producer {

namespace {

// The format byte carries the extended-id flag in its top bit and the format in its low four.
constexpr uint8_t kFormatMask = 0x0F;

// Leader and trailer bodies all start with two reserved (field info) bytes and the payload type.
constexpr size_t kPayloadTypeOffset = 2;
constexpr size_t kTimestampOffset = 4;
constexpr size_t kImageLeaderSize = 36;
constexpr size_t kMultiZoneLeaderSize = 40;
constexpr size_t kSizedLeaderSize = 20; // timestamp, then the 64-bit payload size
constexpr size_t kTimestampLeaderSize = 12;
constexpr size_t kH264LeaderSize = 12; // payload size right after the type; no timestamp
constexpr size_t kGenericTrailerSize = 4;
constexpr size_t kImageTrailerSize = 8;
constexpr size_t kExtendedChunkTrailerSize = 16;
constexpr size_t kChunkInfoSize = 8;

void ReadImageFields(const uint8_t* p, GvspLeader& leader) {
    leader.hasImage = true;
    leader.pixelFormat = Gev::Get32(p);
    leader.sizeX = Gev::Get32(p + 4);
    leader.sizeY = Gev::Get32(p + 8);
    leader.offsetX = Gev::Get32(p + 12);
    leader.offsetY = Gev::Get32(p + 16);
    leader.paddingX = Gev::Get16(p + 20);
    leader.paddingY = Gev::Get16(p + 22);
}

FramePart ReadPart(const uint8_t* p) {
    namespace P = Gev::Part;
    FramePart part;
    const uint16_t type = Gev::Get16(p + P::DataType);
    part.dataType = P::SameInGenTL(type)              ? int32_t(type)
                    : type >= Gev::DeviceSpecificBase ? int32_t(GenTL::PART_DATATYPE_CUSTOM_ID)
                                                      : int32_t(GenTL::PART_DATATYPE_UNKNOWN);
    part.size = Gev::Get48(p + P::Length);
    part.format = Gev::Get32(p + P::Format);
    part.sourceId = p[P::SourceId];
    part.purposeId = Gev::Get16(p + P::PurposeId);
    part.regionId = Gev::Get16(p + P::RegionId);
    part.width = Gev::Get32(p + P::SizeX);
    part.height = Gev::Get32(p + P::SizeX + 4);
    part.offsetX = Gev::Get32(p + P::SizeX + 8);
    part.offsetY = Gev::Get32(p + P::SizeX + 12);
    part.paddingX = Gev::Get16(p + P::PaddingX);
    return part;
}

void ReadParts(const uint8_t* body, size_t size, size_t maxParts, GvspLeader& leader) {
    const size_t count =
        std::min((size - Gev::Part::LeaderFixedSize) / Gev::Part::LeaderPartSize, maxParts);
    leader.parts.reserve(count);
    for (size_t i = 0; i < count; ++i)
        leader.parts.push_back(
            ReadPart(body + Gev::Part::LeaderFixedSize + i * Gev::Part::LeaderPartSize));
}

// Bytes the leader of a payload type needs at least.
size_t LeaderSize(uint16_t type) {
    switch (type) {
    case Gev::Image:
    case Gev::ExtendedChunkData:
        return kImageLeaderSize;
    case Gev::MultiZoneImage:
        return kMultiZoneLeaderSize;
    case Gev::RawData:
    case Gev::File:
    case Gev::Jpeg:
    case Gev::Jpeg2000:
        return kSizedLeaderSize;
    case Gev::H264:
        return kH264LeaderSize;
    default:
        return kTimestampLeaderSize;
    }
}

} // namespace

std::optional<GvspHeader> ParseGvspHeader(const uint8_t* data, size_t size) {
    if (data == nullptr || size < Gev::kGvspHeaderSize)
        return std::nullopt;
    GvspHeader header;
    header.status = Gev::Get16(data);
    header.extendedId = (data[4] & Gev::kGvspExtendedIdFlag) != 0;
    header.format = data[4] & kFormatMask;
    if (!header.extendedId) {
        header.blockId = Gev::Get16(data + 2);
        header.packetId = Gev::Get32(data + 4) & 0x00FFFFFF;
        header.size = Gev::kGvspHeaderSize;
        return header;
    }
    if (size < Gev::kGvspExtendedHeaderSize)
        return std::nullopt;
    header.flags = Gev::Get16(data + 2);
    header.partCount = data[Gev::Part::HeaderPartCount];
    header.blockId = Gev::Get64(data + 8);
    header.packetId = Gev::Get32(data + 16);
    header.size = Gev::kGvspExtendedHeaderSize;
    return header;
}

std::optional<GvspLeader> ParseGvspLeader(const uint8_t* body, size_t size, size_t maxParts) {
    if (body == nullptr || size < kPayloadTypeOffset + 2)
        return std::nullopt;
    GvspLeader leader;
    const uint16_t raw = Gev::Get16(body + kPayloadTypeOffset);
    leader.chunkFlag = (raw & Gev::kPayloadTypeChunkFlag) != 0;
    leader.payloadType = raw & static_cast<uint16_t>(~Gev::kPayloadTypeChunkFlag);
    if (size < LeaderSize(leader.payloadType))
        return std::nullopt;
    switch (leader.payloadType) {
    case Gev::Image:
    case Gev::ExtendedChunkData:
        ReadImageFields(body + 12, leader);
        break;
    case Gev::MultiZoneImage:
        ReadImageFields(body + 16, leader); // after the zone direction mask
        break;
    case Gev::RawData:
    case Gev::File:
    case Gev::Jpeg:
    case Gev::Jpeg2000:
        leader.payloadSize = Gev::Get64(body + 12);
        break;
    case Gev::H264:
        leader.payloadSize = Gev::Get64(body + 4);
        return leader;
    case Gev::MultiPart:
        ReadParts(body, size, maxParts, leader);
        break;
    default:
        break;
    }
    leader.timestamp = Gev::Get64(body + kTimestampOffset);
    return leader;
}

std::optional<GvspTrailer> ParseGvspTrailer(const uint8_t* body, size_t size) {
    if (body == nullptr || size < kGenericTrailerSize)
        return std::nullopt;
    GvspTrailer trailer;
    const uint16_t raw = Gev::Get16(body + kPayloadTypeOffset);
    trailer.chunkFlag = (raw & Gev::kPayloadTypeChunkFlag) != 0;
    trailer.payloadType = raw & static_cast<uint16_t>(~Gev::kPayloadTypeChunkFlag);
    size_t used = kGenericTrailerSize;
    switch (trailer.payloadType) {
    case Gev::Image:
    case Gev::MultiZoneImage:
        if (size < kImageTrailerSize)
            return std::nullopt;
        trailer.hasSizeY = true;
        trailer.sizeY = Gev::Get32(body + 4);
        used = kImageTrailerSize;
        break;
    case Gev::ChunkData:
        if (size < kImageTrailerSize)
            return std::nullopt;
        trailer.hasChunkInfo = true;
        trailer.chunkPayloadLength = Gev::Get32(body + 4);
        used = kImageTrailerSize;
        break;
    case Gev::ExtendedChunkData:
        if (size < kExtendedChunkTrailerSize)
            return std::nullopt;
        trailer.hasChunkInfo = true;
        trailer.chunkPayloadLength = Gev::Get32(body + 4);
        trailer.hasSizeY = true;
        trailer.sizeY = Gev::Get32(body + 8);
        trailer.chunkLayoutId = Gev::Get32(body + 12);
        return trailer;
    default:
        break;
    }
    // Older cameras in chunk mode leave the chunk fields out; they are optional here.
    if (trailer.chunkFlag && size >= used + kChunkInfoSize) {
        trailer.hasChunkInfo = true;
        trailer.chunkPayloadLength = Gev::Get32(body + used);
        trailer.chunkLayoutId = Gev::Get32(body + used + 4);
    }
    return trailer;
}

std::optional<GvspPartData> ParseGvspPartData(const uint8_t* body, size_t size) {
    if (body == nullptr || size < Gev::Part::DataHeaderSize)
        return std::nullopt;
    GvspPartData part;
    part.part = body[0];
    part.offset = Gev::Get48(body + 2);
    part.data = body + Gev::Part::DataHeaderSize;
    part.size = size - Gev::Part::DataHeaderSize;
    return part;
}

size_t AnnouncedParts(const GvspHeader& header) {
    return header.extendedId && header.partCount != 0 ? header.partCount : SIZE_MAX;
}

std::optional<GvspPacket> ParseGvspPacket(const uint8_t* data, size_t size) {
    const auto header = ParseGvspHeader(data, size);
    if (!header)
        return std::nullopt;
    GvspPacket packet;
    packet.header = *header;
    const uint8_t* body = data + header->size;
    const size_t bodySize = size - header->size;
    switch (header->format) {
    case Gev::Leader:
        packet.leader = ParseGvspLeader(body, bodySize, AnnouncedParts(*header));
        if (!packet.leader)
            return std::nullopt;
        break;
    case Gev::Trailer:
        packet.trailer = ParseGvspTrailer(body, bodySize);
        if (!packet.trailer)
            return std::nullopt;
        break;
    default:
        packet.data = body;
        packet.dataSize = bodySize;
        break;
    }
    return packet;
}

} // namespace Producer
} // namespace Orvan
