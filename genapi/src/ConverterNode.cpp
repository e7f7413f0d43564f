#include "ConverterNode.h"

#include "TextParsing.h"
#include "ValueAccess.h"

#include <Base/GCException.h>

#include <algorithm>
#include <cmath>

namespace GenApi {
namespace detail {

template <class Base>
ConverterNode<Base>::ConverterNode(NodeMap& map, const NodeDescription& description)
    : Base(map, description) {
    if (const Property* slope = description.Find("Slope"))
        m_slope = ParseSlope(*slope);
    if (const Property* linear = description.Find("IsLinear"))
        m_linear = ParseYesNo(*linear);
}

template <class Base>
void ConverterNode<Base>::Link(const NodeDescription& description) {
    Base::Link(description);
    m_context.Link(*this, description);
    m_value = this->Resolve(description, "pValue");
    if (!m_value)
        throw RUNTIME_EXCEPTION("%s '%s' at line %u has no <pValue>", description.kind.c_str(),
                                description.name.c_str(), description.line);
    this->AddReadingChild(m_value);
    this->AddWritingChild(m_value);
    m_to = m_context.Parse(description, "FormulaTo", {"FROM"});
    m_from = m_context.Parse(description, "FormulaFrom", {"TO"});
}

template <class Base>
bool ConverterNode<Base>::CacheValid() const {
    return m_value->CacheValid() && m_context.CacheValid();
}

template <class Base>
EAccessMode ConverterNode<Base>::InternalAccessMode() const {
    EAccessMode variables = m_context.VariablesAccessMode();
    return variables == RO ? m_value->GetAccessMode() : variables;
}

template <class Base>
typename ConverterNode<Base>::T ConverterNode<Base>::From(T raw) {
    m_context.SetSpecial("TO", raw);
    return m_context.template Evaluate<T>(m_from);
}

template <class Base>
typename ConverterNode<Base>::T ConverterNode<Base>::RawValue(bool verify, bool ignoreCache) {
    return From(ReadValue<T>(m_value, verify, ignoreCache));
}

template <class Base>
void ConverterNode<Base>::WriteRaw(T value, bool verify) {
    m_context.SetSpecial("FROM", value);
    WriteValue<T>(m_value, m_context.template Evaluate<T>(m_to), verify);
}

template <class Base>
std::pair<typename ConverterNode<Base>::T, typename ConverterNode<Base>::T>
ConverterNode<Base>::Limits() {
    T a = From(ReadMin<T>(m_value));
    T b = From(ReadMax<T>(m_value));
    if (m_slope == Increasing)
        return {a, b};
    if (m_slope == Decreasing)
        return {b, a};
    return {std::min(a, b), std::max(a, b)};
}

// A formula whose slope varies says nothing about the limits.
template <class Base>
typename ConverterNode<Base>::T ConverterNode<Base>::RawMin() {
    return m_slope == Varying ? Base::RawMin() : Limits().first;
}

template <class Base>
typename ConverterNode<Base>::T ConverterNode<Base>::RawMax() {
    return m_slope == Varying ? Base::RawMax() : Limits().second;
}

// A linear formula maps the converted node's steps onto steps of one size: the increment is the
// distance between the converted values of two neighbouring raw values.
template <class Base>
bool ConverterNode<Base>::RawHasInc() {
    return (m_linear && HasStep(m_value)) || Base::RawHasInc();
}

template <class Base>
typename ConverterNode<Base>::T ConverterNode<Base>::RawInc() {
    if (!m_linear || !HasStep(m_value))
        return Base::RawInc();
    T inc = From(static_cast<T>(ReadStep(m_value))) - From(T{0});
    return inc < 0 ? -inc : inc;
}

template class ConverterNode<FloatBase>;
template class ConverterNode<IntegerBase>;

} // namespace detail
} // namespace GenApi
