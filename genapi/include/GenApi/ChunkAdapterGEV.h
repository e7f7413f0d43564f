// Chunk adapter for the GigE Vision chunk layout: chunk IDs and lengths are big-endian.
#ifndef GENAPI_CHUNKADAPTERGEV_H
#define GENAPI_CHUNKADAPTERGEV_H

#include <GenApi/ChunkAdapterTrailer.h>

namespace GenApi {

class CChunkAdapterGEV : public CChunkAdapterTrailer<true> {
public:
    using CChunkAdapterTrailer::CChunkAdapterTrailer;
};

} // namespace GenApi

#endif
