#include "../RemoteDevice.h"
#include "CameraModel.h"
#include "VirtualCamera.h"

namespace Orvan {
namespace Producer {

std::unique_ptr<RemoteDevice> CreateVirtualCamera(const std::string& model, uint32_t index) {
    const CameraModel* found = FindCameraModel(model);
    if (!found)
        return nullptr;
    return std::make_unique<VirtualCamera>(*found, index);
}

std::vector<std::string> VirtualCameraModels() {
    std::vector<std::string> keys;
    for (const CameraModel& model : CameraModels())
        keys.push_back(model.key);
    return keys;
}

} // namespace Producer
} // namespace Orvan
