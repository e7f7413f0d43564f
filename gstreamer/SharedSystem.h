// The SDK allows one open system per process, while a pipeline may hold several orvansrc
// elements (one per camera): they share it, and the last one to let go closes it.
#ifndef ORVAN_GSTREAMER_SHAREDSYSTEM_H
#define ORVAN_GSTREAMER_SHAREDSYSTEM_H

#include <Orvan/System.h>

#include <memory>

namespace Orvan {
namespace Gst {

// Opens the system on first use; throws what OpenSystem throws.
std::shared_ptr<ISystem> AcquireSystem();

} // namespace Gst
} // namespace Orvan

#endif
