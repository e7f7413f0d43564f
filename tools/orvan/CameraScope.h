// One run of the tool against the SDK: the system opened, the cameras discovered, at most one of
// them opened. Everything is given back in reverse order when the scope ends, whatever path
// the subcommand left by.
#ifndef ORVAN_TOOLS_ORVAN_CAMERASCOPE_H
#define ORVAN_TOOLS_ORVAN_CAMERASCOPE_H

#include <Orvan/IDevice.h>
#include <Orvan/System.h>

#include <string>
#include <vector>

namespace Orvan {
namespace Cli {

class CameraScope {
public:
    CameraScope();
    ~CameraScope();
    CameraScope(const CameraScope&) = delete;
    CameraScope& operator=(const CameraScope&) = delete;

    ISystem& System() { return *m_system; }
    // The discovered cameras, in the order "orvan list" prints and numbers them.
    const std::vector<DeviceInfo>& Devices() const { return m_devices; }
    // Opens the camera the user named (see ResolveCamera).
    IDevice& Open(const std::string& cameraName);
    const DeviceInfo& OpenedInfo() const { return m_devices.at(m_openedIndex); }

private:
    ISystem* m_system = nullptr;
    std::vector<DeviceInfo> m_devices;
    IDevice* m_device = nullptr;
    size_t m_openedIndex = 0;
};

} // namespace Cli
} // namespace Orvan

#endif
