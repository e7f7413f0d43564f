#include "FloatNode.h"

#include "ValueAccess.h"

#include <GenApi/IInteger.h>

namespace GenApi {
namespace detail {

void FloatNode::Link(const NodeDescription& description) {
    FloatBase::Link(description);
    m_value.Link(*this, description);
    m_min.Link(*this, description, "Min", "pMin");
    m_max.Link(*this, description, "Max", "pMax");
    m_inc.Link(*this, description, "Inc", "pInc");
}

// Without limits of its own the node has those of the nodes holding its value.
double FloatNode::RawMin() {
    return m_min.IsSet() ? m_min.GetFloat() : m_value.CommonMin(FloatBase::RawMin());
}

double FloatNode::RawMax() {
    return m_max.IsSet() ? m_max.GetFloat() : m_value.CommonMax(FloatBase::RawMax());
}

} // namespace detail
} // namespace GenApi

namespace GenApi {
namespace detail {

// Without an increment of its own the node steps as the node holding its value does.
bool FloatNode::RawHasInc() {
    if (m_inc.IsSet())
        return true;
    Node* node = m_value.LimitsNode();
    if (dynamic_cast<IInteger*>(node))
        return true;
    auto* real = dynamic_cast<IFloat*>(node);
    return real && real->HasInc();
}

double FloatNode::RawInc() {
    if (m_inc.IsSet())
        return m_inc.GetFloat();
    Node* node = m_value.LimitsNode();
    if (auto* integer = dynamic_cast<IInteger*>(node))
        return static_cast<double>(integer->GetInc());
    return dynamic_cast<IFloat&>(*node).GetInc();
}

} // namespace detail
} // namespace GenApi
