// A buffer that carries chunk data only, parsed against the device's node map on first use.
#ifndef ORVAN_BUFFER_CHUNKDATA_H
#define ORVAN_BUFFER_CHUNKDATA_H

#include "Buffer.h"

#include <Orvan/IChunkData.h>

#include <GenApi/INodeMap.h>

namespace GenApi {
class CChunkAdapterGEV;
}

namespace Orvan {

class ChunkData : public IChunkData, public virtual Buffer {
public:
    ChunkData();
    ChunkData(TLDataStream* pStream, void* hBuffer, GenApi::INodeMap* pChunkNodeMap);
    // A detached copy of the buffer part, parsed against the same node map.
    explicit ChunkData(ChunkData* pSource);
    ~ChunkData() override;

    ORVAN_FORWARD_IBUFFER(Buffer)
    bool VerifyCRC() override;
    GenApi::INode* GetChunk(GenICam::gcstring name) override;

protected:
    // The check of a buffer that carries image data and a ChunkCRC over its first `length`
    // bytes; `file` names the checking class in messages.
    bool VerifyChunkCRC(size_t length, const char* file);

private:
    // Attaches this buffer's chunks to a new adapter; false, with no adapter kept, when the
    // adapter rejects the buffer's layout.
    bool AttachChunks();

    GenApi::INodeMap* m_pChunkNodeMap;
    GenApi::CChunkAdapterGEV* m_pChunkAdapter;
};

} // namespace Orvan

#endif
