// Finds the camera a user named on the command line among the discovered ones.
#ifndef ORVAN_TOOLS_ORVAN_CAMERARESOLVER_H
#define ORVAN_TOOLS_ORVAN_CAMERARESOLVER_H

#include <Orvan/DeviceInfo.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Orvan {
namespace Cli {

// A name is tried as a serial number, a user-defined name, an IPv4 address and finally an index
// into the list in the order "orvan list" prints it; the first kind that matches wins, so a
// serial number that looks like an index still means the serial number. Throws ToolError when
// nothing matches or when a user-defined name is shared by several cameras.
size_t ResolveCamera(const std::vector<DeviceInfo>& devices, const std::string& name);

} // namespace Cli
} // namespace Orvan

#endif
