#include "AddressText.h"

#include <cstdio>

namespace Orvan {

GenICam::gcstring Ipv4Text(uint64_t address) {
    char text[16];
    std::snprintf(text, sizeof(text), "%u.%u.%u.%u", unsigned(address >> 24 & 0xFF),
                  unsigned(address >> 16 & 0xFF), unsigned(address >> 8 & 0xFF),
                  unsigned(address & 0xFF));
    return text;
}

GenICam::gcstring MacText(uint64_t address) {
    char text[18];
    std::snprintf(text, sizeof(text), "%02x:%02x:%02x:%02x:%02x:%02x",
                  unsigned(address >> 40 & 0xFF), unsigned(address >> 32 & 0xFF),
                  unsigned(address >> 24 & 0xFF), unsigned(address >> 16 & 0xFF),
                  unsigned(address >> 8 & 0xFF), unsigned(address & 0xFF));
    return text;
}

} // namespace Orvan
