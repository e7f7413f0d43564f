// Image delivery through the SDK against the producer's own hand-off on the same virtual
// camera, and sustained 12-megapixel streaming through both SDK delivery paths.
//
// Small frames: the camera runs with the shortest exposure and no bandwidth or frame-rate
// limit, and the consumer still outpaces it, so every take waits. Real time is the camera's
// pace; the consumer thread's CPU time per image is taking and giving back one image plus the
// wake-up, the same in both runs, so their CPU-time difference is what the SDK adds.
//
// Streaming: the argument is the duration in seconds. Five keep a run short; register the
// benchmark with Arg(30) for the full soak. Lost images come from the stream's own counter
// and, independently, from gaps in the frame ids.
#include "FastCamera.h"
#include "ProducerStream.h"
#include "core/DeviceDescription.h"
#include "core/Port.h"
#include "feature/NodeMapUtility.h"

#include <GenApi/NodeMapFactory.h>
#include <GenApi/Pointer.h>
#include <GenTL/OrvanTestControl.h>
#include <Orvan/IDevice.h>
#include <Orvan/OrvanApi.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <thread>

namespace {

constexpr size_t kBuffers = 16;
constexpr uint64_t kWaitMs = 5000;

struct Frame {
    int64_t width, height;
    size_t Bytes() const { return size_t(width) * size_t(height); }
};

constexpr Frame kSmall{64, 64};
constexpr Frame kTwelveMegapixel{4096, 3000};

// The camera's own features over a plain GenTL device handle, so that the producer baseline
// configures the camera exactly as the SDK run does without going through the SDK's device.
class RemoteFeatures {
public:
    explicit RemoteFeatures(GenTL::DEV_HANDLE device) : m_device(device) {
        m_remote = std::make_unique<Orvan::TLBase>(Orvan::GetRemotePort(&m_device));
        char* data = nullptr;
        uint64_t size = 0;
        Orvan::ReadXML(m_remote.get(), Orvan::GetUrlInfo(m_remote.get()), &data, size);
        std::unique_ptr<char[]> owner(data);
        GenApi::CNodeMapFactory factory(GenApi::ContentType_Auto, data, size);
        m_nodeMap = factory.CreateNodeMap("Device", false);
        m_port = Orvan::Port(m_remote.get());
        m_nodeMap->Connect(&m_port);
    }
    RemoteFeatures(const RemoteFeatures&) = delete;
    RemoteFeatures& operator=(const RemoteFeatures&) = delete;
    ~RemoteFeatures() { Orvan::DestroyNodeMap(m_nodeMap); }

    GenApi::INodeMap* NodeMap() const { return m_nodeMap; }

private:
    Orvan::TLDevice m_device;
    std::unique_ptr<Orvan::TLBase> m_remote;
    Orvan::Port m_port;
    GenApi::INodeMap* m_nodeMap = nullptr;
};

void ChooseMonoCamera() {
    const char* models[] = {"Mono"};
    OrvanTC_SetVirtualCameras(models, 1, 1);
}

void BM_ProducerHandOff(benchmark::State& state) {
    ChooseMonoCamera();
    {
        Bench::ProducerStream stream;
        RemoteFeatures camera(stream.Device());
        Bench::MakeFast(camera.NodeMap(), kSmall.width, kSmall.height);
        stream.Start(kBuffers, kSmall.Bytes());
        GenApi::CCommandPtr(camera.NodeMap()->GetNode("AcquisitionStart"))->Execute();
        for (auto _ : state) {
            if (!stream.HandOff()) {
                state.SkipWithError("no buffer delivered");
                break;
            }
        }
        GenApi::CCommandPtr(camera.NodeMap()->GetNode("AcquisitionStop"))->Execute();
    }
    OrvanTC_Reset();
    state.SetItemsProcessed(state.iterations());
}

// The SDK opened on the one virtual camera, made fast at the given frame size.
class OpenDevice {
public:
    explicit OpenDevice(const Frame& frame) {
        ChooseMonoCamera();
        m_system = Orvan::OpenSystem();
        m_system->UpdateDevices(1000);
        m_device = m_system->CreateDevice(m_system->GetDevices().at(0));
        Bench::MakeFast(m_device->GetNodeMap(), frame.width, frame.height);
    }
    OpenDevice(const OpenDevice&) = delete;
    OpenDevice& operator=(const OpenDevice&) = delete;
    ~OpenDevice() {
        m_system->DestroyDevice(m_device);
        Orvan::CloseSystem(m_system);
        OrvanTC_Reset();
    }

