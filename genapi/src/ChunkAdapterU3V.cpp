#include <GenApi/ChunkAdapterU3V.h>

#include "ChunkTrailerLayout.h"

namespace GenApi {

namespace {

constexpr bool kBigEndianTags = false;

} // namespace

CChunkAdapterU3V::CChunkAdapterU3V(INodeMap* pNodeMap, int64_t MaxChunkCacheSize)
    : CChunkAdapter(pNodeMap, MaxChunkCacheSize) {}

CChunkAdapterU3V::~CChunkAdapterU3V() = default;

bool CChunkAdapterU3V::CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) {
    std::vector<ChunkLocation> chunks;
    return detail::FindTrailerChunks(pBuffer, BufferLength, kBigEndianTags, chunks);
}

void CChunkAdapterU3V::AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                                    AttachStatistics_t* pAttachStatistics) {
    std::vector<ChunkLocation> chunks;
    if (!detail::FindTrailerChunks(pBuffer, BufferLength, kBigEndianTags, chunks))
        ThrowInvalidLayout();
    AttachChunks(pBuffer, chunks, pAttachStatistics);
}

} // namespace GenApi
