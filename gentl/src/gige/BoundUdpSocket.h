// A UDP socket bound to one local address at a port the kernel picks: what the host side of the
// message and stream channels listens on.
#ifndef ORVAN_GENTL_GIGE_BOUNDUDPSOCKET_H
#define ORVAN_GENTL_GIGE_BOUNDUDPSOCKET_H

#include <cstdint>

namespace Orvan {
namespace Producer {

// The descriptor, with the bound port in `port`; -1 when no socket could be bound.
int OpenBoundUdpSocket(uint32_t localIp, uint16_t& port);

} // namespace Producer
} // namespace Orvan

#endif
