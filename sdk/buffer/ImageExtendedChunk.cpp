#include "ImageExtendedChunk.h"

namespace Orvan {

ImageExtendedChunk::ImageExtendedChunk() = default;

ImageExtendedChunk::ImageExtendedChunk(TLDataStream* pStream, void* hBuffer,
                                       GenApi::INodeMap* pChunkNodeMap,
                                       const GenApi::CNodeMapFactory& chunkFactory)
    : Buffer(pStream, hBuffer), Image(pStream, hBuffer),
      ChunkData(pStream, hBuffer, pChunkNodeMap, chunkFactory) {}

// The shared buffer part is copied once, by the Buffer constructor of this most derived class.
ImageExtendedChunk::ImageExtendedChunk(ImageExtendedChunk* pSource)
    : Buffer(pSource), Image(pSource), ChunkData(pSource) {}

ImageExtendedChunk::~ImageExtendedChunk() = default;

bool ImageExtendedChunk::VerifyCRC() {
    const size_t length = (GetHeight() * GetBitsPerPixel()) * GetWidth() >> 3;
    return VerifyChunkCRC(length, "ImageExtendedChunk");
}

} // namespace Orvan
