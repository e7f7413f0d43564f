// GVSP datagrams as a camera sends them, for the stream tests, the fuzzer's seeds and the
// benchmark's synthetic sender.
#ifndef ORVAN_TESTS_GENTL_GIGE_GVSPTESTPACKETS_H
#define ORVAN_TESTS_GENTL_GIGE_GVSPTESTPACKETS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace GvspTest {

using Datagram = std::vector<uint8_t>;

constexpr uint8_t kLeader = 1;
constexpr uint8_t kTrailer = 2;
constexpr uint8_t kPayload = 3;
constexpr uint32_t kMono8 = 0x01080001;

inline void Put(Datagram& out, uint64_t value, int bytes) {
    for (int i = bytes - 1; i >= 0; --i)
        out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

inline Datagram Header(uint64_t block, uint32_t packet, uint8_t format, bool extended,
                       uint16_t status = 0) {
    Datagram out;
    Put(out, status, 2);
    Put(out, extended ? 0 : block, 2);
    out.push_back(static_cast<uint8_t>(format | (extended ? 0x80 : 0)));
    Put(out, extended ? 0 : packet, 3);
    if (extended) {
        Put(out, block, 8);
        Put(out, packet, 4);
    }
    return out;
}

struct Block {
    uint64_t id = 1;
    bool extended = false;
    size_t stride = 1000; // payload bytes per data packet
    uint16_t payloadType = 1;
    uint64_t timestamp = 0;
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint8_t> data;
};

inline Datagram Leader(const Block& block) {
    Datagram out = Header(block.id, 0, kLeader, block.extended);
    Put(out, 0, 2);
    Put(out, block.payloadType, 2);
    Put(out, block.timestamp, 8);
    Put(out, kMono8, 4);
    Put(out, block.width, 4);
    Put(out, block.height, 4);
    out.insert(out.end(), 4 + 4 + 2 + 2, 0); // offsets and padding
    return out;
}

inline size_t DataPackets(const Block& block) {
    return (block.data.size() + block.stride - 1) / block.stride;
}

inline Datagram Payload(const Block& block, uint32_t packet) {
    Datagram out = Header(block.id, packet, kPayload, block.extended);
    const size_t begin = (packet - 1) * block.stride;
    const size_t end = std::min(block.data.size(), begin + block.stride);
    out.insert(out.end(), block.data.begin() + begin, block.data.begin() + end);
    return out;
}

inline Datagram Trailer(const Block& block) {
    Datagram out =
        Header(block.id, static_cast<uint32_t>(DataPackets(block) + 1), kTrailer, block.extended);
    Put(out, 0, 2);
    Put(out, block.payloadType, 2);
    Put(out, block.height, 4);
    return out;
}

// Leader, payload packets and trailer in packet-id order.
inline std::vector<Datagram> Datagrams(const Block& block) {
    std::vector<Datagram> out{Leader(block)};
    for (uint32_t p = 1; p <= DataPackets(block); ++p)
        out.push_back(Payload(block, p));
    out.push_back(Trailer(block));
    return out;
}

inline std::vector<uint8_t> Pattern(size_t size, uint8_t seed) {
    std::vector<uint8_t> out(size);
    for (size_t i = 0; i < size; ++i)
        out[i] = static_cast<uint8_t>(i * 7 + seed + i / 251);
    return out;
}

} // namespace GvspTest

#endif
