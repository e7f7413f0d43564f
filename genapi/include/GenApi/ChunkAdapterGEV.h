// Chunk adapter for the GigE Vision chunk layout: each chunk's data is followed by its 32-bit
// chunk ID and 32-bit data length, big-endian, and the chunks are found from the buffer's end.
#ifndef GENAPI_CHUNKADAPTERGEV_H
#define GENAPI_CHUNKADAPTERGEV_H

#include <GenApi/ChunkAdapter.h>

namespace GenApi {

class CChunkAdapterGEV : public CChunkAdapter {
public:
    explicit CChunkAdapterGEV(INodeMap* pNodeMap = nullptr, int64_t MaxChunkCacheSize = -1);
    ~CChunkAdapterGEV() override;

    bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) override;
    void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                      AttachStatistics_t* pAttachStatistics = nullptr) override;
};

} // namespace GenApi

#endif
