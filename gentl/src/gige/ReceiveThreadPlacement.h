// Where a stream's receiving thread runs: pinned to one core, and at real-time priority so
// that ordinary work on that core cannot delay it while the kernel's buffers fill up. Both are
// wishes: what the system refuses is reported, not an error.
#ifndef ORVAN_GENTL_GIGE_RECEIVETHREADPLACEMENT_H
#define ORVAN_GENTL_GIGE_RECEIVETHREADPLACEMENT_H

#include "../RemoteDevice.h"

#include <pthread.h>

namespace Orvan {
namespace Producer {

// Applies the core and priority of `wanted` to the thread; returns what it got (-1 or Normal
// where refused). The path is passed through.
ReceiveSettings PlaceReceiveThread(pthread_t thread, const ReceiveSettings& wanted);

} // namespace Producer
} // namespace Orvan

#endif
