#include "EntryPoint.h"

namespace Orvan {
namespace Producer {

namespace {
const char* const kNames[] = {
#define ORVAN_ENTRY_NAME(name) #name,
    ORVAN_GENTL_ENTRY_POINTS(ORVAN_ENTRY_NAME)
#undef ORVAN_ENTRY_NAME
};
static_assert(sizeof(kNames) / sizeof(kNames[0]) == kEntryPointCount, "one name per entry");
} // namespace

bool FindEntryPoint(const std::string& name, EntryPoint& entry) {
    for (size_t i = 0; i < kEntryPointCount; ++i) {
        if (name == kNames[i]) {
            entry = static_cast<EntryPoint>(i);
            return true;
        }
    }
    return false;
}

} // namespace Producer
} // namespace Orvan
