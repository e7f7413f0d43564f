// Chunk adapter for the USB3 Vision chunk layout: chunk IDs and lengths are little-endian.
#ifndef GENAPI_CHUNKADAPTERU3V_H
#define GENAPI_CHUNKADAPTERU3V_H

#include <GenApi/ChunkAdapterTrailer.h>

namespace GenApi {

class CChunkAdapterU3V : public CChunkAdapterTrailer<false> {
public:
    using CChunkAdapterTrailer::CChunkAdapterTrailer;
};

} // namespace GenApi

#endif
