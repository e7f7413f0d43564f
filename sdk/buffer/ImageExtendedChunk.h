// An image whose buffer also carries chunk data: one shared buffer part, image operations
// through Image, chunks through ChunkData.
#ifndef ORVAN_BUFFER_IMAGEEXTENDEDCHUNK_H
#define ORVAN_BUFFER_IMAGEEXTENDEDCHUNK_H

#include "ChunkData.h"
#include "Image.h"

namespace Orvan {

class ImageExtendedChunk : public virtual Image, public virtual ChunkData {
public:
    ImageExtendedChunk();
    ImageExtendedChunk(TLDataStream* pStream, void* hBuffer, GenApi::INodeMap* pChunkNodeMap,
                       const GenApi::CNodeMapFactory& chunkFactory = GenApi::CNodeMapFactory());
    explicit ImageExtendedChunk(ImageExtendedChunk* pSource);
    ~ImageExtendedChunk() override;

    ORVAN_FORWARD_IBUFFER(Image)
    // Checks the camera's ChunkCRC against the image's whole pixel bytes (padding excluded).
    bool VerifyCRC() override;
};

} // namespace Orvan

#endif
