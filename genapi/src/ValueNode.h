// The IValue members every value-carrying node kind shares.
#ifndef ORVAN_GENAPI_VALUENODE_H
#define ORVAN_GENAPI_VALUENODE_H

#include "Node.h"
#include "NodeMap.h"

namespace GenApi {
namespace detail {

template <class Interface>
class ValueNode : public Node, public Interface {
public:
    using Node::Node;

    INode* GetNode() override { return this; }
    bool IsValueCacheValid() const override {
        NodeMap::Access access(m_map);
        return CacheValid();
    }
};

} // namespace detail
} // namespace GenApi

#endif
