#include "CameraResolver.h"

#include "ToolError.h"

#include <cctype>
#include <functional>

namespace Orvan {
namespace Cli {

namespace {

using Field = std::function<std::string(const DeviceInfo&)>;

std::vector<size_t> Matches(const std::vector<DeviceInfo>& devices, const std::string& name,
                            const Field& field) {
    std::vector<size_t> found;
    for (size_t i = 0; i < devices.size(); ++i)
        if (field(devices[i]) == name)
            found.push_back(i);
    return found;
}

bool IsIndex(const std::string& name) {
    if (name.empty() || name.size() > 9)
        return false;
    for (char c : name)
        if (!std::isdigit(static_cast<unsigned char>(c)))
            return false;
    return true;
}

} // namespace

size_t ResolveCamera(const std::vector<DeviceInfo>& devices, const std::string& name) {
    if (name.empty())
        throw UsageError("empty camera name");
    const Field fields[] = {
        [](const DeviceInfo& d) { return std::string(d.SerialNumber().c_str()); },
        [](const DeviceInfo& d) { return std::string(d.UserDefinedName().c_str()); },
        [](const DeviceInfo& d) { return std::string(d.IpAddressStr().c_str()); },
    };
    for (const Field& field : fields) {
        const std::vector<size_t> found = Matches(devices, name, field);
        if (found.size() == 1)
            return found.front();
        if (found.size() > 1)
            throw ToolError("camera name '" + name + "' is ambiguous (" +
                            std::to_string(found.size()) +
                            " cameras share it); use a serial number");
    }
    if (IsIndex(name) && std::stoul(name) < devices.size())
        return std::stoul(name);
    throw ToolError("no camera '" + name + "' among " + std::to_string(devices.size()) +
                    " found (try 'orvan list')");
}

} // namespace Cli
} // namespace Orvan
