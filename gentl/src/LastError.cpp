#include "LastError.h"

namespace Orvan {
namespace Producer {

namespace {
thread_local GenTL::GC_ERROR t_code = GenTL::GC_ERR_SUCCESS;
thread_local std::string t_text;
} // namespace

void SetLastError(GenTL::GC_ERROR code, const std::string& text) {
    t_code = code;
    t_text = text;
}

GenTL::GC_ERROR LastErrorCode() {
    return t_code;
}

const std::string& LastErrorText() {
    return t_text;
}

} // namespace Producer
} // namespace Orvan
