// Chunk adapter for the trailer layouts of GigE Vision and USB3 Vision: each chunk's data is
// followed by its 32-bit chunk ID and 32-bit data length, and the chunks are found by walking
// from the buffer's end towards its start. The two transports differ only in the byte order of
// those two fields.
#ifndef GENAPI_CHUNKADAPTERTRAILER_H
#define GENAPI_CHUNKADAPTERTRAILER_H

#include <GenApi/ChunkAdapter.h>

namespace GenApi {

template <bool BigEndianTags>
class CChunkAdapterTrailer : public CChunkAdapter {
public:
    explicit CChunkAdapterTrailer(INodeMap* pNodeMap = nullptr, int64_t MaxChunkCacheSize = -1);
    ~CChunkAdapterTrailer() override;

    bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) override;
    void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                      AttachStatistics_t* pAttachStatistics = nullptr) override;
};

extern template class CChunkAdapterTrailer<true>;
extern template class CChunkAdapterTrailer<false>;

} // namespace GenApi

#endif