    Orvan::IDevice* operator->() const { return m_device; }

    int64_t LostFrames() const {
        return Orvan::GetNodeValue<int64_t>(m_device->GetTLStreamNodeMap(), "StreamLostFrameCount");
    }

private:
    Orvan::ISystem* m_system = nullptr;
    Orvan::IDevice* m_device = nullptr;
};

void BM_SdkGetImageRequeue(benchmark::State& state) {
    OpenDevice device(kSmall);
    device->StartStream(kBuffers);
    for (auto _ : state) {
        Orvan::IImage* image = device->GetImage(kWaitMs);
        benchmark::DoNotOptimize(image->GetData());
        device->RequeueBuffer(image);
    }
    device->StopStream();
    state.SetItemsProcessed(state.iterations());
}

// Counts images and the frame ids the camera skipped between them.
class FrameTally {
public:
    void Saw(uint64_t frameId) {
        if (m_last != 0 && frameId > m_last + 1)
            m_gaps += frameId - m_last - 1;
        m_last = frameId;
        ++m_images;
    }
    void Report(benchmark::State& state, const OpenDevice& device, double seconds) const {
        const double images = double(m_images.load());
        state.counters["images"] = images;
        state.counters["fps"] = images / seconds;
        state.counters["MB/s"] = images * double(kTwelveMegapixel.Bytes()) / 1e6 / seconds;
        state.counters["lost"] = double(device.LostFrames());
        state.counters["id_gaps"] = double(m_gaps);
    }

private:
    std::atomic<uint64_t> m_images{0};
    uint64_t m_last = 0;
    uint64_t m_gaps = 0;
};

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void BM_StreamGetImage(benchmark::State& state) {
    const auto duration = std::chrono::seconds(state.range(0));
    OpenDevice device(kTwelveMegapixel);
    FrameTally tally;
    double seconds = 0;
    for (auto _ : state) {
        device->StartStream(kBuffers);
        const Clock::time_point start = Clock::now();
        while (Clock::now() - start < duration) {
            Orvan::IImage* image = device->GetImage(kWaitMs);
            tally.Saw(image->GetFrameId());
            device->RequeueBuffer(image);
        }
        seconds = SecondsSince(start);
        device->StopStream();
    }
    tally.Report(state, device, seconds);
}

class TallyCallback : public Orvan::IImageCallback {
public:
    explicit TallyCallback(FrameTally& tally) : m_tally(tally) {}
    void OnImage(Orvan::IImage* image) override { m_tally.Saw(image->GetFrameId()); }

private:
    FrameTally& m_tally;
};

// The callback thread does the taking and giving back; this thread only waits.
void BM_StreamCallback(benchmark::State& state) {
    const auto duration = std::chrono::seconds(state.range(0));
    OpenDevice device(kTwelveMegapixel);
    FrameTally tally;
    TallyCallback callback(tally);
    device->RegisterImageCallback(&callback);
    double seconds = 0;
    for (auto _ : state) {
        device->StartStream(kBuffers);
        const Clock::time_point start = Clock::now();
        std::this_thread::sleep_for(duration);
        seconds = SecondsSince(start);
        device->StopStream();
    }
    device->DeregisterAllImageCallbacks();
    tally.Report(state, device, seconds);
}

constexpr int64_t kStreamSeconds = 5;

} // namespace

BENCHMARK(BM_ProducerHandOff);
BENCHMARK(BM_SdkGetImageRequeue);
BENCHMARK(BM_StreamGetImage)->Arg(kStreamSeconds)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(BM_StreamCallback)->Arg(kStreamSeconds)->Iterations(1)->Unit(benchmark::kSecond);
