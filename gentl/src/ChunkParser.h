// Finds the chunks of a GigE Vision chunk payload. The layout is read from the end: each chunk's
// data is followed by its 4-byte big-endian id and 4-byte big-endian length.
#ifndef ORVAN_GENTL_CHUNKPARSER_H
#define ORVAN_GENTL_CHUNKPARSER_H

#include <GenTL/GenTL.h>

#include <cstdint>
#include <vector>

namespace Orvan {
namespace Producer {

// The chunks in buffer order; GC_ERR_PARSING_CHUNK_DATA (thrown) when a length points outside
// the data.
std::vector<GenTL::SINGLE_CHUNK_DATA> ParseGigEChunks(const uint8_t* data, size_t size);

} // namespace Producer
} // namespace Orvan

#endif
