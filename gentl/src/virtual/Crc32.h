// The CRC-32 that GigE Vision chunk data carries, computed with ISA-L's vectorised routine.
#ifndef ORVAN_GENTL_VIRTUAL_CRC32_H
#define ORVAN_GENTL_VIRTUAL_CRC32_H

#include <cstddef>
#include <cstdint>

namespace Orvan {
namespace Producer {

// The standard CRC-32 (reflected, polynomial 0x04C11DB7, init and xorout 0xFFFFFFFF; the check
// value of "123456789" is 0xCBF43926).
uint32_t Crc32(const void* data, size_t size);

} // namespace Producer
} // namespace Orvan

#endif
