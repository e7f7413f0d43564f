#include "CameraCatalog.h"

#include "GenTLError.h"

#include <algorithm>

namespace Orvan {
namespace Producer {

namespace {

const std::vector<std::string> kDefaultModels = {"Mono"};

std::unique_ptr<RemoteDevice> MakeVirtualCamera(const std::string& model, uint32_t index) {
    return CreateVirtualCamera(model, index);
}

} // namespace

CameraCatalog& CameraCatalog::Instance() {
    static CameraCatalog instance;
    return instance;
}

CameraCatalog::CameraCatalog() {
    Reset();
}

void CameraCatalog::Configure(std::vector<std::string> models, uint32_t interfaceCount) {
    if (interfaceCount == 0)
        throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER, "At least one interface is needed");
    std::lock_guard<std::mutex> lock(m_mutex);
    m_models = std::move(models);
    m_interfaceCount = interfaceCount;
}

void CameraCatalog::SetMaker(Maker maker) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_customMaker = static_cast<bool>(maker);
    m_maker = maker ? std::move(maker) : Maker(MakeVirtualCamera);
}

void CameraCatalog::Reset() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_models = kDefaultModels;
    m_interfaceCount = 1;
    m_maker = MakeVirtualCamera;
    m_customMaker = false;
}

uint32_t CameraCatalog::InterfaceCount() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_interfaceCount;
}

std::vector<std::vector<std::shared_ptr<RemoteDevice>>> CameraCatalog::MakeCameras() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<std::vector<std::shared_ptr<RemoteDevice>>> cameras(m_interfaceCount);
    for (uint32_t i = 0; i < m_models.size(); ++i) {
        std::unique_ptr<RemoteDevice> camera = m_maker(m_models[i], i);
        if (camera)
            cameras[i % m_interfaceCount].push_back(std::move(camera));
    }
    return cameras;
}

bool CameraCatalog::KnowsModel(const std::string& model) const {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_customMaker) // a test's own cameras: its maker decides
            return true;
    }
    std::vector<std::string> models = VirtualCameraModels();
    return std::find(models.begin(), models.end(), model) != models.end();
}

} // namespace Producer
} // namespace Orvan
