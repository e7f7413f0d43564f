#include "HexId.h"

#include <cctype>

namespace GenApi {
namespace detail {

bool ParseHexId(const std::string& text, uint64_t& value) {
    size_t begin = text.find_first_not_of(" \t\r\n");
    size_t end = text.find_last_not_of(" \t\r\n");
    if (begin == std::string::npos)
        return false;
    if (end - begin >= 2 && text[begin] == '0' &&
        (text[begin + 1] == 'x' || text[begin + 1] == 'X'))
        begin += 2;
    size_t digits = end + 1 - begin;
    if (digits == 0 || digits > 16)
        return false;
    uint64_t result = 0;
    for (size_t i = begin; i <= end; ++i) {
        unsigned char c = static_cast<unsigned char>(text[i]);
        if (!std::isxdigit(c))
            return false;
        unsigned digit = std::isdigit(c) ? c - '0' : std::tolower(c) - 'a' + 10;
        result = result << 4 | digit;
    }
    value = result;
    return true;
}

} // namespace detail
} // namespace GenApi
