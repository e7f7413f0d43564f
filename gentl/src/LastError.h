// The calling thread's last error, as GCGetLastError reports it.
#ifndef ORVAN_GENTL_LASTERROR_H
#define ORVAN_GENTL_LASTERROR_H

#include <GenTL/GenTL.h>

#include <string>

namespace Orvan {
namespace Producer {

void SetLastError(GenTL::GC_ERROR code, const std::string& text);
GenTL::GC_ERROR LastErrorCode();
const std::string& LastErrorText();

} // namespace Producer
} // namespace Orvan

#endif
