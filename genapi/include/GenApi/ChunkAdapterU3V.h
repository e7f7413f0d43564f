// Chunk adapter for the USB3 Vision chunk layout: the GigE Vision trailer layout with
// little-endian chunk IDs and lengths.
#ifndef GENAPI_CHUNKADAPTERU3V_H
#define GENAPI_CHUNKADAPTERU3V_H

#include <GenApi/ChunkAdapter.h>

namespace GenApi {

class CChunkAdapterU3V : public CChunkAdapter {
public:
    explicit CChunkAdapterU3V(INodeMap* pNodeMap = nullptr, int64_t MaxChunkCacheSize = -1);
    ~CChunkAdapterU3V() override;

    bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) override;
    void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                      AttachStatistics_t* pAttachStatistics = nullptr) override;
};

} // namespace GenApi

#endif
