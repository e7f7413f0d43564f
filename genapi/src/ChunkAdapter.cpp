#include <GenApi/ChunkAdapter.h>

#include "DataPort.h"
#include "HexId.h"

#include <Base/GCException.h>
#include <GenApi/Synch.h>

#include <vector>

namespace GenApi {

namespace {

struct ChunkBinding {
    INode* node;
    IPortConstruct* portNode;
    uint64_t chunkId;
    bool cache;
    std::unique_ptr<detail::DataPort> port;
};

bool PropertyText(INode* node, const char* name, std::string& text) {
    gcstring value, attribute;
    if (!node->GetProperty(name, value, attribute))
        return false;
    text = value.str();
    return true;
}

} // namespace

class CChunkAdapter::Impl {
public:
    explicit Impl(int64_t maxChunkCacheSize) : m_maxCache(maxChunkCacheSize) {}

    void Attach(INodeMap* nodeMap) {
        m_map = nodeMap;
        NodeList_t nodes;
        nodeMap->GetNodes(nodes);
        for (INode* node : nodes) {
            auto* portNode = dynamic_cast<IPortConstruct*>(node);
            std::string text;
            uint64_t chunkId = 0;
            if (!portNode || !PropertyText(node, "ChunkID", text) ||
                !detail::ParseHexId(text, chunkId))
                continue;
            bool cache = PropertyText(node, "CacheChunkData", text) && text == "Yes";
            m_bindings.push_back(
                {node, portNode, chunkId, cache, std::make_unique<detail::DataPort>()});
        }
        for (ChunkBinding& binding : m_bindings)
            binding.portNode->SetPortImpl(binding.port.get());
    }

    void Detach() {
        for (ChunkBinding& binding : m_bindings)
            binding.portNode->SetPortImpl(nullptr);
        m_bindings.clear();
        m_map = nullptr;
    }

    // Changes the ports under the map's lock, so that no feature reads half a change, and
    // invalidates them after it, so that callbacks run as after any other change of the map.
    template <class Change>
    void Modify(Change change) {
        if (!m_map)
            return;
        {
            AutoLock lock(m_map->GetLock());
            change();
        }
        for (ChunkBinding& binding : m_bindings)
            binding.node->InvalidateNode();
    }

    template <class Change>
    void ModifyEach(Change change) {
        Modify([&] {
            for (ChunkBinding& binding : m_bindings)
                change(*binding.port);
        });
    }

    int AttachChunks(uint8_t* base, const std::vector<ChunkLocation>& chunks) {
        int attached = 0;
        Modify([&] {
            for (ChunkBinding& binding : m_bindings)
                binding.port->Detach();
            for (const ChunkLocation& chunk : chunks)
                attached += Bind(base, chunk) ? 1 : 0;
        });
        return attached;
    }

    int NumPorts() const { return static_cast<int>(m_bindings.size()); }

private:
    bool Bind(uint8_t* base, const ChunkLocation& chunk) {
        bool bound = false;
        for (ChunkBinding& binding : m_bindings) {
            if (binding.chunkId != chunk.id || binding.port->Attached())
                continue;
            if (binding.cache && (m_maxCache < 0 || chunk.length <= m_maxCache))
                binding.port->AttachCopy(base + chunk.offset, chunk.length);
            else
                binding.port->AttachView(base, chunk.offset, chunk.length);
            bound = true;
        }
        return bound;
    }

    int64_t m_maxCache;
    INodeMap* m_map = nullptr;
    std::vector<ChunkBinding> m_bindings;
};

CChunkAdapter::CChunkAdapter(INodeMap* nodeMap, int64_t maxChunkCacheSize)
    : m_impl(std::make_unique<Impl>(maxChunkCacheSize)) {
    if (nodeMap)
        m_impl->Attach(nodeMap);
}

CChunkAdapter::~CChunkAdapter() {
    m_impl->Detach();
}

void CChunkAdapter::AttachNodeMap(INodeMap* nodeMap) {
    m_impl->Detach();
    if (nodeMap)
        m_impl->Attach(nodeMap);
}

void CChunkAdapter::DetachNodeMap() {
    m_impl->Detach();
}

void CChunkAdapter::DetachBuffer() {
    m_impl->ModifyEach([](detail::DataPort& port) {
        if (!port.IsCopy())
            port.Detach();
    });
}

void CChunkAdapter::UpdateBuffer(uint8_t* pBaseAddress) {
    m_impl->ModifyEach([pBaseAddress](detail::DataPort& port) { port.Rebase(pBaseAddress); });
}

void CChunkAdapter::ClearCaches() {
    m_impl->ModifyEach([](detail::DataPort& port) {
        if (port.IsCopy())
            port.Detach();
    });
}

void CChunkAdapter::AttachChunks(uint8_t* base, const std::vector<ChunkLocation>& chunks,
                                 AttachStatistics_t* statistics) {
    int attached = m_impl->AttachChunks(base, chunks);
    if (statistics) {
        statistics->NumChunkPorts = m_impl->NumPorts();
        statistics->NumChunks = static_cast<int>(chunks.size());
        statistics->NumAttachedChunks = attached;
    }
}

void CChunkAdapter::ThrowInvalidLayout() {
    throw RUNTIME_EXCEPTION("Invalid layout of buffer attached to chunk parser!");
}

} // namespace GenApi
