#include "NodeMap.h"

#include "NodeFactory.h"
#include "PortNode.h"

#include <Base/GCException.h>

#include <algorithm>

namespace GenApi {
namespace detail {

namespace {

constexpr int kMaxNesting = 1000;

} // namespace

NodeMap::NodeMap(const std::string& deviceName, const std::vector<NodeDescription>& descriptions)
    : m_deviceName(deviceName) {
    m_nodes.reserve(descriptions.size());
    for (const auto& description : descriptions) {
        auto node = CreateNode(*this, description);
        if (!m_byName.emplace(description.name, node.get()).second)
            throw RUNTIME_EXCEPTION("Node '%s' at line %u is defined twice",
                                    description.name.c_str(), description.line);
        m_nodes.push_back(std::move(node));
    }
    for (size_t i = 0; i < m_nodes.size(); ++i)
        m_nodes[i]->Link(descriptions[i]);
}

NodeMap::~NodeMap() = default;

Node* NodeMap::Find(const std::string& name) const {
    auto found = m_byName.find(name);
    return found == m_byName.end() ? nullptr : found->second;
}

void NodeMap::GetNodes(NodeList_t& nodes) const {
    Access access(*this);
    nodes.clear();
    nodes.reserve(m_nodes.size());
    for (const auto& node : m_nodes)
        nodes.push_back(node.get());
}

INode* NodeMap::GetNode(const gcstring& name) const {
    Access access(*this);
    return Find(name.str());
}

void NodeMap::InvalidateNodes() const {
    Access access(*this);
    for (const auto& node : m_nodes)
        node->Forget();
    for (const auto& node : m_nodes)
        node->FireCallbacks(cbPostInsideLock);
    for (const auto& node : m_nodes)
        if (node->HasCallbacks())
            QueueOutsideLock(node.get());
}

bool NodeMap::Connect(IPort* port, const gcstring& portName) const {
    Access access(*this);
    auto* portNode = dynamic_cast<PortNode*>(Find(portName.str()));
    if (!portNode)
        return false;
    portNode->SetPortImpl(port);
    return true;
}

bool NodeMap::Connect(IPort* port) const {
    Access access(*this);
    if (Find("Device") && Connect(port, "Device"))
        return true;
    for (const auto& node : m_nodes)
        if (auto* portNode = dynamic_cast<PortNode*>(node.get())) {
            portNode->SetPortImpl(port);
            return true;
        }
    return false;
}

void NodeMap::Poll(int64_t elapsedTime) {
    Access access(*this);
    for (const auto& node : m_nodes)
        node->Poll(elapsedTime);
}

void NodeMap::QueueOutsideLock(Node* node) const {
    if (std::find(m_pendingOutside.begin(), m_pendingOutside.end(), node) == m_pendingOutside.end())
        m_pendingOutside.push_back(node);
}

NodeMap::Access::Access(const NodeMap& map) : m_map(map) {
    m_map.m_lock.Lock();
    // Nodes reach each other through their links; a description whose links form a loop
    // would otherwise recurse until the stack is gone.
    if (m_map.m_depth >= kMaxNesting) {
        m_map.m_lock.Unlock();
        throw RUNTIME_EXCEPTION("Nodes refer to each other more than %d levels deep; the "
                                "description has a cycle",
                                kMaxNesting);
    }
    ++m_map.m_depth;
}

NodeMap::Access::~Access() {
    if (--m_map.m_depth > 0 || m_map.m_pendingOutside.empty()) {
        m_map.m_lock.Unlock();
        return;
    }
    std::vector<Node*> pending;
    pending.swap(m_map.m_pendingOutside);
    m_map.m_lock.Unlock();
    for (Node* node : pending) {
        try {
            node->FireCallbacks(cbPostOutsideLock);
        } catch (...) {
            // A destructor must not throw; a failing callback cannot be reported from here.
        }
    }
}

} // namespace detail
} // namespace GenApi
