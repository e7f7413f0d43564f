// Entry points of the logging transport.
#ifndef MORLULOG_MORLULOG_H
#define MORLULOG_MORLULOG_H

#include <MorluLog/IMorluLog.h>

namespace MorluLog {

// A new handle with nothing set up, listened to or registered.
IMorluLog* Init();

// Stops the handle's listeners and sender and frees it. A null handle is ignored.
void Deinit(IMorluLog* handle);

} // namespace MorluLog

#endif
