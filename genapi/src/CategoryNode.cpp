#include "CategoryNode.h"

#include <Base/GCException.h>
#include <GenApi/AccessModeHelpers.h>

#include <algorithm>

namespace GenApi {
namespace detail {

void CategoryNode::Link(const NodeDescription& description) {
    ValueNode<ICategory>::Link(description);
    for (const Property* property : description.FindAll("pFeature")) {
        Node* feature = Resolve(*property);
        m_features.push_back(feature);
        AddReadingChild(feature, false);
    }
}

EVisibility CategoryNode::GetVisibility() const {
    NodeMap::Access access(m_map);
    if (m_inVisibility)
        return Node::GetVisibility();
    m_inVisibility = true;
    EVisibility lowest = Invisible;
    for (Node* feature : m_features)
        lowest = std::min(lowest, feature->GetVisibility());
    m_inVisibility = false;
    return lowest;
}

// A category is unimplemented when none of its features is implemented (or it has none);
// features that are merely unavailable leave it readable. The features are asked in order until
// one is implemented, so a feature whose access mode fails to compute fails the category.
EAccessMode CategoryNode::MembersAccessMode() const {
    for (Node* feature : m_features)
        if (feature->GetAccessMode() != NI)
            return RW;
    return NI;
}

void CategoryNode::GetFeatures(FeatureList_t& features) const {
    NodeMap::Access access(m_map);
    features.clear();
    for (Node* node : m_features)
        if (auto* value = dynamic_cast<IValue*>(node))
            features.push_back(value);
}

gcstring CategoryNode::ToString(bool, bool) {
    throw LOGICAL_ERROR_EXCEPTION("Category '%s' has no value", Name().c_str());
}

void CategoryNode::FromString(const gcstring&, bool) {
    throw LOGICAL_ERROR_EXCEPTION("Category '%s' has no value", Name().c_str());
}

} // namespace detail
} // namespace GenApi
