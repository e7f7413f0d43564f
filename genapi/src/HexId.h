// ChunkID and EventID values: hexadecimal text in descriptions, numbers on the wire.
#ifndef ORVAN_GENAPI_HEXID_H
#define ORVAN_GENAPI_HEXID_H

#include <cstdint>
#include <string>

namespace GenApi {
namespace detail {

// Accepts 1 to 16 hexadecimal digits, with an optional "0x" and surrounding blanks.
bool ParseHexId(const std::string& text, uint64_t& value);

} // namespace detail
} // namespace GenApi

#endif
