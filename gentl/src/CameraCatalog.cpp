#include "CameraCatalog.h"

#include "GenTLError.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

namespace Orvan {
namespace Producer {

namespace {

const std::vector<std::string> kDefaultModels = {"Mono"};

// A standalone program (the command-line tool, its tests) has no test-control caller, so it picks
// its cameras with ORVAN_VIRTUAL_CAMERAS="Mono,Color,...". Unknown names are dropped; when none
// is left the default stays.
std::vector<std::string> ModelsFromEnvironment() {
    const char* text = std::getenv("ORVAN_VIRTUAL_CAMERAS");
    if (!text)
        return kDefaultModels;
    const std::vector<std::string> known = VirtualCameraModels();
    std::vector<std::string> models;
    std::istringstream list(text);
    for (std::string name; std::getline(list, name, ',');)
        if (std::find(known.begin(), known.end(), name) != known.end())
            models.push_back(name);
    return models.empty() ? kDefaultModels : models;
}

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
    m_models = ModelsFromEnvironment();
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
