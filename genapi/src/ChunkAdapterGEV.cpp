#include <GenApi/ChunkAdapterGEV.h>

#include "ChunkTrailerLayout.h"

namespace GenApi {

namespace {

constexpr bool kBigEndianTags = true;

} // namespace

CChunkAdapterGEV::CChunkAdapterGEV(INodeMap* pNodeMap, int64_t MaxChunkCacheSize)
    : CChunkAdapter(pNodeMap, MaxChunkCacheSize) {}

CChunkAdapterGEV::~CChunkAdapterGEV() = default;

bool CChunkAdapterGEV::CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) {
    std::vector<ChunkLocation> chunks;
    return detail::FindTrailerChunks(pBuffer, BufferLength, kBigEndianTags, chunks);
}

void CChunkAdapterGEV::AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                                    AttachStatistics_t* pAttachStatistics) {
    std::vector<ChunkLocation> chunks;
    if (!detail::FindTrailerChunks(pBuffer, BufferLength, kBigEndianTags, chunks))
        ThrowInvalidLayout();
    AttachChunks(pBuffer, chunks, pAttachStatistics);
}

} // namespace GenApi
