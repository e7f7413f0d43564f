// The producer's test-control interface.
#include <GenTL/OrvanTestControl.h>

#include "CameraCatalog.h"
#include "EntryPoint.h"
#include "FaultInjector.h"
#include "Library.h"
#include "System.h"
#include "gentl/GentlSettings.h"
#include "gige/GigeSettings.h"

#include <exception>

using namespace Orvan::Producer;

namespace {

// Finds the camera in the open system and hands it to action; ORVAN_TC_NOT_FOUND otherwise.
template <typename Action>
int32_t WithCamera(const char* deviceId, Action action) {
    if (!deviceId)
        return ORVAN_TC_BAD_ARGUMENT;
    std::shared_ptr<System> system = Library::Instance().OpenedSystem();
    std::shared_ptr<RemoteDevice> camera = system ? system->FindCamera(deviceId) : nullptr;
    auto* controls = dynamic_cast<VirtualControls*>(camera.get());
    if (!controls)
        return ORVAN_TC_NOT_FOUND;
    action(*system, *controls);
    return ORVAN_TC_OK;
}

} // namespace

extern "C" {

int32_t OrvanTC_SetVirtualCameras(const char* const* models, uint32_t count,
                                  uint32_t interfaceCount) {
    if ((count && !models) || interfaceCount == 0)
        return ORVAN_TC_BAD_ARGUMENT;
    std::vector<std::string> list;
    for (uint32_t i = 0; i < count; ++i) {
        if (!models[i] || !CameraCatalog::Instance().KnowsModel(models[i]))
            return ORVAN_TC_BAD_ARGUMENT;
        list.emplace_back(models[i]);
    }
    CameraCatalog::Instance().Configure(std::move(list), interfaceCount);
    GigeSettings::Instance().SetEnabled(false);
    GentlSettings::Instance().SetForTests("");
    return ORVAN_TC_OK;
}

int32_t OrvanTC_SetDeviceConnected(const char* deviceId, int32_t connected) {
    return WithCamera(deviceId, [&](System& system, VirtualControls& controls) {
        controls.SetConnected(connected != 0);
        system.NotifyConnection(deviceId, connected != 0);
    });
}

int32_t OrvanTC_InjectFrameFault(const char* deviceId, int32_t fault, uint32_t count) {
    if (fault < ORVAN_TC_FAULT_DROP || fault > ORVAN_TC_FAULT_INCOMPLETE)
        return ORVAN_TC_BAD_ARGUMENT;
    static const FrameFault kFaults[] = {FrameFault::Drop, FrameFault::Corrupt,
                                         FrameFault::Incomplete};
    return WithCamera(deviceId, [&](System&, VirtualControls& controls) {
        controls.InjectFrameFault(kFaults[fault], count);
    });
}

int32_t OrvanTC_FailCall(const char* function, uint32_t nthCall, int32_t code, const char* text) {
    EntryPoint entry;
    if (!function || !text || code == GenTL::GC_ERR_SUCCESS || !FindEntryPoint(function, entry))
        return ORVAN_TC_BAD_ARGUMENT;
    FaultInjector::Instance().Arm(entry, nthCall, code, text);
    return ORVAN_TC_OK;
}

int32_t OrvanTC_EnableGigE(int32_t enabled) {
    GigeSettings::Instance().SetEnabled(enabled != 0);
    return ORVAN_TC_OK;
}

int32_t OrvanTC_SetGigEDiscovery(const char* interfaces, uint32_t port) {
    if (port > 65535)
        return ORVAN_TC_BAD_ARGUMENT;
    std::optional<std::string> names;
    if (interfaces)
        names = interfaces;
    GigeSettings::Instance().Override(std::move(names), static_cast<uint16_t>(port));
    return ORVAN_TC_OK;
}

int32_t OrvanTC_SetGenTLProducers(const char* folders) {
    GentlSettings::Instance().SetForTests(folders ? folders : "");
    return ORVAN_TC_OK;
}

int32_t OrvanTC_Reset(void) {
    FaultInjector::Instance().DisarmAll();
    CameraCatalog::Instance().Reset();
    GigeSettings::Instance().ResetForTests();
    GentlSettings::Instance().SetForTests("");
    return ORVAN_TC_OK;
}

} // extern "C"
