// The trailer chunk layout shared by GigE Vision and USB3 Vision: every chunk's data is
// followed by a 32-bit chunk ID and a 32-bit data length, so the chunks are found by walking
// from the end of the filled bytes towards the start.
#ifndef ORVAN_GENAPI_CHUNKTRAILERLAYOUT_H
#define ORVAN_GENAPI_CHUNKTRAILERLAYOUT_H

#include <GenApi/ChunkAdapter.h>

#include <vector>

namespace GenApi {
namespace detail {

// True when the chunks tile [0, length) exactly; `chunks` then lists them from the last one.
// An empty buffer, bytes left over before the first chunk, or a length reaching past the start
// make the layout invalid.
bool FindTrailerChunks(const uint8_t* base, int64_t length, bool bigEndian,
                       std::vector<CChunkAdapter::ChunkLocation>& chunks);

} // namespace detail
} // namespace GenApi

#endif
