#include "WaitGate.h"

#include "GenTLError.h"

namespace Orvan {
namespace Producer {

void ThrowUnlessReady(WaitGate::Result result) {
    switch (result) {
    case WaitGate::Result::Ready:
        return;
    case WaitGate::Result::Timeout:
        throw GenTLError(GenTL::GC_ERR_TIMEOUT, "No event data arrived within the timeout");
    case WaitGate::Result::Killed:
        throw GenTLError(GenTL::GC_ERR_ABORT, "The wait was ended by EventKill");
    case WaitGate::Result::Aborted:
        throw GenTLError(GenTL::GC_ERR_ABORT, "The wait was ended because its source stopped");
    }
}

} // namespace Producer
} // namespace Orvan
