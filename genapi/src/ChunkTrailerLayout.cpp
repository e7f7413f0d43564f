#include "ChunkTrailerLayout.h"

#include "ByteOrder.h"

namespace GenApi {
namespace detail {

namespace {

constexpr int64_t kTagBytes = 8;

} // namespace

bool FindTrailerChunks(const uint8_t* base, int64_t length, bool bigEndian,
                       std::vector<CChunkAdapter::ChunkLocation>& chunks) {
    chunks.clear();
    if (!base || length <= 0)
        return false;
    int64_t end = length;
    while (end > 0) {
        if (end < kTagBytes)
            return false;
        const uint8_t* tag = base + end - kTagBytes;
        uint32_t id = bigEndian ? ReadBigEndian32(tag) : ReadLittleEndian32(tag);
        uint32_t dataLength = bigEndian ? ReadBigEndian32(tag + 4) : ReadLittleEndian32(tag + 4);
        int64_t available = end - kTagBytes;
        if (dataLength > available)
            return false;
        int64_t offset = available - dataLength;
        chunks.push_back({id, offset, static_cast<int64_t>(dataLength)});
        end = offset;
    }
    return true;
}

} // namespace detail
} // namespace GenApi
