#include "ConverterNode.h"

#include "TextParsing.h"
#include "ValueAccess.h"

#include <Base/GCException.h>

#include <algorithm>

namespace GenApi {
namespace detail {

ConverterNode::ConverterNode(NodeMap& map, const NodeDescription& description)
    : FloatBase(map, description) {
    if (const Property* slope = description.Find("Slope"))
        m_slope = ParseSlope(*slope);
}

void ConverterNode::Link(const NodeDescription& description) {
    FloatBase::Link(description);
    m_context.Link(*this, description);
    m_value = Resolve(description, "pValue");
    if (!m_value)
        throw RUNTIME_EXCEPTION("Converter '%s' at line %u has no <pValue>",
                                description.name.c_str(), description.line);
    AddReadingChild(m_value);
    AddWritingChild(m_value);
    m_to = m_context.Parse(description, "FormulaTo", {"FROM"});
    m_from = m_context.Parse(description, "FormulaFrom", {"TO"});
}

bool ConverterNode::CacheValid() const {
    return m_value->CacheValid() && m_context.CacheValid();
}

EAccessMode ConverterNode::InternalAccessMode() const {
    EAccessMode variables = m_context.VariablesAccessMode();
    return variables == RO ? m_value->GetAccessMode() : variables;
}

double ConverterNode::From(double raw) {
    m_context.SetSpecial("TO", raw, FloatToInt(raw));
    return m_context.EvaluateFloat(m_from);
}

double ConverterNode::RawValue(bool verify, bool ignoreCache) {
    return From(ReadFloat(m_value, verify, ignoreCache));
}

void ConverterNode::WriteRaw(double value, bool verify) {
    m_context.SetSpecial("FROM", value, FloatToInt(value));
    WriteFloat(m_value, m_context.EvaluateFloat(m_to), verify);
}

double ConverterNode::RawMin() {
    // A formula whose slope varies says nothing about the limits.
    if (m_slope == Varying)
        return FloatBase::RawMin();
    double a = From(ReadFloatMin(m_value));
    double b = From(ReadFloatMax(m_value));
    if (m_slope == Increasing)
        return a;
    if (m_slope == Decreasing)
        return b;
    return std::min(a, b);
}

double ConverterNode::RawMax() {
    // A formula whose slope varies says nothing about the limits.
    if (m_slope == Varying)
        return FloatBase::RawMax();
    double a = From(ReadFloatMin(m_value));
    double b = From(ReadFloatMax(m_value));
    if (m_slope == Increasing)
        return b;
    if (m_slope == Decreasing)
        return a;
    return std::max(a, b);
}

} // namespace detail
} // namespace GenApi
