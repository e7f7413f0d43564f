#include "BooleanNode.h"

#include "TextParsing.h"

#include <Base/GCException.h>

#include <cinttypes>

namespace GenApi {
namespace detail {

BooleanNode::BooleanNode(NodeMap& map, const NodeDescription& description)
    : ValueNode<IBoolean>(map, description) {
    if (const Property* on = description.Find("OnValue"))
        m_onValue = ParseInt64(*on);
    if (const Property* off = description.Find("OffValue"))
        m_offValue = ParseInt64(*off);
}

void BooleanNode::Link(const NodeDescription& description) {
    ValueNode<IBoolean>::Link(description);
    m_value.Link(*this, description);
}

void BooleanNode::SetValue(bool value, bool verify) {
    NodeMap::Access access(m_map);
    CheckWritable();
    m_value.SetInt(value ? m_onValue : m_offValue, verify);
    Changed();
}

bool BooleanNode::GetValue(bool verify, bool ignoreCache) const {
    NodeMap::Access access(m_map);
    CheckReadable();
    int64_t value = m_value.GetInt(verify, ignoreCache);
    if (value == m_onValue)
        return true;
    if (value == m_offValue)
        return false;
    throw LOGICAL_ERROR_EXCEPTION("Value %" PRId64 " of node '%s' is neither its OnValue %" PRId64
                                  " nor its OffValue %" PRId64,
                                  value, Name().c_str(), m_onValue, m_offValue);
}

gcstring BooleanNode::ToString(bool verify, bool ignoreCache) {
    return GetValue(verify, ignoreCache) ? "1" : "0";
}

void BooleanNode::FromString(const gcstring& valueString, bool verify) {
    const std::string& text = valueString.str();
    if (text == "1" || text == "true" || text == "True" || text == "TRUE")
        return SetValue(true, verify);
    if (text == "0" || text == "false" || text == "False" || text == "FALSE")
        return SetValue(false, verify);
    throw INVALID_ARGUMENT_EXCEPTION("Node '%s': '%s' is not a boolean", Name().c_str(),
                                     text.c_str());
}

} // namespace detail
} // namespace GenApi
