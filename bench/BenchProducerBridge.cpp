// The 12-megapixel virtual camera streamed through the SDK directly and through the gentl
// transport in one run: a copy of this producer is loaded as another producer, and the same
// camera model is reached behind it. Beside the streams, the cost of one producer call
// forwarded through the bridge against the same call made directly.
#include "FastCamera.h"
#include <GenTL/GenTL.h>
#include <GenTL/OrvanTestControl.h>
#include <Orvan/GenApiCustom.h>
#include <Orvan/OrvanApi.h>

#include <benchmark/benchmark.h>

#include <dlfcn.h>

#include <string>

namespace {

constexpr uint64_t kWaitMs = 5000;
constexpr size_t kBuffers = 16;
const char* const kMono[] = {"Mono"};

// Our producer with one Mono camera and the copy with one: interface 0 is the direct camera,
// interface 1 the bridged one. Set before every system opens.
void ChooseCameras() {
    static void* copy = nullptr;
    const std::string folder = ORVAN_BRIDGE_COPY_DIR;
    if (!copy)
        copy = dlopen((folder + "/OrvanCopy.cti").c_str(), RTLD_NOW | RTLD_LOCAL);
    using SetCameras = int32_t (*)(const char* const*, uint32_t, uint32_t);
    reinterpret_cast<SetCameras>(dlsym(copy, "OrvanTC_SetVirtualCameras"))(kMono, 1, 1);
    OrvanTC_SetVirtualCameras(kMono, 1, 1);
    OrvanTC_SetGenTLProducers(folder.c_str());
}

const char* Route(const benchmark::State& state) {
    return state.range(0) == 0 ? "direct" : "bridge";
}

void BM_Stream12MP(benchmark::State& state) {
    ChooseCameras();
    Orvan::ISystem* system = Orvan::OpenSystem();
    system->UpdateDevices(500);
    const std::string interfaceId = system->GetInterfaces().at(size_t(state.range(0))).Id().c_str();
    Orvan::IDevice* device = nullptr;
    for (const Orvan::DeviceInfo& info : system->GetDevices())
        if (info.InterfaceId() == interfaceId.c_str())
            device = system->CreateDevice(info);
    Bench::MakeFast(device->GetNodeMap());
    device->StartStream(kBuffers);
    for (auto _ : state) {
        Orvan::IImage* image = device->GetImage(kWaitMs);
        benchmark::DoNotOptimize(image->GetFrameId());
        device->RequeueBuffer(image);
    }
    device->StopStream();
    system->DestroyDevice(device);
    Orvan::CloseSystem(system);
    OrvanTC_Reset();
    state.SetItemsProcessed(state.iterations());
    state.SetLabel(Route(state));
}

// One DSGetBufferInfo on an announced buffer of the stream, through plain GenTL calls.
void BM_ForwardedCall(benchmark::State& state) {
    using namespace GenTL;
    ChooseCameras();
    GCInitLib();
    TL_HANDLE system = nullptr;
    TLOpen(&system);
    char id[128];
    size_t size = sizeof(id);
    TLGetInterfaceID(system, uint32_t(state.range(0)), id, &size);
    IF_HANDLE interface = nullptr;
    TLOpenInterface(system, id, &interface);
    IFUpdateDeviceList(interface, nullptr, 100);
    size = sizeof(id);
    IFGetDeviceID(interface, 0, id, &size);
    DEV_HANDLE device = nullptr;
    IFOpenDevice(interface, id, DEVICE_ACCESS_CONTROL, &device);
    size = sizeof(id);
    DevGetDataStreamID(device, 0, id, &size);
    DS_HANDLE stream = nullptr;
    DevOpenDataStream(device, id, &stream);
    BUFFER_HANDLE buffer = nullptr;
    DSAllocAndAnnounceBuffer(stream, 4096, nullptr, &buffer);
    for (auto _ : state) {
        size_t value = 0;
        size = sizeof(value);
        INFO_DATATYPE type = 0;
        DSGetBufferInfo(stream, buffer, BUFFER_INFO_SIZE, &type, &value, &size);
        benchmark::DoNotOptimize(value);
    }
    GCCloseLib();
    OrvanTC_Reset();
    state.SetLabel(Route(state));
}

} // namespace

// The camera fills on its own thread: real time is what a consumer sees. Direct and bridged
// alternate so that a drift of the machine touches both.
BENCHMARK(BM_Stream12MP)
    ->Arg(0)
    ->Arg(1)
    ->Arg(0)
    ->Arg(1)
    ->Arg(0)
    ->Arg(1)
    ->UseRealTime()
    ->MinTime(3.0);
BENCHMARK(BM_ForwardedCall)->Arg(0)->Arg(1);
