// The node map: owns the nodes, finds them by name, holds the lock and runs callbacks that must
// fire after the lock is released.
#ifndef ORVAN_GENAPI_NODEMAP_H
#define ORVAN_GENAPI_NODEMAP_H

#include "Node.h"
#include "NodeDescription.h"

#include <GenApi/IDestroy.h>
#include <GenApi/INodeMap.h>

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace GenApi {
namespace detail {

class NodeMap : public INodeMap, public IDestroy {
public:
    // Builds every node; throws (leaving nothing behind) when the description is inconsistent.
    NodeMap(const std::string& deviceName, const std::vector<NodeDescription>& descriptions);
    ~NodeMap() override;

    void GetNodes(NodeList_t& nodes) const override;
    INode* GetNode(const gcstring& name) const override;
    void InvalidateNodes() const override;
    bool Connect(IPort* port, const gcstring& portName) const override;
    bool Connect(IPort* port) const override;
    gcstring GetDeviceName() override { return m_deviceName; }
    void Poll(int64_t elapsedTime) override;
    CLock& GetLock() const override { return m_lock; }
    uint64_t GetNumNodes() const override { return m_nodes.size(); }
    void Destroy() override { delete this; }

    Node* Find(const std::string& name) const;

    // Every public entry point of a node holds one of these: it takes the lock and, when the
    // outermost one ends, releases it and then runs the callbacks queued for after the lock.
    class Access {
    public:
        explicit Access(const NodeMap& map);
        ~Access();
        Access(const Access&) = delete;
        Access& operator=(const Access&) = delete;

    private:
        const NodeMap& m_map;
    };
    void QueueOutsideLock(Node* node) const;

private:
    std::string m_deviceName;
    std::vector<std::unique_ptr<Node>> m_nodes;
    std::unordered_map<std::string, Node*> m_byName;
    mutable CLock m_lock;
    mutable int m_depth = 0;
    mutable std::vector<Node*> m_pendingOutside;
};

} // namespace detail
} // namespace GenApi

#endif
