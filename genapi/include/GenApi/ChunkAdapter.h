// Binds the chunk data of delivered buffers to the chunk ports of a node map, so that chunk
// features read the values of the buffer attached last.
#ifndef GENAPI_CHUNKADAPTER_H
#define GENAPI_CHUNKADAPTER_H

#include <GenApi/INodeMap.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace GenApi {

struct AttachStatistics_t {
    int NumChunkPorts;     // chunk ports found in the node map
    int NumChunks;         // chunks found in the buffer
    int NumAttachedChunks; // chunks of the buffer bound to at least one port
};

// The node map must outlive the adapter, or be detached from it first: the map's chunk ports
// read through the adapter until then.
class CChunkAdapter {
public:
    struct ChunkLocation {
        uint64_t id;
        int64_t offset; // from the buffer's base
        int64_t length;
    };

    virtual ~CChunkAdapter();
    CChunkAdapter(const CChunkAdapter&) = delete;
    CChunkAdapter& operator=(const CChunkAdapter&) = delete;

    void AttachNodeMap(INodeMap* nodeMap);
    void DetachNodeMap();

    virtual bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) = 0;
    // Throws RuntimeException "Invalid layout of buffer attached to chunk parser!" when the
    // buffer does not hold chunks in this adapter's layout; the previous buffer stays attached.
    virtual void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                              AttachStatistics_t* pAttachStatistics = nullptr) = 0;
    // Chunks kept in a port's cache (CacheChunkData) stay readable until ClearCaches.
    void DetachBuffer();
    // The same chunk layout now lies at another address.
    void UpdateBuffer(uint8_t* pBaseAddress);
    void ClearCaches();

protected:
    // maxChunkCacheSize: the longest chunk a caching port copies; -1 for no limit.
    explicit CChunkAdapter(INodeMap* nodeMap = nullptr, int64_t maxChunkCacheSize = -1);

    // Binds every port to the chunk of its ID (the first one listed wins) and unbinds the rest,
    // then invalidates every chunk port so that the features read the new values.
    void AttachChunks(uint8_t* base, const std::vector<ChunkLocation>& chunks,
                      AttachStatistics_t* statistics);
    [[noreturn]] static void ThrowInvalidLayout();

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace GenApi

#endif
