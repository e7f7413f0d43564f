#include <GenApi/ChunkAdapterTrailer.h>

#include "ChunkTrailerLayout.h"

namespace GenApi {

template <bool BigEndianTags>
CChunkAdapterTrailer<BigEndianTags>::CChunkAdapterTrailer(INodeMap* pNodeMap,
                                                          int64_t MaxChunkCacheSize)
    : CChunkAdapter(pNodeMap, MaxChunkCacheSize) {}

template <bool BigEndianTags>
CChunkAdapterTrailer<BigEndianTags>::~CChunkAdapterTrailer() = default;

template <bool BigEndianTags>
bool CChunkAdapterTrailer<BigEndianTags>::CheckBufferLayout(uint8_t* pBuffer,
                                                            int64_t BufferLength) {
    std::vector<ChunkLocation> chunks;
    return detail::FindTrailerChunks(pBuffer, BufferLength, BigEndianTags, chunks);
}

template <bool BigEndianTags>
void CChunkAdapterTrailer<BigEndianTags>::AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                                                       AttachStatistics_t* pAttachStatistics) {
    std::vector<ChunkLocation> chunks;
    if (!detail::FindTrailerChunks(pBuffer, BufferLength, BigEndianTags, chunks))
        ThrowInvalidLayout();
    AttachChunks(pBuffer, chunks, pAttachStatistics);
}

template class CChunkAdapterTrailer<true>;
template class CChunkAdapterTrailer<false>;

} // namespace GenApi
