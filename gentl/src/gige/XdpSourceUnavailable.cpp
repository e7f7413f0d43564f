// Stands in for the AF_XDP receive path where the build found no libxdp or libbpf.
#include "XdpSource.h"

namespace Orvan {
namespace Producer {

std::unique_ptr<PacketSource> XdpSource::Open(uint32_t, uint16_t, uint32_t, Mode,
                                              std::string& why) {
    why = "this build has no AF_XDP support (libxdp and libbpf were missing)";
    return nullptr;
}

} // namespace Producer
} // namespace Orvan
