// The one way internal code reports a failure to a GenTL entry point: throw a GenTLError with
// the code and the text that GCGetLastError will show; the entry point's guard catches it.
#ifndef ORVAN_GENTL_GENTLERROR_H
#define ORVAN_GENTL_GENTLERROR_H

#include <GenTL/GenTL.h>

#include <stdexcept>
#include <string>

namespace Orvan {
namespace Producer {

class GenTLError : public std::runtime_error {
public:
    GenTLError(GenTL::GC_ERROR code, const std::string& text)
        : std::runtime_error(text), m_code(code) {}
    GenTL::GC_ERROR Code() const { return m_code; }

private:
    GenTL::GC_ERROR m_code;
};

// Throws GC_ERR_INVALID_PARAMETER naming the argument when the pointer is null.
inline void RequirePointer(const void* pointer, const char* name) {
    if (!pointer)
        throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER, std::string(name) + " is null");
}

} // namespace Producer
} // namespace Orvan

#endif
