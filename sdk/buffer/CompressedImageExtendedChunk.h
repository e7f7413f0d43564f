// A compressed image whose buffer also carries chunk data.
#ifndef ORVAN_BUFFER_COMPRESSEDIMAGEEXTENDEDCHUNK_H
#define ORVAN_BUFFER_COMPRESSEDIMAGEEXTENDEDCHUNK_H

#include "ChunkData.h"
#include "CompressedImage.h"

namespace Orvan {

class CompressedImageExtendedChunk : public virtual CompressedImage, public virtual ChunkData {
public:
    CompressedImageExtendedChunk();
    CompressedImageExtendedChunk(
        TLDataStream* pStream, void* hBuffer, GenApi::INodeMap* pChunkNodeMap,
        const GenApi::CNodeMapFactory& chunkFactory = GenApi::CNodeMapFactory());
    explicit CompressedImageExtendedChunk(CompressedImageExtendedChunk* pSource);
    ~CompressedImageExtendedChunk() override;

    ORVAN_FORWARD_IBUFFER(CompressedImage)
    // Checks the camera's ChunkCRC against the filled bytes.
    bool VerifyCRC() override;
};

} // namespace Orvan

#endif
