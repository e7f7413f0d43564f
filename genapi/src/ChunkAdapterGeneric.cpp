#include <GenApi/ChunkAdapterGeneric.h>

#include "HexId.h"

#include <Base/GCException.h>

namespace GenApi {

namespace {

// Only the caller knows the buffer's size; what can be checked here is that every chunk starts
// at or after the base and that the list itself is usable.
template <class Chunk, class IdOf>
std::vector<CChunkAdapter::ChunkLocation> Locate(uint8_t* buffer, const Chunk* chunks,
                                                 int64_t count, IdOf idOf, bool& valid) {
    std::vector<CChunkAdapter::ChunkLocation> located;
    valid = buffer && count >= 0 && (chunks || count == 0);
    for (int64_t i = 0; valid && i < count; ++i) {
        const Chunk& chunk = chunks[i];
        valid = chunk.ChunkOffset >= 0 &&
                chunk.ChunkLength <=
                    static_cast<size_t>(INT64_MAX) - static_cast<size_t>(chunk.ChunkOffset);
        uint64_t id = 0;
        if (valid && idOf(chunk, id))
            located.push_back({id, static_cast<int64_t>(chunk.ChunkOffset),
                               static_cast<int64_t>(chunk.ChunkLength)});
    }
    return located;
}

} // namespace

CChunkAdapterGeneric::CChunkAdapterGeneric(INodeMap* pNodeMap, int64_t MaxChunkCacheSize)
    : CChunkAdapter(pNodeMap, MaxChunkCacheSize) {}

CChunkAdapterGeneric::~CChunkAdapterGeneric() = default;

bool CChunkAdapterGeneric::CheckBufferLayout(uint8_t*, int64_t) {
    return false;
}

void CChunkAdapterGeneric::AttachBuffer(uint8_t*, int64_t, AttachStatistics_t*) {
    ThrowInvalidLayout();
}

void CChunkAdapterGeneric::AttachBuffer(uint8_t* pBuffer, SingleChunkData_t* ChunkData,
                                        int64_t NumChunks, AttachStatistics_t* pAttachStatistics) {
    bool valid = false;
    auto chunks = Locate(
        pBuffer, ChunkData, NumChunks,
        [](const SingleChunkData_t& chunk, uint64_t& id) {
            id = chunk.ChunkID;
            return true;
        },
        valid);
    if (!valid)
        ThrowInvalidLayout();
    AttachChunks(pBuffer, chunks, pAttachStatistics);
}

// A chunk whose ID text is not hexadecimal cannot match any port; it still counts as a chunk.
void CChunkAdapterGeneric::AttachBuffer(uint8_t* pBuffer, SingleChunkDataStr_t* ChunkData,
                                        int64_t NumChunks, AttachStatistics_t* pAttachStatistics) {
    bool valid = false;
    auto chunks = Locate(
        pBuffer, ChunkData, NumChunks,
        [](const SingleChunkDataStr_t& chunk, uint64_t& id) {
            return detail::ParseHexId(chunk.ChunkID.str(), id);
        },
        valid);
    if (!valid)
        ThrowInvalidLayout();
    AttachChunks(pBuffer, chunks, pAttachStatistics);
    if (pAttachStatistics)
        pAttachStatistics->NumChunks = static_cast<int>(NumChunks);
}

} // namespace GenApi
