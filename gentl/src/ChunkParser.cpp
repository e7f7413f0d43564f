#include "ChunkParser.h"

#include "GenTLError.h"

#include <algorithm>

namespace Orvan {
namespace Producer {

namespace {

constexpr size_t kTrailerSize = 8;

uint32_t BigEndian32(const uint8_t* bytes) {
    return uint32_t(bytes[0]) << 24 | uint32_t(bytes[1]) << 16 | uint32_t(bytes[2]) << 8 |
           uint32_t(bytes[3]);
}

} // namespace

std::vector<GenTL::SINGLE_CHUNK_DATA> ParseGigEChunks(const uint8_t* data, size_t size) {
    std::vector<GenTL::SINGLE_CHUNK_DATA> chunks;
    size_t end = size;
    while (end > 0) {
        if (end < kTrailerSize)
            throw GenTLError(GenTL::GC_ERR_PARSING_CHUNK_DATA,
                             "Chunk trailer cut off at offset " + std::to_string(end));
        uint32_t id = BigEndian32(data + end - kTrailerSize);
        uint32_t length = BigEndian32(data + end - 4);
        if (length > end - kTrailerSize)
            throw GenTLError(GenTL::GC_ERR_PARSING_CHUNK_DATA,
                             "Chunk length " + std::to_string(length) + " exceeds the data");
        end -= kTrailerSize + length;
        GenTL::SINGLE_CHUNK_DATA chunk;
        chunk.ChunkID = id;
        chunk.ChunkOffset = static_cast<ptrdiff_t>(end);
        chunk.ChunkLength = length;
        chunks.push_back(chunk);
    }
    std::reverse(chunks.begin(), chunks.end());
    return chunks;
}

} // namespace Producer
} // namespace Orvan
