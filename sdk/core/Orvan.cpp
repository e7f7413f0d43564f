#include "Orvan.h"

#include "ErrorTranslation.h"
#include "System.h"
#include "TLSystem.h"

#include <GenTL/GenTL.h>

#include <memory>
#include <new>

namespace Orvan {

std::atomic<bool> g_factoryInit{false};
std::mutex g_factoryMutex;
FactoryScratchPool g_factoryPools[kFactoryPoolCount] = {};

void OpenImageFactory() {
    g_factoryInit.exchange(true);
    std::lock_guard<std::mutex> lock(g_factoryMutex);
    for (FactoryScratchPool& pool : g_factoryPools)
        pool = FactoryScratchPool{nullptr, 0};
}

void CloseImageFactory() {
    {
        std::lock_guard<std::mutex> lock(g_factoryMutex);
        for (FactoryScratchPool& pool : g_factoryPools) {
            delete[] pool.data;
            pool = FactoryScratchPool{nullptr, 0};
        }
    }
    g_factoryInit.exchange(false);
}

bool HasImageFactoryInit() {
    return g_factoryInit.load();
}

namespace {

void InitializeProducer() {
    int32_t status = GenTL::GCInitLib();
    if (status == GenTL::GC_ERR_RESOURCE_IN_USE) {
        // The producer refuses a second initialisation. This one site names the code with its
        // namespace and throws a runtime error rather than the table's logical error.
        std::string message = "RuntimeException (GenTL::GC_ERR_RESOURCE_IN_USE): Library already "
                              "initialized (must initialize only once) (Orvan, OpenSystem; "
                              "GenTL::GCInitLib); " +
                              ProducerErrorText();
        throw GenICam::RuntimeException(message.c_str(), __FILE__, __LINE__);
    }
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to initialize library", ORVAN_SITE("Orvan", "OpenSystem"),
                        "GCInitLib");
}

std::unique_ptr<TLSystem> NewSystemWrapper() {
    try {
        return std::make_unique<TLSystem>();
    } catch (const std::bad_alloc&) {
        GenTL::GCCloseLib();
        ThrowLibraryError<GenICam::BadAllocException>("Library failed to allocate resources",
                                                      ORVAN_SITE("Orvan", "OpenSystem"));
    }
}

} // namespace

ISystem* OpenSystem() {
    InitializeProducer();
    std::unique_ptr<TLSystem> tlSystem = NewSystemWrapper();
    int32_t status = tlSystem->Open();
    if (status != GenTL::GC_ERR_SUCCESS) {
        tlSystem.reset();
        // The producer stays initialised on purpose: a later OpenSystem reports that.
        ThrowGenTLError(status, "Unable to open system", ORVAN_SITE("Orvan", "OpenSystem"),
                        "TLOpen");
    }
    return new System(std::move(tlSystem));
}

void CloseSystem(ISystem* system) {
    if (!dynamic_cast<System*>(system))
        ThrowLibraryError<GenICam::InvalidArgumentException>("System is null",
                                                             ORVAN_SITE("Orvan", "CloseSystem"));
    delete system;
    int32_t status = GenTL::GCCloseLib();
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to close library", ORVAN_SITE("Orvan", "CloseSystem"),
                        "GCCloseLib");
}

GenICam::gcstring GetVersion() {
    return "0.1.104.0";
}

} // namespace Orvan
