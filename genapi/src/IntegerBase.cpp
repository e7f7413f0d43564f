#include "IntegerBase.h"

#include "TextParsing.h"

#include <Base/GCException.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <sstream>

namespace GenApi {
namespace detail {

IntegerBase::IntegerBase(NodeMap& map, const NodeDescription& description)
    : ValueNode<IInteger>(map, description) {
    for (const auto& property : description.properties) {
        if (property.name == "Unit")
            m_unit = property.text;
        else if (property.name == "Representation")
            m_representation = ParseRepresentation(property);
        else if (property.name == "ValidValueSet") {
            std::stringstream values(property.text);
            std::string item;
            while (std::getline(values, item, ';')) {
                int64_t value = 0;
                if (TryParseInt64(item, value))
                    m_validValues.push_back(value);
            }
            std::sort(m_validValues.begin(), m_validValues.end());
        }
    }
}

int64_t IntegerBase::GetValue(bool verify, bool ignoreCache) {
    NodeMap::Access access(m_map);
    CheckReadable();
    int64_t value = RawValue(verify, ignoreCache);
    if (verify)
        Verify(value);
    return value;
}

void IntegerBase::SetValue(int64_t value, bool verify) {
    NodeMap::Access access(m_map);
    CheckWritable();
    if (verify)
        Verify(value);
    WriteRaw(value, verify);
    Changed();
}

IInteger& IntegerBase::operator=(int64_t value) {
    SetValue(value);
    return *this;
}

void IntegerBase::Verify(int64_t value) {
    int64_t min = GetMin();
    int64_t max = GetMax();
    if (value < min)
        throw OUT_OF_RANGE_EXCEPTION("Value %" PRId64 " of node '%s' is below its minimum %" PRId64,
                                     value, Name().c_str(), min);
    if (value > max)
        throw OUT_OF_RANGE_EXCEPTION("Value %" PRId64 " of node '%s' is above its maximum %" PRId64,
                                     value, Name().c_str(), max);
    if (!m_validValues.empty()) {
        if (!std::binary_search(m_validValues.begin(), m_validValues.end(), value))
            throw OUT_OF_RANGE_EXCEPTION("Value %" PRId64 " of node '%s' is not a valid value",
                                         value, Name().c_str());
        return;
    }
    int64_t inc = GetInc();
    if (inc > 0 &&
        (static_cast<uint64_t>(value) - static_cast<uint64_t>(min)) % static_cast<uint64_t>(inc) !=
            0)
        throw OUT_OF_RANGE_EXCEPTION("Value %" PRId64 " of node '%s' is not min %" PRId64
                                     " plus a multiple of the increment %" PRId64,
                                     value, Name().c_str(), min, inc);
}

int64_t IntegerBase::GetMin() {
    NodeMap::Access access(m_map);
    CheckAvailable();
    return std::max(RawMin(), m_imposedMin);
}

int64_t IntegerBase::GetMax() {
    NodeMap::Access access(m_map);
    CheckAvailable();
    return std::min(RawMax(), m_imposedMax);
}

EIncMode IntegerBase::GetIncMode() {
    return m_validValues.empty() ? fixedIncrement : listIncrement;
}

int64_t IntegerBase::GetInc() {
    NodeMap::Access access(m_map);
    CheckAvailable();
    return RawInc();
}

int64_autovector_t IntegerBase::GetListOfValidValues(bool bounded) {
    NodeMap::Access access(m_map);
    int64_autovector_t values;
    if (m_validValues.empty())
        return values;
    int64_t min = bounded ? GetMin() : std::numeric_limits<int64_t>::min();
    int64_t max = bounded ? GetMax() : std::numeric_limits<int64_t>::max();
    for (int64_t value : m_validValues)
        if (value >= min && value <= max)
            values.push_back(value);
    return values;
}

ERepresentation IntegerBase::GetRepresentation() {
    return m_representation == _UndefinedRepresentation ? DefaultRepresentation()
                                                        : m_representation;
}

void IntegerBase::ImposeMin(int64_t value) {
    NodeMap::Access access(m_map);
    m_imposedMin = value;
    Changed();
}

void IntegerBase::ImposeMax(int64_t value) {
    NodeMap::Access access(m_map);
    m_imposedMax = value;
    Changed();
}

gcstring IntegerBase::ToString(bool verify, bool ignoreCache) {
    NodeMap::Access access(m_map);
    int64_t value = GetValue(verify, ignoreCache);
    char text[32];
    if (GetRepresentation() == HexNumber)
        std::snprintf(text, sizeof text, "0x%" PRIx64, static_cast<uint64_t>(value));
    else
        std::snprintf(text, sizeof text, "%" PRId64, value);
    return text;
}

void IntegerBase::FromString(const gcstring& valueString, bool verify) {
    int64_t value = 0;
    if (!TryParseInt64(valueString.str(), value))
        throw INVALID_ARGUMENT_EXCEPTION("Node '%s': '%s' is not an integer", Name().c_str(),
                                         valueString.c_str());
    SetValue(value, verify);
}

} // namespace detail
} // namespace GenApi
