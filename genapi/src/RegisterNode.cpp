#include "RegisterNode.h"

#include <Base/GCException.h>

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace GenApi {
namespace detail {

void RegisterNode::Link(const NodeDescription& description) {
    ValueNode<IRegister>::Link(description);
    m_register.Link(*this, description);
}

void RegisterNode::Set(const uint8_t* buffer, int64_t length, bool) {
    NodeMap::Access access(m_map);
    CheckWritable();
    if (length != m_register.Length())
        throw OUT_OF_RANGE_EXCEPTION("Node '%s' is %lld bytes long, not %lld", Name().c_str(),
                                     static_cast<long long>(m_register.Length()),
                                     static_cast<long long>(length));
    m_register.Write(buffer, length);
    Changed();
}

void RegisterNode::Get(uint8_t* buffer, int64_t length, bool, bool ignoreCache) {
    NodeMap::Access access(m_map);
    CheckReadable();
    const std::vector<uint8_t>& bytes = m_register.Read(ignoreCache);
    if (length > static_cast<int64_t>(bytes.size()))
        throw OUT_OF_RANGE_EXCEPTION("Node '%s' is %zu bytes long, not %lld", Name().c_str(),
                                     bytes.size(), static_cast<long long>(length));
    std::copy(bytes.begin(), bytes.begin() + length, buffer);
}

int64_t RegisterNode::GetLength() {
    NodeMap::Access access(m_map);
    return m_register.Length();
}

int64_t RegisterNode::GetAddress() {
    NodeMap::Access access(m_map);
    return m_register.Address();
}

gcstring RegisterNode::ToString(bool, bool ignoreCache) {
    NodeMap::Access access(m_map);
    CheckReadable();
    const std::vector<uint8_t>& bytes = m_register.Read(ignoreCache);
    std::string text = "0x";
    char digits[3];
    for (uint8_t byte : bytes) {
        std::snprintf(digits, sizeof digits, "%02x", byte);
        text += digits;
    }
    return text;
}

void RegisterNode::FromString(const gcstring& valueString, bool verify) {
    std::string text = valueString.str();
    if (text.size() >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X'))
        text.erase(0, 2);
    if (text.size() % 2 != 0 ||
        !std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isxdigit(c); }))
        throw INVALID_ARGUMENT_EXCEPTION("Node '%s': '%s' is not a hexadecimal byte string",
                                         Name().c_str(), valueString.c_str());
    std::vector<uint8_t> bytes(text.size() / 2);
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<uint8_t>(std::stoul(text.substr(2 * i, 2), nullptr, 16));
    Set(bytes.data(), static_cast<int64_t>(bytes.size()), verify);
}

} // namespace detail
} // namespace GenApi
