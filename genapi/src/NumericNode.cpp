#include "NumericNode.h"

#include "TextParsing.h"

#include <Base/GCException.h>
#include <GenApi/IFloat.h>
#include <GenApi/IInteger.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <iomanip>
#include <sstream>

namespace GenApi {
namespace detail {

namespace {

bool ParseNumber(const std::string& text, int64_t& value) {
    return TryParseInt64(text, value);
}

bool ParseNumber(const std::string& text, double& value) {
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    return end != text.c_str();
}

} // namespace

template <class Interface, class T>
NumericNode<Interface, T>::NumericNode(NodeMap& map, const NodeDescription& description)
    : ValueNode<Interface>(map, description) {
    for (const auto& property : description.properties) {
        if (property.name == "Unit")
            m_unit = property.text;
        else if (property.name == "Representation")
            m_representation = ParseRepresentation(property);
        else if (std::is_floating_point_v<T> && property.name == "DisplayNotation")
            m_notation = ParseDisplayNotation(property);
        else if (std::is_floating_point_v<T> && property.name == "DisplayPrecision")
            m_precision = ParseInt64(property);
        else if (property.name == "ValidValueSet") {
            std::stringstream values(property.text);
            std::string item;
            T value{};
            while (std::getline(values, item, ';'))
                if (ParseNumber(item, value) || std::is_floating_point_v<T>)
                    m_validValues.push_back(value);
            std::sort(m_validValues.begin(), m_validValues.end());
        }
    }
}

template <class Interface, class T>
ECachingMode NumericNode<Interface, T>::DefaultCachingMode() const {
    return std::is_integral_v<T> ? WriteThrough : WriteAround;
}

template <class Interface, class T>
T NumericNode<Interface, T>::GetValue(bool verify, bool ignoreCache) {
    NodeMap::Access access(this->m_map);
    this->CheckReadable();
    if (this->m_valueKnown && !verify && !ignoreCache)
        return m_knownValue;
    T value = RawValue(verify, ignoreCache);
    if (verify)
        Verify(value);
    if (KeepsValue() && this->CachingMode() != NoCache) {
        m_knownValue = value;
        this->m_valueKnown = true;
    }
    return value;
}

template <class Interface, class T>
void NumericNode<Interface, T>::SetValue(T value, bool verify) {
    NodeMap::Access access(this->m_map);
    this->CheckWritable();
    if (verify)
        Verify(value);
    this->m_valueKnown = false;
    WriteRaw(value, verify);
    this->Changed();
}

template <class Interface, class T>
Interface& NumericNode<Interface, T>::operator=(T value) {
    SetValue(value);
    return *this;
}

template <class Interface, class T>
std::string NumericNode<Interface, T>::Format(T value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

template <class Interface, class T>
void NumericNode<Interface, T>::Verify(T value) {
    T min = GetMin();
    T max = GetMax();
    if (value < min || value > max)
        throw OUT_OF_RANGE_EXCEPTION("Value %s of node '%s' is outside [%s, %s]",
                                     Format(value).c_str(), this->Name().c_str(),
                                     Format(min).c_str(), Format(max).c_str());
    if (!m_validValues.empty()) {
        if (!std::binary_search(m_validValues.begin(), m_validValues.end(), value))
            throw OUT_OF_RANGE_EXCEPTION("Value %s of node '%s' is not a valid value",
                                         Format(value).c_str(), this->Name().c_str());
        return;
    }
    VerifyStep(value, min);
}

// Only integers are held to their increment; a float's increment is a hint for the display.
template <class Interface, class T>
void NumericNode<Interface, T>::VerifyStep(T value, T min) {
    if constexpr (std::is_integral_v<T>) {
        int64_t inc = GetInc();
        uint64_t distance = static_cast<uint64_t>(value) - static_cast<uint64_t>(min);
        if (inc > 0 && distance % static_cast<uint64_t>(inc) != 0)
            throw OUT_OF_RANGE_EXCEPTION("Value %" PRId64 " of node '%s' is not min %" PRId64
                                         " plus a multiple of the increment %" PRId64,
                                         value, this->Name().c_str(), min, inc);
    }
}

template <class Interface, class T>
T NumericNode<Interface, T>::GetMin() {
    NodeMap::Access access(this->m_map);
    this->CheckAvailable();
    return std::max(RawMin(), m_imposedMin);
}

template <class Interface, class T>
T NumericNode<Interface, T>::GetMax() {
    NodeMap::Access access(this->m_map);
    this->CheckAvailable();
    return std::min(RawMax(), m_imposedMax);
}

template <class Interface, class T>
EIncMode NumericNode<Interface, T>::GetIncMode() {
    if (!m_validValues.empty())
        return listIncrement;
    NodeMap::Access access(this->m_map);
    return RawHasInc() ? fixedIncrement : noIncrement;
}

template <class Interface, class T>
T NumericNode<Interface, T>::GetInc() {
    NodeMap::Access access(this->m_map);
    this->CheckAvailable();
    if (!RawHasInc())
        throw RUNTIME_EXCEPTION("Node '%s' has no increment", this->Name().c_str());
    return RawInc();
}

template <class Interface, class T>
typename NumericNode<Interface, T>::ValueList
NumericNode<Interface, T>::GetListOfValidValues(bool bounded) {
    NodeMap::Access access(this->m_map);
    ValueList values;
    if (m_validValues.empty())
        return values;
    T min = bounded ? GetMin() : kLowest;
    T max = bounded ? GetMax() : kHighest;
    for (T value : m_validValues)
        if (value >= min && value <= max)
            values.push_back(value);
    return values;
}

template <class Interface, class T>
ERepresentation NumericNode<Interface, T>::GetRepresentation() {
    return m_representation == _UndefinedRepresentation ? DefaultRepresentation()
                                                        : m_representation;
}

template <class Interface, class T>
void NumericNode<Interface, T>::ImposeMin(T value) {
    NodeMap::Access access(this->m_map);
    m_imposedMin = value;
    this->Changed();
}

template <class Interface, class T>
void NumericNode<Interface, T>::ImposeMax(T value) {
    NodeMap::Access access(this->m_map);
    m_imposedMax = value;
    this->Changed();
}

template <class Interface, class T>
gcstring NumericNode<Interface, T>::ToString(bool verify, bool ignoreCache) {
    NodeMap::Access access(this->m_map);
    T value = GetValue(verify, ignoreCache);
    if constexpr (std::is_integral_v<T>) {
        char text[32];
        if (GetRepresentation() == HexNumber)
            std::snprintf(text, sizeof text, "0x%" PRIx64, static_cast<uint64_t>(value));
        else
            std::snprintf(text, sizeof text, "%" PRId64, value);
        return text;
    } else {
        std::ostringstream text;
        if (m_notation == fnFixed)
            text << std::fixed;
        else if (m_notation == fnScientific)
            text << std::scientific;
        text << std::setprecision(static_cast<int>(m_precision)) << value;
        return text.str();
    }
}

template <class Interface, class T>
void NumericNode<Interface, T>::FromString(const gcstring& valueString, bool verify) {
    T value{};
    if (!ParseNumber(valueString.str(), value))
        throw INVALID_ARGUMENT_EXCEPTION("Node '%s': '%s' is not a number", this->Name().c_str(),
                                         valueString.c_str());
    SetValue(value, verify);
}

template class NumericNode<IInteger, int64_t>;
template class NumericNode<IFloat, double>;

} // namespace detail
} // namespace GenApi
