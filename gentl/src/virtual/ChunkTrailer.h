// Writes chunk data in the GigE Vision layout: each chunk's data followed by its 4-byte
// big-endian chunk ID and 4-byte big-endian data length, so a parser walks the payload backwards
// from the end of the filled bytes. The image itself is the first chunk, under its own ID.
#ifndef ORVAN_GENTL_VIRTUAL_CHUNKTRAILER_H
#define ORVAN_GENTL_VIRTUAL_CHUNKTRAILER_H

#include "Crc32.h"

#include <cstddef>
#include <cstdint>

namespace Orvan {
namespace Producer {

class ChunkTrailer {
public:
    ChunkTrailer(uint8_t* buffer, size_t capacity); // writes from buffer[0] on
    // Appends data + id + length; false (nothing written) when it would not fit.
    bool Append(uint32_t chunkId, const void* data, uint32_t length);
    // Appends the tag of data already written in place at the current position (the image).
    bool AppendInPlace(uint32_t chunkId, uint32_t length);
    size_t Size() const { return m_size; }

private:
    bool Fits(uint32_t length) const;
    void WriteTag(uint32_t chunkId, uint32_t length);

    uint8_t* m_buffer;
    size_t m_capacity;
    size_t m_size = 0;
};

} // namespace Producer
} // namespace Orvan

#endif
