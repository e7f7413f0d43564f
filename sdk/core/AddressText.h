// Text forms of the network addresses in device and interface records.
#ifndef ORVAN_CORE_ADDRESSTEXT_H
#define ORVAN_CORE_ADDRESSTEXT_H

#include <Base/GCString.h>

#include <cstdint>

namespace Orvan {

// Dotted decimal of the low 32 bits, first octet most significant: "192.168.0.1".
GenICam::gcstring Ipv4Text(uint64_t address);

// The low 48 bits as six lower-case hexadecimal pairs, most significant first:
// "02:00:5e:0a:12:ab".
GenICam::gcstring MacText(uint64_t address);

} // namespace Orvan

#endif
