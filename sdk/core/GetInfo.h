// Typed readers of the producer's untyped info queries, with their argument checks and failure
// messages. Only the listed value types are provided; any other fails to link.
#ifndef ORVAN_CORE_GETINFO_H
#define ORVAN_CORE_GETINFO_H

#include "TLDataStream.h"
#include "TLInterface.h"

#include <Base/GCString.h>

#include <cstdint>

namespace Orvan {

// A buffer's info item (DSGetBufferInfo); T is uint8_t*, uint64_t, bool or int32_t.
template <class T>
T GetInfo(TLDataStream* stream, void* bufferHandle, int32_t cmd);

// A not yet opened device's info item (IFGetDeviceInfo); T is uint32_t, bool or int64_t.
template <class T>
T GetInfo(TLInterface* iface, const char* deviceId, int32_t cmd);

// The interface's own info item (IFGetInfo); T is uint64_t or int64_t.
template <class T>
T GetInfo(TLInterface* iface, int32_t cmd);

// A device's text info item (IFGetDeviceInfo), at most 255 characters.
GenICam::gcstring GetInfoString(TLInterface* iface, const char* deviceId, int32_t cmd);

} // namespace Orvan

#endif
