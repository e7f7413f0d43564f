#include "IntegerNode.h"

#include "ValueAccess.h"

namespace GenApi {
namespace detail {

void IntegerNode::Link(const NodeDescription& description) {
    IntegerBase::Link(description);
    m_value.Link(*this, description);
    m_min.Link(*this, description, "Min", "pMin");
    m_max.Link(*this, description, "Max", "pMax");
    m_inc.Link(*this, description, "Inc", "pInc");
}

int64_t IntegerNode::RawValue(bool verify, bool ignoreCache) {
    return m_value.GetInt(verify, ignoreCache);
}

// Without limits of its own the node has those of the nodes holding its value.
int64_t IntegerNode::RawMin() {
    return m_min.IsSet() ? m_min.GetInt() : m_value.CommonMin(IntegerBase::RawMin());
}

int64_t IntegerNode::RawMax() {
    return m_max.IsSet() ? m_max.GetInt() : m_value.CommonMax(IntegerBase::RawMax());
}

int64_t IntegerNode::RawInc() {
    if (m_inc.IsSet())
        return m_inc.GetInt();
    Node* node = m_value.LimitsNode();
    return node ? ReadIntInc(node) : 1;
}

} // namespace detail
} // namespace GenApi
