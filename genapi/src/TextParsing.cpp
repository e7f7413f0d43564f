#include "TextParsing.h"

#include <Base/GCException.h>
#include <GenApi/EnumClasses.h>

#include <cerrno>
#include <cstdlib>

namespace GenApi {
namespace detail {

namespace {

[[noreturn]] void Invalid(const Property& property) {
    throw RUNTIME_EXCEPTION("Invalid value '%s' of element <%s> at line %u", property.text.c_str(),
                            property.name.c_str(), property.line);
}

template <class Enum, class Class>
Enum ParseEnum(const Property& property) {
    Enum value{};
    if (!Class::FromString(property.text.c_str(), &value))
        Invalid(property);
    return value;
}

} // namespace

bool TryParseInt64(const std::string& text, int64_t& value) {
    const char* begin = text.c_str();
    while (*begin == ' ' || *begin == '\t')
        ++begin;
    char* end = nullptr;
    errno = 0;
    bool negative = begin[0] == '-';
    const char* digits = (negative || begin[0] == '+') ? begin + 1 : begin;
    if (digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
        uint64_t raw = std::strtoull(digits + 2, &end, 16);
        if (end == digits + 2)
            return false;
        value = negative ? static_cast<int64_t>(0 - raw) : static_cast<int64_t>(raw);
    } else {
        value = std::strtoll(begin, &end, 10);
        if (end == begin)
            return false;
        if (*end == '.' || *end == 'e' || *end == 'E') {
            double real = std::strtod(begin, &end);
            value = static_cast<int64_t>(real);
        }
    }
    while (*end == ' ' || *end == '\t')
        ++end;
    return *end == '\0' && errno != ERANGE;
}

int64_t ParseInt64(const Property& property) {
    int64_t value = 0;
    if (!TryParseInt64(property.text, value))
        Invalid(property);
    return value;
}

double ParseDouble(const Property& property) {
    const char* begin = property.text.c_str();
    char* end = nullptr;
    double value = std::strtod(begin, &end);
    if (end == begin)
        Invalid(property);
    while (*end == ' ' || *end == '\t')
        ++end;
    if (*end != '\0')
        Invalid(property);
    return value;
}

bool ParseYesNo(const Property& property) {
    // Some descriptions leave the element empty; that means the default, No.
    if (property.text == "Yes")
        return true;
    if (property.text == "No" || property.text.empty())
        return false;
    Invalid(property);
}

EAccessMode ParseAccessMode(const Property& property) {
    return ParseEnum<EAccessMode, EAccessModeClass>(property);
}
EVisibility ParseVisibility(const Property& property) {
    return ParseEnum<EVisibility, EVisibilityClass>(property);
}
ECachingMode ParseCachingMode(const Property& property) {
    return ParseEnum<ECachingMode, ECachingModeClass>(property);
}
ERepresentation ParseRepresentation(const Property& property) {
    return ParseEnum<ERepresentation, ERepresentationClass>(property);
}
EDisplayNotation ParseDisplayNotation(const Property& property) {
    return ParseEnum<EDisplayNotation, EDisplayNotationClass>(property);
}
ESlope ParseSlope(const Property& property) {
    return ParseEnum<ESlope, ESlopeClass>(property);
}
EEndianess ParseEndianess(const Property& property) {
    return ParseEnum<EEndianess, EEndianessClass>(property);
}
ESign ParseSign(const Property& property) {
    return ParseEnum<ESign, ESignClass>(property);
}

} // namespace detail
} // namespace GenApi
