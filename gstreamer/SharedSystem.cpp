#include "SharedSystem.h"

#include <Base/GCException.h>

#include <condition_variable>
#include <mutex>

namespace Orvan {
namespace Gst {

namespace {

std::mutex g_mutex;
std::condition_variable g_closed;
std::weak_ptr<ISystem> g_system;
// Still open while its last owner is between letting go and closing it: a new owner waits for
// the close, since the producer refuses a second open.
bool g_open = false;

// Closing runs on whichever thread released the last buffer; a failure there has nobody left
// to report to.
void Close(ISystem* system) {
    try {
        CloseSystem(system);
    } catch (const GenICam::GenericException&) {
    }
    std::lock_guard<std::mutex> lock(g_mutex);
    g_open = false;
    g_closed.notify_all();
}

} // namespace

std::shared_ptr<ISystem> AcquireSystem() {
    std::unique_lock<std::mutex> lock(g_mutex);
    std::shared_ptr<ISystem> system = g_system.lock();
    if (system)
        return system;
    g_closed.wait(lock, [] { return !g_open; });
    system = std::shared_ptr<ISystem>(OpenSystem(), Close);
    g_open = true;
    g_system = system;
    return system;
}

} // namespace Gst
} // namespace Orvan
