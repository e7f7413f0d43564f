#include "FloatRegNode.h"

#include <Base/GCException.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace GenApi {
namespace detail {

namespace {

// Brings bytes between the register's order and the host's (little-endian) order.
void ToHostOrder(std::vector<uint8_t>& bytes, EEndianess endianess) {
    if (endianess == BigEndian)
        std::reverse(bytes.begin(), bytes.end());
}

} // namespace

void FloatRegNode::Link(const NodeDescription& description) {
    FloatBase::Link(description);
    m_register.Link(*this, description);
}

double FloatRegNode::RawValue(bool, bool ignoreCache) {
    std::vector<uint8_t> bytes = m_register.Read(ignoreCache);
    ToHostOrder(bytes, m_register.Endianess());
    if (bytes.size() == 4) {
        float value;
        std::memcpy(&value, bytes.data(), 4);
        return value;
    }
    if (bytes.size() == 8) {
        double value;
        std::memcpy(&value, bytes.data(), 8);
        return value;
    }
    throw RUNTIME_EXCEPTION("Node '%s' has a register of %zu bytes; 4 or 8 are possible",
                            Name().c_str(), bytes.size());
}

double FloatRegNode::RawMin() {
    return m_register.Length() == 4 ? -std::numeric_limits<float>::max() : FloatBase::RawMin();
}

double FloatRegNode::RawMax() {
    return m_register.Length() == 4 ? std::numeric_limits<float>::max() : FloatBase::RawMax();
}

void FloatRegNode::WriteRaw(double value, bool) {
    int64_t length = m_register.Length();
    std::vector<uint8_t> bytes(length == 4 ? 4 : 8);
    if (length == 4) {
        float single = static_cast<float>(value);
        std::memcpy(bytes.data(), &single, 4);
    } else if (length == 8) {
        std::memcpy(bytes.data(), &value, 8);
    } else {
        throw RUNTIME_EXCEPTION("Node '%s' has a register of %lld bytes; 4 or 8 are possible",
                                Name().c_str(), static_cast<long long>(length));
    }
    ToHostOrder(bytes, m_register.Endianess());
    m_register.Write(bytes.data(), length);
}

} // namespace detail
} // namespace GenApi
