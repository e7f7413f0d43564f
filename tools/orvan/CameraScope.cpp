#include "CameraScope.h"

#include "CameraResolver.h"

#include <Base/GCException.h>

namespace Orvan {
namespace Cli {

namespace {

// Long enough for a camera on a real network to answer discovery, short enough not to be felt.
constexpr uint64_t kDiscoveryTimeoutMs = 500;

} // namespace

CameraScope::CameraScope() : m_system(OpenSystem()) {
    try {
        m_system->UpdateDevices(kDiscoveryTimeoutMs);
        m_devices = m_system->GetDevices();
    } catch (...) {
        CloseSystem(m_system);
        throw;
    }
}

// The process is about to end: a failure here is not worth more than the error, if any, that
// brought us here, but the system is closed even when the device would not go.
CameraScope::~CameraScope() {
    try {
        if (m_device)
            m_system->DestroyDevice(m_device);
    } catch (const GenICam::GenericException&) {
    }
    try {
        CloseSystem(m_system);
    } catch (const GenICam::GenericException&) {
    }
}

IDevice& CameraScope::Open(const std::string& cameraName) {
    m_openedIndex = ResolveCamera(m_devices, cameraName);
    m_device = m_system->CreateDevice(m_devices[m_openedIndex]);
    return *m_device;
}

} // namespace Cli
} // namespace Orvan
