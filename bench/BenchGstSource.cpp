// 12-megapixel streaming through orvansrc into "fakesink sync=false" beside the plain C++
// GetImage loop on the same virtual camera in the same run: the element's frame rate as a share
// of the SDK's own.
//
// The element hands the camera's buffers downstream without copying. The "pool_addresses"
// counter shows it: the sink sees exactly as many distinct pixel addresses as the pool has
// buffers, cycling through them; a copy would show the allocator's addresses instead.
#include "FastCamera.h"

#include <GenTL/OrvanTestControl.h>
#include <Orvan/OrvanApi.h>
#include <benchmark/benchmark.h>
#include <gst/gst.h>

#include <condition_variable>
#include <mutex>
#include <set>
#include <string>

namespace {

constexpr size_t kPool = 8;
constexpr uint64_t kWaitMs = 5000;
const char* const kFeatures = "PixelFormat=Mono8 Width=4096 Height=3000 ExposureTime=1 "
                              "DeviceLinkThroughputLimitMode=Off AcquisitionFrameRateEnable=0";

void UseOneMonoCamera() {
    const char* models[] = {"Mono"};
    OrvanTC_SetVirtualCameras(models, 1, 1);
}

void BM_GetImageLoop(benchmark::State& state) {
    UseOneMonoCamera();
    Orvan::ISystem* system = Orvan::OpenSystem();
    system->UpdateDevices(1000);
    Orvan::IDevice* device = system->CreateDevice(system->GetDevices().at(0));
    Bench::MakeFast(device->GetNodeMap());
    device->StartStream(kPool);
    for (auto _ : state) {
        Orvan::IImage* image = device->GetImage(kWaitMs);
        benchmark::DoNotOptimize(image->GetData());
        device->RequeueBuffer(image);
    }
    device->StopStream();
    system->DestroyDevice(device);
    Orvan::CloseSystem(system);
    state.counters["fps"] =
        benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}

// What the sink saw, handed to the benchmark thread one frame at a time.
struct Arrivals {
    std::mutex mutex;
    std::condition_variable arrived;
    uint64_t count = 0;
    std::set<const void*> addresses;
};

void OnHandoff(GstElement*, GstBuffer* buffer, GstPad*, gpointer data) {
    auto* arrivals = static_cast<Arrivals*>(data);
    GstMapInfo map;
    gst_buffer_map(buffer, &map, GST_MAP_READ);
    std::lock_guard<std::mutex> lock(arrivals->mutex);
    arrivals->addresses.insert(map.data);
    ++arrivals->count;
    arrivals->arrived.notify_one();
    gst_buffer_unmap(buffer, &map);
}

GstElement* Pipeline(Arrivals& arrivals) {
    const std::string description = "orvansrc buffers=" + std::to_string(kPool) + " features=\"" +
                                    kFeatures +
                                    "\" ! fakesink name=sink sync=false signal-handoffs=true";
    GstElement* pipeline = gst_parse_launch(description.c_str(), nullptr);
    GstElement* sink = gst_bin_get_by_name(GST_BIN(pipeline), "sink");
    g_signal_connect(sink, "handoff", G_CALLBACK(OnHandoff), &arrivals);
    gst_object_unref(sink);
    return pipeline;
}

void BM_OrvanSrc(benchmark::State& state) {
    UseOneMonoCamera();
    Arrivals arrivals;
    GstElement* pipeline = Pipeline(arrivals);
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    uint64_t taken = 0;
    for (auto _ : state) {
        std::unique_lock<std::mutex> lock(arrivals.mutex);
        arrivals.arrived.wait(lock, [&] { return arrivals.count > taken; });
        ++taken;
    }
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
    state.counters["fps"] =
        benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
    state.counters["pool_addresses"] = double(arrivals.addresses.size());
}

BENCHMARK(BM_GetImageLoop)->Iterations(300)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OrvanSrc)->Iterations(300)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    gst_init(&argc, &argv);
    gst_registry_scan_path(gst_registry_get(), ORVAN_GST_PLUGIN_DIR);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
