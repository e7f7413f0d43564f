// The wire form of one record: a magic tag, the sending handle's origin and the record text.
// Records never leave the machine, so the origin travels in host byte order.
#ifndef MORLULOG_DATAGRAM_H
#define MORLULOG_DATAGRAM_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace MorluLog {

// Every record is sent to this address: the broadcast address of the loopback network, so that
// each process listening on a port receives its own copy.
constexpr const char* kLoopbackBroadcast = "127.255.255.255";

// The largest datagram a socket of the loopback network takes.
constexpr size_t kMaxDatagramSize = 65507;

std::string EncodeDatagram(uint64_t origin, const char* text);

// False if the bytes are not a datagram of this transport.
bool DecodeDatagram(const char* data, size_t size, uint64_t& origin, std::string& text);

} // namespace MorluLog

#endif
