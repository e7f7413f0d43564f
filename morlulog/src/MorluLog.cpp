#include "Handle.h"

#include <MorluLog/MorluLog.h>

namespace MorluLog {

IMorluLog* Init() {
    return new Handle();
}

void Deinit(IMorluLog* handle) {
    delete static_cast<Handle*>(handle);
}

} // namespace MorluLog
