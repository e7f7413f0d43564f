#include "VirtualNetwork.h"

namespace Orvan {
namespace Producer {
namespace VirtualNetwork {

std::string InterfaceId(uint32_t index) {
    return "VirtualIF" + std::to_string(index);
}

std::string InterfaceDisplayName(const std::string& id) {
    return "Orvan virtual interface " + id;
}

uint64_t InterfaceMac(uint32_t index) {
    return 0x024F52560000ull | (index & 0xFFFF);
}

uint32_t InterfaceIp(uint32_t index) {
    return 0x7F000001u | ((index & 0xFFFF) << 8);
}

} // namespace VirtualNetwork
} // namespace Producer
} // namespace Orvan
