// Where a stream's datagrams come from: the only part of the receive path that differs between
// the socket and the packet ring. Reassembly, resends and statistics sit on top, once.
#ifndef ORVAN_GENTL_GIGE_PACKETSOURCE_H
#define ORVAN_GENTL_GIGE_PACKETSOURCE_H

#include "BigEndian.h"
#include "GvspAssembler.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace Orvan {
namespace Producer {

class PacketSource {
public:
    // How long a quiet source blocks its thread before timeouts and Stop are looked at.
    static constexpr uint32_t kWakeUpUs = 2000;

    virtual ~PacketSource() = default;
    // Fills slots with the next datagrams (UDP payloads), waiting at most kWakeUpUs for the
    // first; returns how many were filled.
    virtual size_t Receive(GvspAssembler::Slot* slots, size_t count, size_t headerSize) = 0;

protected:
    // One datagram held in one piece into a slot: its header bytes, then as much body as fits.
    // FenceCopies() must follow before the slot is read elsewhere.
    static void CopyInto(GvspAssembler::Slot& slot, const uint8_t* data, size_t size,
                         size_t headerSize) {
        const size_t head = size < headerSize ? size : headerSize;
        const size_t rest = size - head;
        const size_t body = rest < slot.bodyCapacity ? rest : slot.bodyCapacity;
        std::memcpy(slot.header, data, head);
        CopyStreaming(slot.body, data + head, body);
        slot.length = head + body;
        slot.truncated = body < rest;
    }
    // The UDP payload of an IPv4 packet of which `captured` bytes are held here, into a slot;
    // false when the headers do not fit. The source's filter has vouched for an unfragmented UDP
    // datagram to us. Checksums are not verified again: the link's frame check has passed, and
    // cameras commonly send none. `more`, for a packet held in pieces: set to how much of the
    // payload lies beyond the held bytes, for AppendInto; without it, that much is missing and
    // the slot is marked truncated.
    static bool CopyDatagram(GvspAssembler::Slot& slot, const uint8_t* ip, size_t captured,
                             size_t headerSize, size_t* more = nullptr) {
        constexpr size_t kIpHeaderMin = 20;
        constexpr size_t kUdpHeader = 8;
        if (captured < kIpHeaderMin)
            return false;
        const size_t ipHeader = size_t{ip[0] & 0x0Fu} * 4;
        if (ipHeader < kIpHeaderMin || captured < ipHeader + kUdpHeader)
            return false;
        const uint8_t* udp = ip + ipHeader;
        const size_t datagram = Gev::Get16(udp + 4);
        if (datagram < kUdpHeader)
            return false;
        const size_t payload = datagram - kUdpHeader;
        const size_t held = std::min(payload, captured - ipHeader - kUdpHeader);
        CopyInto(slot, udp + kUdpHeader, held, headerSize);
        if (more != nullptr)
            *more = payload - held;
        else
            slot.truncated = slot.truncated || held < payload;
        return true;
    }
    // The next piece of a datagram CopyInto began, its body as far as the slot holds.
    static void AppendInto(GvspAssembler::Slot& slot, const uint8_t* data, size_t size,
                           size_t headerSize) {
        const size_t at = slot.length > headerSize ? slot.length - headerSize : 0;
        const size_t body = slot.length < headerSize ? 0 : std::min(size, slot.bodyCapacity - at);
        CopyStreaming(slot.body + at, data, body);
        slot.length += body;
        slot.truncated = slot.truncated || body < size;
    }
    // Makes the stores of CopyInto visible to other threads: before the slots are handed on.
    static void FenceCopies() {
#if defined(__SSE2__)
        _mm_sfence();
#endif
    }

private:
    // Streaming stores past the cache for the bulk of a body: nothing reads a frame buffer
    // before the application does, by which time a frame has long left the cache anyway, and
    // this spares reading each line in before it is overwritten.
    static void CopyStreaming(uint8_t* to, const uint8_t* from, size_t size) {
#if defined(__SSE2__)
        constexpr size_t kLine = 64;
        if (size >= 4 * kLine) {
            const size_t head = (kLine - reinterpret_cast<uintptr_t>(to) % kLine) % kLine;
            std::memcpy(to, from, head);
            to += head;
            from += head;
            size -= head;
            for (; size >= kLine; size -= kLine, to += kLine, from += kLine) {
                const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
                const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 16));
                const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 32));
                const __m128i d = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 48));
                _mm_stream_si128(reinterpret_cast<__m128i*>(to), a);
                _mm_stream_si128(reinterpret_cast<__m128i*>(to + 16), b);
                _mm_stream_si128(reinterpret_cast<__m128i*>(to + 32), c);
                _mm_stream_si128(reinterpret_cast<__m128i*>(to + 48), d);
            }
        }
#endif
        std::memcpy(to, from, size);
    }
};

} // namespace Producer
} // namespace Orvan

#endif
