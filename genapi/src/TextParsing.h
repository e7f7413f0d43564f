// Converts the text of description elements into values; failures name the element and line.
#ifndef ORVAN_GENAPI_TEXTPARSING_H
#define ORVAN_GENAPI_TEXTPARSING_H

#include "NodeDescription.h"

#include <GenApi/Types.h>

#include <cstdint>
#include <string>

namespace GenApi {
namespace detail {

// Decimal or 0x-prefixed hexadecimal; hexadecimal keeps its 64-bit pattern.
bool TryParseInt64(const std::string& text, int64_t& value);
int64_t ParseInt64(const Property& property);
double ParseDouble(const Property& property);
bool ParseYesNo(const Property& property);
EAccessMode ParseAccessMode(const Property& property);
EVisibility ParseVisibility(const Property& property);
ECachingMode ParseCachingMode(const Property& property);
ERepresentation ParseRepresentation(const Property& property);
EDisplayNotation ParseDisplayNotation(const Property& property);
ESlope ParseSlope(const Property& property);
EEndianess ParseEndianess(const Property& property);
ESign ParseSign(const Property& property);

} // namespace detail
} // namespace GenApi

#endif
