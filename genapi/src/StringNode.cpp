#include "StringNode.h"

#include <limits>

namespace GenApi {
namespace detail {

void StringNode::Link(const NodeDescription& description) {
    ValueNode<IString>::Link(description);
    m_value.Link(*this, description);
}

void StringNode::SetValue(const gcstring& value, bool verify) {
    NodeMap::Access access(m_map);
    CheckWritable();
    m_value.SetString(value.str(), verify);
    Changed();
}

IString& StringNode::operator=(const gcstring& value) {
    SetValue(value);
    return *this;
}

gcstring StringNode::GetValue(bool verify, bool ignoreCache) {
    NodeMap::Access access(m_map);
    CheckReadable();
    return m_value.GetString(verify, ignoreCache);
}

int64_t StringNode::GetMaxLength() {
    NodeMap::Access access(m_map);
    if (auto* text = dynamic_cast<IString*>(m_value.CurrentNode()))
        return text->GetMaxLength();
    return std::numeric_limits<int64_t>::max();
}

gcstring StringNode::ToString(bool verify, bool ignoreCache) {
    return GetValue(verify, ignoreCache);
}

void StringNode::FromString(const gcstring& valueString, bool verify) {
    SetValue(valueString, verify);
}

} // namespace detail
} // namespace GenApi
