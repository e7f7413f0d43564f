// The standard CRC-32 (IEEE 802.3) that cameras put in their ChunkCRC.
#ifndef ORVAN_CRC32_H
#define ORVAN_CRC32_H

#include <cstddef>
#include <cstdint>

namespace Orvan {

// CRC-32 of nBytes bytes from pData. Throws GenICam::InvalidArgumentException for a null pointer
// or an empty range.
uint32_t CalculateCRC32(const uint8_t* pData, size_t nBytes);

} // namespace Orvan

#endif
