#include "CompressedImageExtendedChunk.h"

namespace Orvan {

CompressedImageExtendedChunk::CompressedImageExtendedChunk() = default;

CompressedImageExtendedChunk::CompressedImageExtendedChunk(
    TLDataStream* pStream, void* hBuffer, GenApi::INodeMap* pChunkNodeMap,
    const GenApi::CNodeMapFactory& chunkFactory)
    : Buffer(pStream, hBuffer), CompressedImage(pStream, hBuffer),
      ChunkData(pStream, hBuffer, pChunkNodeMap, chunkFactory) {}

CompressedImageExtendedChunk::CompressedImageExtendedChunk(CompressedImageExtendedChunk* pSource)
    : Buffer(pSource), CompressedImage(pSource), ChunkData(pSource) {}

CompressedImageExtendedChunk::~CompressedImageExtendedChunk() = default;

bool CompressedImageExtendedChunk::VerifyCRC() {
    return VerifyChunkCRC(GetSizeFilled(), "CompressedImageExtendedChunk");
}

} // namespace Orvan
