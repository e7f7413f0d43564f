#include <GenApi/EventAdapter.h>

#include "DataPort.h"
#include "HexId.h"

#include <GenApi/Synch.h>

#include <algorithm>
#include <cctype>
#include <vector>

namespace GenApi {

namespace {

// An EventID as written in the description; the number when the text is hexadecimal.
struct EventKey {
    std::string text;
    bool numeric = false;
    uint64_t id = 0;

    explicit EventKey(const std::string& value) : text(value) {
        numeric = detail::ParseHexId(value, id);
    }
    bool Matches(const EventKey& other) const {
        if (numeric || other.numeric)
            return numeric && other.numeric && id == other.id;
        return text.size() == other.text.size() &&
               std::equal(text.begin(), text.end(), other.text.begin(), [](char a, char b) {
                   return std::tolower(static_cast<unsigned char>(a)) ==
                          std::tolower(static_cast<unsigned char>(b));
               });
    }
};

struct EventNode {
    INode* node;
    EventKey key;
    IPortConstruct* portNode; // null for nodes that only carry the EventID
    std::unique_ptr<detail::DataPort> port;
};

} // namespace

class CEventAdapter::Impl {
public:
    void Attach(INodeMap* nodeMap) {
        m_map = nodeMap;
        NodeList_t nodes;
        nodeMap->GetNodes(nodes);
        for (INode* node : nodes) {
            std::string eventId = node->GetEventID().str();
            if (eventId.empty())
                continue;
            auto* portNode = dynamic_cast<IPortConstruct*>(node);
            m_nodes.push_back({node, EventKey(eventId), portNode,
                               portNode ? std::make_unique<detail::DataPort>() : nullptr});
        }
        for (EventNode& entry : m_nodes)
            if (entry.portNode)
                entry.portNode->SetPortImpl(entry.port.get());
    }

    void Detach() {
        for (EventNode& entry : m_nodes)
            if (entry.portNode)
                entry.portNode->SetPortImpl(nullptr);
        m_nodes.clear();
        m_map = nullptr;
    }

    // The data changes under the map's lock; the invalidation, which runs the callbacks, after
    // it, so that callbacks meant to run outside the lock do.
    void Deliver(const EventKey& key, const uint8_t* data, size_t length) {
        if (!m_map)
            return;
        std::vector<INode*> changed;
        {
            AutoLock lock(m_map->GetLock());
            for (EventNode& entry : m_nodes) {
                if (!entry.key.Matches(key))
                    continue;
                if (entry.port)
                    entry.port->AttachCopy(data, static_cast<int64_t>(length));
                changed.push_back(entry.node);
            }
        }
        for (INode* node : changed)
            node->InvalidateNode();
    }

private:
    INodeMap* m_map = nullptr;
    std::vector<EventNode> m_nodes;
};

CEventAdapter::CEventAdapter(INodeMap* pNodeMap) : m_impl(std::make_unique<Impl>()) {
    if (pNodeMap)
        m_impl->Attach(pNodeMap);
}

CEventAdapter::~CEventAdapter() {
    m_impl->Detach();
}

void CEventAdapter::AttachNodeMap(INodeMap* pNodeMap) {
    m_impl->Detach();
    if (pNodeMap)
        m_impl->Attach(pNodeMap);
}

void CEventAdapter::DetachNodeMap() {
    m_impl->Detach();
}

void CEventAdapter::DeliverEvent(uint64_t eventId, const uint8_t* data, size_t length) {
    EventKey key("");
    key.numeric = true;
    key.id = eventId;
    m_impl->Deliver(key, data, length);
}

void CEventAdapter::DeliverEvent(const gcstring& eventId, const uint8_t* data, size_t length) {
    m_impl->Deliver(EventKey(eventId.str()), data, length);
}

} // namespace GenApi
