// orvan-api-stress [--seconds N] [--seed S]: several threads drive random sequences of the
// public API against several virtual cameras at once, each thread owning one camera and all
// of them sharing the system, discovery, the disconnect poller and the producer's injected
// failures. After every step it checks that nothing hung (a watchdog per thread names the
// stuck step), that every failure was a GenICam exception, and that the producer accounts for
// every buffer a stream announced. Prints a summary; exits non-zero on the first violation.
// ctest runs it for under a minute; a soak runs it for as long as it is told.
#include "Watchdog.h"

#include <GenTL/OrvanTestControl.h>
#include <Orvan/OrvanApi.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <future>
#include <map>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;

const char* const kModels[] = {"Mono", "Mono", "Color", "MultiStream"};
constexpr size_t kWorkers = sizeof(kModels) / sizeof(kModels[0]);
// Entry points whose failure the SDK must turn into an exception and recover from.
const char* const kFailingCalls[] = {"DSQueueBuffer",     "DSStartAcquisition", "DSStopAcquisition",
                                     "DSRevokeBuffer",    "GCRegisterEvent",    "EventGetData",
                                     "DSGetBufferInfo",   "IFOpenDevice",       "GCReadPort",
                                     "IFUpdateDeviceList"};

std::atomic<bool> g_failed{false};
std::mutex g_reportMutex;

void Violation(size_t worker, const std::string& step, const std::string& what) {
    std::lock_guard<std::mutex> lock(g_reportMutex);
    std::fprintf(stderr, "VIOLATION worker %zu, step %s: %s\n", worker, step.c_str(), what.c_str());
    g_failed = true;
}

struct Counting : Orvan::IImageCallback {
    std::atomic<uint64_t> images{0};
    void OnImage(Orvan::IImage*) override {
        // Every seventh image fails, as application code does; the library must shrug it off.
        if (++images % 7 == 0)
            throw std::runtime_error("application failure");
    }
};

struct Disconnects : Orvan::IDisconnectCallback {
    std::atomic<uint64_t> calls{0};
    void OnDeviceDisconnected(Orvan::IDevice*) override { ++calls; }
};

class Worker {
public:
    Worker(size_t index, Orvan::ISystem* system, std::string deviceId, uint32_t seed)
        : m_index(index), m_system(system), m_deviceId(std::move(deviceId)), m_random(seed) {}

    void Run(std::chrono::steady_clock::time_point end) {
        SpineTest::Watchdog watchdog(60s);
        while (std::chrono::steady_clock::now() < end && !g_failed) {
            const Step& step = kSteps[Pick(kSteps.size())];
            watchdog.Stage("worker " + std::to_string(m_index) + ": " + step.name);
            Attempt(step);
            ++m_counts[step.name];
        }
        watchdog.Stage("worker " + std::to_string(m_index) + ": final clean-up");
        Attempt({"Destroy", &Worker::Destroy});
        OrvanTC_SetDeviceConnected(m_deviceId.c_str(), 1);
    }

    std::map<std::string, uint64_t> Counts() const { return m_counts; }
    uint64_t Exceptions() const { return m_exceptions; }
    uint64_t Images() const { return m_callback.images + m_taken; }

private:
    struct Step {
        const char* name;
        void (Worker::*run)();
    };
    static const std::vector<Step> kSteps;

    size_t Pick(size_t count) {
        return std::uniform_int_distribution<size_t>(0, count - 1)(m_random);
    }

    void Attempt(const Step& step) {
        try {
            (this->*step.run)();
        } catch (const GenICam::GenericException&) {
            ++m_exceptions;
        } catch (const std::exception& e) {
            Violation(m_index, step.name, std::string("not a GenICam exception: ") + e.what());
        } catch (...) {
            Violation(m_index, step.name, "an exception of unknown type");
        }
    }

    void Open() {
        if (m_device)
            return;
        for (const Orvan::DeviceInfo& info : m_system->GetDevices())
            if (info.DeviceId() == m_deviceId.c_str())
                m_device = m_system->CreateDevice(info);
    }

