#include "CameraSelection.h"

#include "Errors.h"

// The orvan tool's own rule, compiled in, so that both name cameras alike.
#include <CameraResolver.h>
#include <ToolError.h>

#include <string>

namespace py = pybind11;

namespace OrvanPy {
namespace {

Orvan::DeviceInfo ByName(const std::vector<Orvan::DeviceInfo>& devices, const std::string& name) {
    try {
        return devices.at(Orvan::Cli::ResolveCamera(devices, name));
    } catch (const std::runtime_error& e) {
        ThrowInvalidArgument(e.what());
    }
}

} // namespace

Orvan::DeviceInfo SelectCamera(const std::vector<Orvan::DeviceInfo>& devices, py::handle which) {
    if (py::isinstance<Orvan::DeviceInfo>(which))
        return which.cast<Orvan::DeviceInfo>();
    if (py::isinstance<py::int_>(which) && !py::isinstance<py::bool_>(which)) {
        const long long index = which.cast<long long>();
        if (index < 0)
            ThrowInvalidArgument("no camera " + std::to_string(index));
        return ByName(devices, std::to_string(index));
    }
    if (py::isinstance<py::str>(which))
        return ByName(devices, which.cast<std::string>());
    throw py::type_error("a camera is named by a DeviceInfo, an index or a str");
}

} // namespace OrvanPy
