#include "Library.h"

#include "CameraCatalog.h"
#include "GenTLError.h"
#include "HandleRegistry.h"
#include "System.h"
#include "VirtualInterfaceBackend.h"
#include "gentl/GentlSettings.h"
#include "gentl/ProducerLoader.h"
#include "gige/GigeInterfaceBackend.h"

namespace Orvan {
namespace Producer {

namespace {

// The virtual interfaces come first, so that their indexes do not depend on the host's network.
System::Backends MakeBackends() {
    System::Backends backends;
    auto cameras = CameraCatalog::Instance().MakeCameras();
    for (uint32_t i = 0; i < cameras.size(); ++i)
        backends.push_back(std::make_shared<VirtualInterfaceBackend>(i, std::move(cameras[i])));
    for (auto& backend : GigeInterfaceBackend::ForHost())
        backends.push_back(std::move(backend));
    return backends;
}

// Set while this thread loads other producers. One of them may be a copy of this producer that
// finds this one on its own path and initialises it: that must fail at once, not wait for the
// lock this thread holds.
thread_local bool t_loadingProducers = false;

void RequireNotLoading() {
    if (t_loadingProducers)
        throw GenTLError(GenTL::GC_ERR_RESOURCE_IN_USE,
                         "The producer is loading other producers; none of them may load it");
}

std::unique_ptr<ForeignInterfaces> LoadForeignProducers() {
    ProducerLoader loader(System::LibraryPath());
    t_loadingProducers = true;
    try {
        loader.LoadFolders(GentlSettings::Instance().Folders());
    } catch (...) {
        t_loadingProducers = false;
        throw;
    }
    t_loadingProducers = false;
    std::vector<ProducerSkip> skipped = loader.Skipped();
    return std::make_unique<ForeignInterfaces>(loader.TakeProducers(), std::move(skipped));
}

} // namespace

Library& Library::Instance() {
    static Library instance;
    return instance;
}

void Library::ThrowNotInitialised() {
    throw GenTLError(GenTL::GC_ERR_NOT_INITIALIZED, "The producer is not initialised (GCInitLib)");
}

void Library::Init() {
    RequireNotLoading();
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_initialised.load())
        throw GenTLError(GenTL::GC_ERR_RESOURCE_IN_USE, "The producer is already initialised");
    m_initialised.store(true, std::memory_order_release);
}

void Library::Close() {
    std::shared_ptr<System> system;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        RequireInit();
        m_initialised.store(false, std::memory_order_release);
        system = std::move(m_system);
        m_systemHandle = nullptr;
    }
    if (system)
        system->Close();
}

GenTL::TL_HANDLE Library::OpenSystem() {
    RequireNotLoading();
    std::lock_guard<std::mutex> lock(m_mutex);
    RequireInit();
    if (m_system)
        throw GenTLError(GenTL::GC_ERR_RESOURCE_IN_USE, "The system module is already open");
    auto system = System::Create(MakeBackends(), LoadForeignProducers());
    m_systemHandle = system->Handle();
    m_system = std::move(system);
    return m_systemHandle;
}

void Library::CloseSystem(GenTL::TL_HANDLE handle) {
    std::shared_ptr<System> system;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        RequireInit();
        if (!m_system || handle != m_systemHandle)
            throw GenTLError(GenTL::GC_ERR_INVALID_HANDLE, "Not the open system module");
        system = std::move(m_system);
        m_systemHandle = nullptr;
    }
    system->Close();
}

std::shared_ptr<System> Library::OpenedSystem() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_system;
}

} // namespace Producer
} // namespace Orvan
