// The log viewer shared by orvan-logview and "orvan log": prints every record the logging
// transport receives on a port, one line each, as the logger's console sink prints them.
#ifndef ORVAN_TOOLS_LOGVIEW_H
#define ORVAN_TOOLS_LOGVIEW_H

#include <cstdint>
#include <string>

namespace Orvan {
namespace Tools {

// Listens on port until SIGINT or SIGTERM. Returns 0 after a signal, 1 when the port cannot be
// listened on, after writing why to stderr behind errorPrefix ("orvan: error: ", ...).
int RunLogView(uint16_t port, const std::string& errorPrefix);

} // namespace Tools
} // namespace Orvan

#endif