    void Destroy() {
        if (!m_device)
            return;
        Orvan::IDevice* device = m_device;
        m_device = nullptr;
        m_held.clear();
        m_streaming = false;
        // Switching events off ends the background wait, which may then be collected.
        try {
            device->DeinitializeEvents();
        } catch (const GenICam::GenericException&) {
        }
        if (m_waiter.valid())
            m_waiter.get();
        m_system->DestroyDevice(device);
    }

    void Start() {
        if (!m_device || m_streaming)
            return;
        const size_t count = Pick(2) ? 1 + Pick(8) : Orvan::kAutomaticBufferCount;
        m_device->StartStream(count);
        m_streaming = true;
        const int64_t announced = Announced();
        if (count != Orvan::kAutomaticBufferCount && announced != static_cast<int64_t>(count))
            Violation(m_index, "Start",
                      std::to_string(announced) + " buffers announced after a start with " +
                          std::to_string(count));
    }

    void Stop() {
        if (!m_device || !m_streaming)
            return;
        m_held.clear(); // revoked by the stop
        m_device->StopStream();
        m_streaming = false;
        Expect(Announced() == 0, "Stop", "buffers still announced after the stop");
    }

    void Take() {
        if (!m_device || !m_streaming)
            return;
        m_held.push_back(m_device->GetBuffer(Pick(30)));
        ++m_taken;
        if (m_held.size() > 2 || Pick(2))
            Requeue();
    }

    void Requeue() {
        if (!m_device || m_held.empty())
            return;
        Orvan::IBuffer* buffer = m_held.back();
        m_held.pop_back();
        m_device->RequeueBuffer(buffer);
    }

    void Callbacks() {
        if (!m_device)
            return;
        if (Pick(2))
            m_device->RegisterImageCallback(&m_callback);
        else
            m_device->DeregisterImageCallback(&m_callback);
    }

    void Disconnect() {
        if (!m_device)
            return;
        if (Pick(2))
            m_system->RegisterDeviceDisconnectCallback(m_device, &m_disconnects);
        else
            m_system->DeregisterDeviceDisconnectCallback(&m_disconnects);
    }

    void Events() {
        if (!m_device)
            return;
        switch (Pick(4)) {
        case 0:
            m_device->InitializeEvents();
            break;
        case 1:
            m_device->DeinitializeEvents();
            break;
        case 2:
            if (!m_waiter.valid() || m_waiter.wait_for(0s) == std::future_status::ready) {
                Orvan::IDevice* device = m_device;
                m_waiter = std::async(std::launch::async, [device] {
                    try {
                        device->WaitOnEvent(5000);
                    } catch (const GenICam::GenericException&) {
                    }
                });
            }
            break;
        default:
            m_device->WaitOnEvent(Pick(10));
        }
    }

    void Discovery() {
        if (Pick(3) == 0)
            m_system->ForceIp("02:00:00:00:00:01", "127.0.0.9", "255.0.0.0", "0.0.0.0");
        else
            m_system->UpdateDevices(Pick(50));
    }

    void Plug() { OrvanTC_SetDeviceConnected(m_deviceId.c_str(), Pick(3) ? 1 : 0); }

    void Fail() {
        OrvanTC_FailCall(kFailingCalls[Pick(std::size(kFailingCalls))],
                         static_cast<uint32_t>(1 + Pick(5)), GenTL::GC_ERR_ERROR,
                         "injected by the stress test");
    }

    void Features() {
        if (!m_device)
            return;
        GenApi::INodeMap* nodeMap = m_device->GetNodeMap();
        Orvan::GetNodeValue<int64_t>(nodeMap, "Width");
        Orvan::SetNodeValue<double>(nodeMap, "ExposureTime",
                                    100.0 + static_cast<double>(Pick(100)));
        m_device->IsConnected();
    }

    int64_t Announced() {
        return Orvan::GetNodeValue<int64_t>(m_device->GetTLStreamNodeMap(),
                                            "StreamAnnouncedBufferCount");
    }

    void Expect(bool holds, const char* step, const char* what) {
        if (!holds)
            Violation(m_index, step, what);
    }

