// Chunk adapter for buffers whose chunks the transport layer has already located (GenTL
// DSGetBufferChunkData), whatever their layout.
#ifndef GENAPI_CHUNKADAPTERGENERIC_H
#define GENAPI_CHUNKADAPTERGENERIC_H

#include <GenApi/ChunkAdapter.h>

#include <cstddef>

namespace GenApi {

// Binary-compatible with GenTL's S_SINGLE_CHUNK_DATA.
struct SingleChunkData_t {
    uint64_t ChunkID;
    ptrdiff_t ChunkOffset;
    size_t ChunkLength;
};

// The same with the chunk ID as hexadecimal text, as a description writes it.
struct SingleChunkDataStr_t {
    gcstring ChunkID;
    ptrdiff_t ChunkOffset;
    size_t ChunkLength;
};

class CChunkAdapterGeneric : public CChunkAdapter {
public:
    explicit CChunkAdapterGeneric(INodeMap* pNodeMap = nullptr, int64_t MaxChunkCacheSize = -1);
    ~CChunkAdapterGeneric() override;

    // A bare buffer says nothing about where its chunks are: never a known layout here.
    bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) override;
    void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                      AttachStatistics_t* pAttachStatistics = nullptr) override;
    // The chunks must lie inside the buffer; a negative offset or count is an invalid layout.
    void AttachBuffer(uint8_t* pBuffer, SingleChunkData_t* ChunkData, int64_t NumChunks,
                      AttachStatistics_t* pAttachStatistics = nullptr);
    void AttachBuffer(uint8_t* pBuffer, SingleChunkDataStr_t* ChunkData, int64_t NumChunks,
                      AttachStatistics_t* pAttachStatistics = nullptr);
};

} // namespace GenApi

#endif
