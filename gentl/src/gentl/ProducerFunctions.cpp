#include "ProducerFunctions.h"

#include <dlfcn.h>

namespace Orvan {
namespace Producer {

namespace {

template <typename Pointer>
bool Find(void* library, const char* name, Pointer& pointer) {
    pointer = reinterpret_cast<Pointer>(dlsym(library, name));
    return pointer != nullptr;
}

} // namespace

void ProducerFunctions::Resolve(void* library, std::vector<std::string>& missingRequired) {
#define ORVAN_FIND_REQUIRED(name)                                                                  \
    if (!Find(library, #name, name))                                                               \
        missingRequired.push_back(#name);
    ORVAN_FOREIGN_REQUIRED(ORVAN_FIND_REQUIRED)
#undef ORVAN_FIND_REQUIRED
    m_streams = true;
#define ORVAN_FIND_STREAMING(name) m_streams = Find(library, #name, name) && m_streams;
    ORVAN_FOREIGN_STREAMING(ORVAN_FIND_STREAMING)
#undef ORVAN_FIND_STREAMING
#define ORVAN_FIND_OPTIONAL(name) Find(library, #name, name);
    ORVAN_FOREIGN_OPTIONAL(ORVAN_FIND_OPTIONAL)
#undef ORVAN_FIND_OPTIONAL
}

} // namespace Producer
} // namespace Orvan
