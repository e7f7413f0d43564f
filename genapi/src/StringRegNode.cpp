#include "StringRegNode.h"

#include <Base/GCException.h>

#include <algorithm>

namespace GenApi {
namespace detail {

void StringRegNode::Link(const NodeDescription& description) {
    ValueNode<IString>::Link(description);
    m_register.Link(*this, description);
}

void StringRegNode::SetValue(const gcstring& value, bool) {
    NodeMap::Access access(m_map);
    CheckWritable();
    int64_t length = m_register.Length();
    if (static_cast<int64_t>(value.size()) > length)
        throw OUT_OF_RANGE_EXCEPTION("String of %zu characters does not fit into the %lld bytes "
                                     "of node '%s'",
                                     value.size(), static_cast<long long>(length), Name().c_str());
    std::vector<uint8_t> bytes(static_cast<size_t>(length), 0);
    std::copy(value.c_str(), value.c_str() + value.size(), bytes.begin());
    m_register.Write(bytes.data(), length);
    Changed();
}

IString& StringRegNode::operator=(const gcstring& value) {
    SetValue(value);
    return *this;
}

gcstring StringRegNode::GetValue(bool, bool ignoreCache) {
    NodeMap::Access access(m_map);
    CheckReadable();
    const std::vector<uint8_t>& bytes = m_register.Read(ignoreCache);
    auto end = std::find(bytes.begin(), bytes.end(), uint8_t{0});
    return gcstring(reinterpret_cast<const char*>(bytes.data()),
                    static_cast<size_t>(end - bytes.begin()));
}

int64_t StringRegNode::GetMaxLength() {
    NodeMap::Access access(m_map);
    return m_register.Length();
}

gcstring StringRegNode::ToString(bool verify, bool ignoreCache) {
    return GetValue(verify, ignoreCache);
}

void StringRegNode::FromString(const gcstring& valueString, bool verify) {
    SetValue(valueString, verify);
}

} // namespace detail
} // namespace GenApi