    size_t m_index;
    Orvan::ISystem* m_system;
    std::string m_deviceId;
    std::mt19937 m_random;
    Orvan::IDevice* m_device = nullptr;
    bool m_streaming = false;
    std::vector<Orvan::IBuffer*> m_held;
    std::future<void> m_waiter;
    Counting m_callback;
    Disconnects m_disconnects;
    std::map<std::string, uint64_t> m_counts;
    uint64_t m_exceptions = 0;
    uint64_t m_taken = 0;
};

// Opening comes up often enough that devices spend most of the run open.
const std::vector<Worker::Step> Worker::kSteps = {
    {"Open", &Worker::Open},           {"Open", &Worker::Open},
    {"Destroy", &Worker::Destroy},     {"Start", &Worker::Start},
    {"Start", &Worker::Start},         {"Stop", &Worker::Stop},
    {"Take", &Worker::Take},           {"Take", &Worker::Take},
    {"Take", &Worker::Take},           {"Requeue", &Worker::Requeue},
    {"Callbacks", &Worker::Callbacks}, {"Disconnect", &Worker::Disconnect},
    {"Events", &Worker::Events},       {"Discovery", &Worker::Discovery},
    {"Plug", &Worker::Plug},           {"Fail", &Worker::Fail},
    {"Features", &Worker::Features},
};

struct Options {
    double seconds = 30;
    uint32_t seed = 1;
};

Options Parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (std::strcmp(argv[i], "--seconds") == 0)
            options.seconds = std::atof(argv[i + 1]);
        else if (std::strcmp(argv[i], "--seed") == 0)
            options.seed = static_cast<uint32_t>(std::strtoul(argv[i + 1], nullptr, 10));
    }
    if ((argc - 1) % 2 != 0 || options.seconds <= 0) {
        std::fprintf(stderr, "usage: %s [--seconds N] [--seed S]\n", argv[0]);
        std::exit(2);
    }
    return options;
}

void Report(const std::vector<std::unique_ptr<Worker>>& workers, const Options& options) {
    std::map<std::string, uint64_t> steps;
    uint64_t exceptions = 0, images = 0;
    for (const auto& worker : workers) {
        for (const auto& [name, count] : worker->Counts())
            steps[name] += count;
        exceptions += worker->Exceptions();
        images += worker->Images();
    }
    std::printf("seed %u, %.0f s, %zu threads: ", options.seed, options.seconds, workers.size());
    for (const auto& [name, count] : steps)
        std::printf("%s %llu, ", name.c_str(), static_cast<unsigned long long>(count));
    std::printf("GenICam exceptions %llu, images %llu\n",
                static_cast<unsigned long long>(exceptions),
                static_cast<unsigned long long>(images));
}

} // namespace

int main(int argc, char** argv) {
    const Options options = Parse(argc, argv);
    OrvanTC_SetVirtualCameras(kModels, kWorkers, 2);
    Orvan::ISystem* system = Orvan::OpenSystem();
    system->UpdateDevices(1000);
    const std::vector<Orvan::DeviceInfo> devices = system->GetDevices();
    if (devices.size() != kWorkers) {
        std::fprintf(stderr, "expected %zu virtual cameras, found %zu\n", kWorkers, devices.size());
        return 1;
    }
    std::vector<std::unique_ptr<Worker>> workers;
    for (size_t i = 0; i < kWorkers; ++i)
        workers.push_back(std::make_unique<Worker>(i, system, devices[i].DeviceId().c_str(),
                                                   options.seed * 101 + static_cast<uint32_t>(i)));
    const auto end = std::chrono::steady_clock::now() +
                     std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                         std::chrono::duration<double>(options.seconds));
    std::vector<std::thread> threads;
    for (auto& worker : workers)
        threads.emplace_back([&worker, end] { worker->Run(end); });
    for (std::thread& thread : threads)
        thread.join();
    for (const char* call : kFailingCalls)
        OrvanTC_FailCall(call, 0, GenTL::GC_ERR_ERROR, "");
    Report(workers, options);
    system->DeregisterAllDeviceDisconnectCallbacks();
    Orvan::CloseSystem(system);
    OrvanTC_Reset();
    std::printf(g_failed ? "stress: FAILED\n" : "stress: no hang, no crash, no lost buffer\n");
    return g_failed ? 1 : 0;
}
