#include "FloatBase.h"

#include "TextParsing.h"

#include <Base/GCException.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iomanip>
#include <sstream>

namespace GenApi {
namespace detail {

FloatBase::FloatBase(NodeMap& map, const NodeDescription& description)
    : ValueNode<IFloat>(map, description) {
    for (const auto& property : description.properties) {
        if (property.name == "Unit")
            m_unit = property.text;
        else if (property.name == "Representation")
            m_representation = ParseRepresentation(property);
        else if (property.name == "DisplayNotation")
            m_notation = ParseDisplayNotation(property);
        else if (property.name == "DisplayPrecision")
            m_precision = ParseInt64(property);
        else if (property.name == "ValidValueSet") {
            std::stringstream values(property.text);
            std::string item;
            while (std::getline(values, item, ';'))
                m_validValues.push_back(std::strtod(item.c_str(), nullptr));
            std::sort(m_validValues.begin(), m_validValues.end());
        }
    }
}

double FloatBase::GetValue(bool verify, bool ignoreCache) {
    NodeMap::Access access(m_map);
    CheckReadable();
    double value = RawValue(verify, ignoreCache);
    if (verify)
        Verify(value);
    return value;
}

void FloatBase::SetValue(double value, bool verify) {
    NodeMap::Access access(m_map);
    CheckWritable();
    if (verify)
        Verify(value);
    WriteRaw(value, verify);
    Changed();
}

IFloat& FloatBase::operator=(double value) {
    SetValue(value);
    return *this;
}

void FloatBase::Verify(double value) {
    double min = GetMin();
    double max = GetMax();
    if (value < min || value > max)
        throw OUT_OF_RANGE_EXCEPTION("Value %g of node '%s' is outside [%g, %g]", value,
                                     Name().c_str(), min, max);
    if (!m_validValues.empty() &&
        !std::binary_search(m_validValues.begin(), m_validValues.end(), value))
        throw OUT_OF_RANGE_EXCEPTION("Value %g of node '%s' is not a valid value", value,
                                     Name().c_str());
}

double FloatBase::GetMin() {
    NodeMap::Access access(m_map);
    CheckAvailable();
    return std::max(RawMin(), m_imposedMin);
}

double FloatBase::GetMax() {
    NodeMap::Access access(m_map);
    CheckAvailable();
    return std::min(RawMax(), m_imposedMax);
}

bool FloatBase::HasInc() {
    NodeMap::Access access(m_map);
    return RawHasInc();
}

EIncMode FloatBase::GetIncMode() {
    if (!m_validValues.empty())
        return listIncrement;
    return HasInc() ? fixedIncrement : noIncrement;
}

double FloatBase::GetInc() {
    NodeMap::Access access(m_map);
    CheckAvailable();
    if (!RawHasInc())
        throw RUNTIME_EXCEPTION("Node '%s' has no increment", Name().c_str());
    return RawInc();
}

double_autovector_t FloatBase::GetListOfValidValues(bool bounded) {
    NodeMap::Access access(m_map);
    double_autovector_t values;
    if (m_validValues.empty())
        return values;
    double min = bounded ? GetMin() : -std::numeric_limits<double>::max();
    double max = bounded ? GetMax() : std::numeric_limits<double>::max();
    for (double value : m_validValues)
        if (value >= min && value <= max)
            values.push_back(value);
    return values;
}

ERepresentation FloatBase::GetRepresentation() {
    return m_representation;
}

void FloatBase::ImposeMin(double value) {
    NodeMap::Access access(m_map);
    m_imposedMin = value;
    Changed();
}

void FloatBase::ImposeMax(double value) {
    NodeMap::Access access(m_map);
    m_imposedMax = value;
    Changed();
}

gcstring FloatBase::ToString(bool verify, bool ignoreCache) {
    NodeMap::Access access(m_map);
    double value = GetValue(verify, ignoreCache);
    std::ostringstream text;
    if (m_notation == fnFixed)
        text << std::fixed;
    else if (m_notation == fnScientific)
        text << std::scientific;
    text << std::setprecision(static_cast<int>(m_precision)) << value;
    return text.str();
}

void FloatBase::FromString(const gcstring& valueString, bool verify) {
    const char* begin = valueString.c_str();
    char* end = nullptr;
    double value = std::strtod(begin, &end);
    if (end == begin)
        throw INVALID_ARGUMENT_EXCEPTION("Node '%s': '%s' is not a number", Name().c_str(), begin);
    SetValue(value, verify);
}

} // namespace detail
} // namespace GenApi
