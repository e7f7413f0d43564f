#include "Datagram.h"

#include <cstring>

namespace MorluLog {

namespace {

constexpr char kMagic[4] = {'M', 'L', 'G', '1'};
constexpr size_t kHeaderSize = sizeof(kMagic) + sizeof(uint64_t);

} // namespace

std::string EncodeDatagram(uint64_t origin, const char* text) {
    std::string datagram(kMagic, sizeof(kMagic));
    datagram.append(reinterpret_cast<const char*>(&origin), sizeof(origin));
    datagram.append(text);
    return datagram;
}

bool DecodeDatagram(const char* data, size_t size, uint64_t& origin, std::string& text) {
    if (size < kHeaderSize || std::memcmp(data, kMagic, sizeof(kMagic)) != 0) {
        return false;
    }
    std::memcpy(&origin, data + sizeof(kMagic), sizeof(origin));
    text.assign(data + kHeaderSize, size - kHeaderSize);
    return true;
}

} // namespace MorluLog
