// A buffer that carries chunk data only, parsed against a chunk node map on first use.
#ifndef ORVAN_BUFFER_CHUNKDATA_H
#define ORVAN_BUFFER_CHUNKDATA_H

#include "Buffer.h"

#include <Orvan/IChunkData.h>

#include <GenApi/INodeMap.h>
#include <GenApi/NodeMapFactory.h>

#include <memory>

namespace GenApi {
class CChunkAdapterGEV;
}

namespace Orvan {

class ChunkData : public IChunkData, public virtual Buffer {
public:
    ChunkData();
    // The chunks are parsed against pChunkNodeMap, which must outlive this buffer. chunkFactory
    // is the description that map was made from: a copy, which outlives the map, makes its own
    // from it. Without one a copy has no chunks.
    ChunkData(TLDataStream* pStream, void* hBuffer, GenApi::INodeMap* pChunkNodeMap,
              const GenApi::CNodeMapFactory& chunkFactory = GenApi::CNodeMapFactory());
    // A detached copy: its own bytes, parsed against a node map of its own.
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
    struct NodeMapDestroyer {
        void operator()(GenApi::INodeMap* nodeMap) const noexcept;
    };

    // The map the chunks are parsed against, or null when there is none.
    GenApi::INodeMap* ChunkNodeMap();
    // Attaches this buffer's chunks to a new adapter; false, with no adapter kept, when the
    // adapter rejects the buffer's layout.
    bool AttachChunks(GenApi::INodeMap* nodeMap);

    GenApi::CNodeMapFactory m_chunkFactory;
    std::unique_ptr<GenApi::INodeMap, NodeMapDestroyer> m_ownChunkNodeMap;
    GenApi::INodeMap* m_pChunkNodeMap;
    // Declared after the maps so that it goes first: it unbinds itself from their nodes.
    std::unique_ptr<GenApi::CChunkAdapterGEV> m_pChunkAdapter;
};

} // namespace Orvan

#endif
