// Buffer hand-off through the producer: a camera thread fills each queued buffer with one copy
// of the frame, delivers it through EVENT_NEW_BUFFER, and the consumer takes and requeues it.
// Beside it, a loop that only copies the same bytes: the ratio is the hand-off's overhead.
#include "CameraCatalog.h"
#include "FakeCamera.h"

#include <GenTL/GenTL.h>
#include <GenTL/OrvanTestControl.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

using namespace GenTL;
using namespace Orvan::Producer;

namespace {

constexpr size_t kBuffers = 8;

struct Frame {
    uint32_t width, height;
};

Frame FrameOf(const benchmark::State& state) {
    return {static_cast<uint32_t>(state.range(0)), static_cast<uint32_t>(state.range(1))};
}

// The producer opened on one free-running fake camera down to a started data stream.
class OpenStream {
public:
    explicit OpenStream(const Frame& frame) {
        FakeCamera::Options options;
        options.width = frame.width;
        options.height = frame.height;
        options.period = std::chrono::microseconds(0);
        CameraCatalog::Instance().SetMaker([options](const std::string&, uint32_t index) {
            return std::unique_ptr<RemoteDevice>(new FakeCamera(index, options));
        });
        const char* models[] = {"Fake"};
        OrvanTC_SetVirtualCameras(models, 1, 1);
        GCInitLib();
        TLOpen(&m_system);
        char id[64];
        size_t size = sizeof(id);
        TLGetInterfaceID(m_system, 0, id, &size);
        TLOpenInterface(m_system, id, &m_interface);
        IFUpdateDeviceList(m_interface, nullptr, 100);
        size = sizeof(id);
        IFGetDeviceID(m_interface, 0, id, &size);
        IFOpenDevice(m_interface, id, DEVICE_ACCESS_CONTROL, &m_device);
        size = sizeof(id);
        DevGetDataStreamID(m_device, 0, id, &size);
        DevOpenDataStream(m_device, id, &m_stream);
        GCRegisterEvent(m_stream, EVENT_NEW_BUFFER, &m_event);
        const size_t bytes = size_t(frame.width) * frame.height;
        for (size_t i = 0; i < kBuffers; ++i) {
            BUFFER_HANDLE buffer = nullptr;
            DSAllocAndAnnounceBuffer(m_stream, bytes, nullptr, &buffer);
            DSQueueBuffer(m_stream, buffer);
        }
        DSStartAcquisition(m_stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE);
    }
    ~OpenStream() {
        DSStopAcquisition(m_stream, ACQ_STOP_FLAGS_DEFAULT);
        GCCloseLib();
        OrvanTC_Reset();
        CameraCatalog::Instance().SetMaker(nullptr);
    }

    // Takes one delivered buffer and queues it again; false if none came.
    bool HandOff() {
        EVENT_NEW_BUFFER_DATA data{};
        size_t size = sizeof(data);
        if (EventGetData(m_event, &data, &size, 5000) != GC_ERR_SUCCESS)
            return false;
        return DSQueueBuffer(m_stream, data.BufferHandle) == GC_ERR_SUCCESS;
    }

private:
    TL_HANDLE m_system = nullptr;
    IF_HANDLE m_interface = nullptr;
    DEV_HANDLE m_device = nullptr;
    DS_HANDLE m_stream = nullptr;
    EVENT_HANDLE m_event = nullptr;
};

void BM_HandOff(benchmark::State& state) {
    const Frame frame = FrameOf(state);
    OpenStream stream(frame);
    for (auto _ : state) {
        if (!stream.HandOff()) {
            state.SkipWithError("no buffer delivered");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations());
    state.SetBytesProcessed(int64_t(state.iterations()) * frame.width * frame.height);
}

void BM_CopyOnly(benchmark::State& state) {
    const Frame frame = FrameOf(state);
    const size_t bytes = size_t(frame.width) * frame.height;
    std::vector<uint8_t> source(bytes, 0x5A);
    std::vector<std::vector<uint8_t>> targets(kBuffers, std::vector<uint8_t>(bytes));
    size_t next = 0;
    for (auto _ : state) {
        std::memcpy(targets[next].data(), source.data(), bytes);
        benchmark::DoNotOptimize(targets[next].data());
        next = (next + 1) % kBuffers;
    }
    state.SetItemsProcessed(state.iterations());
    state.SetBytesProcessed(int64_t(state.iterations()) * bytes);
}

} // namespace

// The camera fills on its own thread: real time is what a consumer sees.
BENCHMARK(BM_HandOff)->Args({64, 64})->Args({4096, 3000})->UseRealTime();
BENCHMARK(BM_CopyOnly)->Args({64, 64})->Args({4096, 3000})->UseRealTime();
