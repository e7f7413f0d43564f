#include "IntRegNode.h"

#include "TextParsing.h"

#include <Base/GCException.h>

#include <cinttypes>

namespace GenApi {
namespace detail {

IntRegNode::IntRegNode(NodeMap& map, const NodeDescription& description)
    : IntegerBase(map, description) {
    m_masked = description.kind == "MaskedIntReg";
    for (const auto& property : description.properties) {
        if (property.name == "Sign")
            m_signed = ParseSign(property) == Signed;
        else if (property.name == "Bit")
            m_lsb = m_msb = ParseInt64(property);
        else if (property.name == "LSB")
            m_lsb = ParseInt64(property);
        else if (property.name == "MSB")
            m_msb = ParseInt64(property);
    }
    if (m_lsb < 0 || m_lsb > 63 || m_msb < 0 || m_msb > 63)
        throw RUNTIME_EXCEPTION("Node '%s' at line %u has a bit position outside 0..63",
                                description.name.c_str(), description.line);
}

void IntRegNode::Link(const NodeDescription& description) {
    IntegerBase::Link(description);
    m_register.Link(*this, description);
}

bool IntRegNode::CacheValid() const {
    return m_register.CacheValid() && CachingMode() != NoCache;
}

uint64_t IntRegNode::Assemble(const std::vector<uint8_t>& bytes) const {
    uint64_t raw = 0;
    size_t count = bytes.size() < 8 ? bytes.size() : 8;
    for (size_t i = 0; i < count; ++i) {
        size_t index = m_register.Endianess() == LittleEndian ? i : bytes.size() - 1 - i;
        raw |= static_cast<uint64_t>(bytes[index]) << (8 * i);
    }
    return raw;
}

std::vector<uint8_t> IntRegNode::Disassemble(uint64_t raw, size_t length) const {
    std::vector<uint8_t> bytes(length, 0);
    for (size_t i = 0; i < length && i < 8; ++i) {
        size_t index = m_register.Endianess() == LittleEndian ? i : length - 1 - i;
        bytes[index] = static_cast<uint8_t>(raw >> (8 * i));
    }
    return bytes;
}

unsigned IntRegNode::FieldShift(size_t length) const {
    if (!m_masked)
        return 0;
    // Big-endian descriptions number bits from the most significant bit of the register.
    if (m_register.Endianess() == BigEndian)
        return static_cast<unsigned>(static_cast<int64_t>(length * 8) - 1 -
                                     (m_lsb > m_msb ? m_lsb : m_msb));
    return static_cast<unsigned>(m_lsb < m_msb ? m_lsb : m_msb);
}

unsigned IntRegNode::FieldWidth(size_t length) const {
    if (!m_masked)
        return static_cast<unsigned>(length >= 8 ? 64 : length * 8);
    return static_cast<unsigned>((m_msb > m_lsb ? m_msb - m_lsb : m_lsb - m_msb) + 1);
}

int64_t IntRegNode::RawValue(bool, bool ignoreCache) {
    const std::vector<uint8_t>& bytes = m_register.Read(ignoreCache);
    if (bytes.empty() || bytes.size() > 8)
        throw OUT_OF_RANGE_EXCEPTION("Node '%s' has a register of %zu bytes; 1 to 8 are possible",
                                     Name().c_str(), bytes.size());
    unsigned shift = FieldShift(bytes.size());
    unsigned width = FieldWidth(bytes.size());
    uint64_t value = shift >= 64 ? 0 : Assemble(bytes) >> shift;
    if (width < 64) {
        value &= (uint64_t{1} << width) - 1;
        if (m_signed && (value >> (width - 1)) != 0)
            value |= ~((uint64_t{1} << width) - 1);
    }
    return static_cast<int64_t>(value);
}

void IntRegNode::WriteRaw(int64_t value, bool) {
    int64_t length = m_register.Length();
    if (length <= 0 || length > 8)
        throw OUT_OF_RANGE_EXCEPTION("Node '%s' has a register of %" PRId64
                                     " bytes; 1 to 8 are possible",
                                     Name().c_str(), length);
    size_t size = static_cast<size_t>(length);
    uint64_t raw = static_cast<uint64_t>(value);
    if (m_masked) {
        unsigned shift = FieldShift(size);
        unsigned width = FieldWidth(size);
        uint64_t mask = (width >= 64 ? ~uint64_t{0} : (uint64_t{1} << width) - 1) << shift;
        // Other fields may share this register through nodes with caches of their own, so only
        // the device holds the bits to keep.
        uint64_t old = Assemble(m_register.Read(true));
        raw = (old & ~mask) | ((raw << shift) & mask);
    }
    std::vector<uint8_t> bytes = Disassemble(raw, size);
    m_register.Write(bytes.data(), length);
}

int64_t IntRegNode::RawMin() {
    if (!m_signed)
        return 0;
    int64_t length = m_register.Length();
    unsigned width = FieldWidth(static_cast<size_t>(length < 0 ? 0 : length));
    return width >= 64 || width == 0 ? IntegerBase::RawMin() : -(int64_t{1} << (width - 1));
}

int64_t IntRegNode::RawMax() {
    int64_t length = m_register.Length();
    unsigned width = FieldWidth(static_cast<size_t>(length < 0 ? 0 : length));
    if (m_signed)
        return width >= 64 || width == 0 ? IntegerBase::RawMax() : (int64_t{1} << (width - 1)) - 1;
    return width >= 63 ? IntegerBase::RawMax() : (int64_t{1} << width) - 1;
}

} // namespace detail
} // namespace GenApi
