#include "IntConverterNode.h"

#include "TextParsing.h"
#include "ValueAccess.h"

#include <Base/GCException.h>

#include <algorithm>

namespace GenApi {
namespace detail {

IntConverterNode::IntConverterNode(NodeMap& map, const NodeDescription& description)
    : IntegerBase(map, description) {
    if (const Property* slope = description.Find("Slope"))
        m_slope = ParseSlope(*slope);
}

void IntConverterNode::Link(const NodeDescription& description) {
    IntegerBase::Link(description);
    m_context.Link(*this, description);
    m_value = Resolve(description, "pValue");
    if (!m_value)
        throw RUNTIME_EXCEPTION("IntConverter '%s' at line %u has no <pValue>",
                                description.name.c_str(), description.line);
    AddReadingChild(m_value);
    AddWritingChild(m_value);
    m_to = m_context.Parse(description, "FormulaTo", {"FROM"});
    m_from = m_context.Parse(description, "FormulaFrom", {"TO"});
}

bool IntConverterNode::CacheValid() const {
    return m_value->CacheValid() && m_context.CacheValid();
}

EAccessMode IntConverterNode::InternalAccessMode() const {
    EAccessMode variables = m_context.VariablesAccessMode();
    return variables == RO ? m_value->GetAccessMode() : variables;
}

int64_t IntConverterNode::From(int64_t raw) {
    m_context.SetSpecial("TO", static_cast<double>(raw), raw);
    return m_context.EvaluateInt(m_from);
}

int64_t IntConverterNode::RawValue(bool verify, bool ignoreCache) {
    return From(ReadInt(m_value, verify, ignoreCache));
}

void IntConverterNode::WriteRaw(int64_t value, bool verify) {
    m_context.SetSpecial("FROM", static_cast<double>(value), value);
    WriteInt(m_value, m_context.EvaluateInt(m_to), verify);
}

int64_t IntConverterNode::RawMin() {
    // A formula whose slope varies says nothing about the limits.
    if (m_slope == Varying)
        return IntegerBase::RawMin();
    int64_t a = From(ReadIntMin(m_value));
    int64_t b = From(ReadIntMax(m_value));
    if (m_slope == Increasing)
        return a;
    if (m_slope == Decreasing)
        return b;
    return std::min(a, b);
}

int64_t IntConverterNode::RawMax() {
    // A formula whose slope varies says nothing about the limits.
    if (m_slope == Varying)
        return IntegerBase::RawMax();
    int64_t a = From(ReadIntMin(m_value));
    int64_t b = From(ReadIntMax(m_value));
    if (m_slope == Increasing)
        return b;
    if (m_slope == Decreasing)
        return a;
    return std::max(a, b);
}

} // namespace detail
} // namespace GenApi
