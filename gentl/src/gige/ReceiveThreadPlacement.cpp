#include "ReceiveThreadPlacement.h"

#include <sched.h>

namespace Orvan {
namespace Producer {

namespace {

// Low among real-time priorities: ahead of every ordinary thread, behind the kernel's threaded
// interrupt handlers (50), which deliver the packets this thread waits for.
constexpr int kRealTimePriority = 10;

bool Pin(pthread_t thread, int32_t core) {
    if (core < 0 || core >= CPU_SETSIZE)
        return false;
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(core, &set);
    return pthread_setaffinity_np(thread, sizeof set, &set) == 0;
}

bool RaiseToRealTime(pthread_t thread) {
    sched_param parameters{};
    parameters.sched_priority = kRealTimePriority;
    return pthread_setschedparam(thread, SCHED_FIFO, &parameters) == 0;
}

} // namespace

ReceiveSettings PlaceReceiveThread(pthread_t thread, const ReceiveSettings& wanted) {
    ReceiveSettings got = wanted;
    if (!Pin(thread, wanted.core))
        got.core = -1;
    if (wanted.priority != ThreadPriority::RealTime || !RaiseToRealTime(thread))
        got.priority = ThreadPriority::Normal;
    return got;
}

} // namespace Producer
} // namespace Orvan
