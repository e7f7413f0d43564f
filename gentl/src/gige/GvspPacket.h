// Decoding of GVSP datagrams. The receiver scatters a datagram into a header area and a body
// area, so the header and the body (leader, trailer or payload data) are decoded separately;
// ParseGvspPacket joins both for a datagram held in one piece. Every function accepts any bytes.
#ifndef ORVAN_GENTL_GIGE_GVSPPACKET_H
#define ORVAN_GENTL_GIGE_GVSPPACKET_H

#include "../RemoteDevice.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace Orvan {
namespace Producer {

struct GvspHeader {
    uint16_t status = 0;
    uint16_t flags = 0; // extended-id form only
    uint64_t blockId = 0;
    uint32_t packetId = 0;
    uint8_t format = 0; // Gev::PacketFormat
    bool extendedId = false;
    size_t size = 0;       // bytes the header occupies
    uint8_t partCount = 0; // extended-id leaders of multi-part blocks: the parts announced
};

// Where the data of a multi-part payload packet belongs.
struct GvspPartData {
    uint8_t part = 0;
    uint64_t offset = 0; // within the part
    const uint8_t* data = nullptr;
    size_t size = 0;
};

// What a leader announces about its block.
struct GvspLeader {
    uint16_t payloadType = 0; // without the chunk flag
    bool chunkFlag = false;   // chunks follow the payload
    uint64_t timestamp = 0;   // camera ticks
    bool hasImage = false;    // the image fields below are valid
    uint32_t pixelFormat = 0;
    uint32_t sizeX = 0;
    uint32_t sizeY = 0;
    uint32_t offsetX = 0;
    uint32_t offsetY = 0;
    uint16_t paddingX = 0;
    uint16_t paddingY = 0;
    uint64_t payloadSize = 0; // raw data, file and compressed payloads
    // Multi-part payloads: the parts as GenTL describes them; where each lies in a buffer is
    // for the receiver to decide.
    std::vector<FramePart> parts;
};

struct GvspTrailer {
    uint16_t payloadType = 0; // without the chunk flag
    bool chunkFlag = false;
    bool hasSizeY = false;
    uint32_t sizeY = 0; // lines actually sent
    bool hasChunkInfo = false;
    uint32_t chunkPayloadLength = 0;
    uint32_t chunkLayoutId = 0;
};

struct GvspPacket {
    GvspHeader header;
    std::optional<GvspLeader> leader;
    std::optional<GvspTrailer> trailer;
    const uint8_t* data = nullptr; // payload bytes of payload packets
    size_t dataSize = 0;
};

// The header at the start of a datagram, or nullopt when the bytes cannot be one.
std::optional<GvspHeader> ParseGvspHeader(const uint8_t* data, size_t size);
// A leader's body (the bytes after the header); nullopt for a body too short for its type. A
// multi-part leader holds as many part descriptors as fit its body, at most maxParts (what an
// extended-id header announces).
std::optional<GvspLeader> ParseGvspLeader(const uint8_t* body, size_t size,
                                          size_t maxParts = SIZE_MAX);
std::optional<GvspTrailer> ParseGvspTrailer(const uint8_t* body, size_t size);
// The part descriptors a leader with this header may hold: what an extended-id header
// announces, else no limit.
size_t AnnouncedParts(const GvspHeader& header);
// The body of a multi-part payload packet; nullopt when too short for its addressing.
std::optional<GvspPartData> ParseGvspPartData(const uint8_t* body, size_t size);
// Header and body of one datagram; leaders and trailers that fail to decode make it nullopt.
std::optional<GvspPacket> ParseGvspPacket(const uint8_t* data, size_t size);

} // namespace Producer
} // namespace Orvan

#endif
