// What production applications do to a device from several threads at once: clean up from
// disconnect callbacks, tear devices down while other threads wait on them, change the stream
// underneath the image-callback thread. Each scenario runs under a watchdog, so a deadlock
// fails with the scenario's name instead of stalling the suite.
#include "DeviceTestSupport.h"
#include "Watchdog.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <ctime>
#include <fstream>
#include <future>
#include <string>
#include <thread>

namespace {

using namespace std::chrono_literals;
using DeviceTest::DeviceFixture;
using SpineTest::Capture;

class Patterns;

struct Scenario {
    const char* name;
    std::vector<const char*> models;
    void (*run)(Patterns& test);
};

class Patterns : public DeviceFixture, public ::testing::WithParamInterface<Scenario> {
public:
    using DeviceFixture::Create;
    using DeviceFixture::devices;
    using DeviceFixture::LimitFrames;
    using DeviceFixture::Open;
    using DeviceFixture::system;
};

long ThreadId() {
    return syscall(SYS_gettid);
}

// True once the thread sleeps in the kernel; a thread about to wait shows that within moments.
bool Blocked(long tid) {
    std::ifstream stat("/proc/self/task/" + std::to_string(tid) + "/stat");
    std::string line;
    std::getline(stat, line);
    const size_t close = line.rfind(')');
    return close != std::string::npos && close + 2 < line.size() && line[close + 2] == 'S';
}

void WaitUntilBlocked(const std::atomic<long>& tid) {
    while (tid == 0 || !Blocked(tid))
        std::this_thread::sleep_for(5ms);
    // Asleep twice in a row: in the event wait, not a lock passed on the way there.
    std::this_thread::sleep_for(20ms);
    while (!Blocked(tid))
        std::this_thread::sleep_for(5ms);
}

double ProcessCpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

// The natural clean-up when a camera goes: destroy its device, open another one, register for
// it; only dropping every registration from inside is refused, with a reason.
class CleanUpOnLoss : public Orvan::IDisconnectCallback {
public:
    CleanUpOnLoss(Orvan::ISystem* system, Orvan::DeviceInfo spare)
        : m_system(system), m_spare(std::move(spare)) {}
    void OnDeviceDisconnected(Orvan::IDevice* device) override {
        m_system->DestroyDevice(device);
        Orvan::IDevice* created = m_system->CreateDevice(m_spare);
        m_system->RegisterDeviceDisconnectCallback(created, this);
        const std::string refusal =
            Capture([&] { m_system->DeregisterAllDeviceDisconnectCallbacks(); }).message;
        m_done.set_value({created, refusal});
    }
    std::future<std::pair<Orvan::IDevice*, std::string>> Done() { return m_done.get_future(); }

private:
    Orvan::ISystem* m_system;
    Orvan::DeviceInfo m_spare;
    std::promise<std::pair<Orvan::IDevice*, std::string>> m_done;
};

void CallbacksDestroyAndCreateDevices(Patterns& t) {
    Orvan::IDevice* lost = t.system->CreateDevice(t.devices[0]);
    CleanUpOnLoss callback(t.system, t.devices[1]);
    auto done = callback.Done();
    t.system->RegisterDeviceDisconnectCallback(lost, &callback);
    OrvanTC_SetDeviceConnected(t.devices[0].DeviceId().c_str(), 0);
    const auto [created, refusal] = done.get();
    EXPECT_NE(refusal.find("from inside a disconnect callback"), std::string::npos) << refusal;
    t.system->DeregisterDeviceDisconnectCallback(&callback);
    EXPECT_EQ(Capture([&] { t.system->DeregisterDeviceDisconnectCallback(&callback); }).message,
              "InvalidArgumentException: Callback handle not found (DeviceCbManager, "
              "DeregisterCallback)");
    t.system->DestroyDevice(created);
}

// Teardown ends a wait for camera events at once; the waiter gets an abort.
void DestroyingADeviceEndsAWaitForItsEvents(Patterns& t) {
    Orvan::IDevice* device = t.system->CreateDevice(t.devices[0]);
    device->InitializeEvents();
    std::atomic<long> tid{0};
    std::future<SpineTest::Outcome> outcome = std::async(std::launch::async, [&] {
        tid = ThreadId();
        return Capture([&] { device->WaitOnEvent(600000); });
    });
    WaitUntilBlocked(tid);
    t.system->DestroyDevice(device);
    const SpineTest::Outcome ended = outcome.get();
    EXPECT_EQ(ended.className, "RuntimeException");
    EXPECT_NE(ended.message.find("Unable to get event data"), std::string::npos) << ended.message;
}

// With the selected stream not running, every wait of the image-callback thread fails at once;
// the thread must pause between attempts rather than burn a core.
void CallbackThreadBacksOffWhenItsStreamChanges(Patterns& t) {
    Orvan::IDevice* device = t.Create();
    // A few frames only: the camera's own work must not count as the thread's.
    t.LimitFrames(device, 4);
    struct : Orvan::IImageCallback {
        void OnImage(Orvan::IImage*) override {}
    } ignore;
    // Stream 0 runs while the device's selection names the TCP stream, as when the transport
    // is switched after the start.
    Orvan::SetNodeValue<bool>(device->GetNodeMap(), "TCPEnable", true);
    device->RegisterImageCallback(&ignore);
    device->StartStream(0, 4);
    const double cpuBefore = ProcessCpuSeconds();
    const auto wallBefore = std::chrono::steady_clock::now();
    std::this_thread::sleep_for(500ms);
    const double cpu = ProcessCpuSeconds() - cpuBefore;
    const double wall =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - wallBefore).count();
    EXPECT_LT(cpu, 0.25 * wall) << "the callback thread spins";
    device->DeregisterAllImageCallbacks();
    device->StopStream(0);
}

// The camera keeps the packet size it had, however the TCP stream ends.
void DestroyingATcpStreamRestoresThePacketSize(Patterns& t) {
    Orvan::IDevice* device = t.system->CreateDevice(t.devices[0]);
    GenApi::INodeMap* nodeMap = device->GetNodeMap();
    const int64_t before = Orvan::GetNodeValue<int64_t>(nodeMap, "DeviceStreamChannelPacketSize");
    Orvan::SetNodeValue<bool>(nodeMap, "TCPEnable", true);
    device->StartStream(4);
    EXPECT_EQ(Orvan::GetNodeValue<int64_t>(nodeMap, "DeviceStreamChannelPacketSize"), 9000);
    t.system->DestroyDevice(device);
    device = t.system->CreateDevice(t.devices[0]);
    EXPECT_EQ(Orvan::GetNodeValue<int64_t>(device->GetNodeMap(), "DeviceStreamChannelPacketSize"),
              before);
    Orvan::SetNodeValue<bool>(device->GetNodeMap(), "TCPEnable", false);
    t.system->DestroyDevice(device);
}

const Scenario kScenarios[] = {
    {"CallbacksDestroyAndCreateDevices", {"Mono", "Mono"}, CallbacksDestroyAndCreateDevices},
    {"DestroyingADeviceEndsAWaitForItsEvents", {"Mono"}, DestroyingADeviceEndsAWaitForItsEvents},
    {"CallbackThreadBacksOffWhenItsStreamChanges",
     {"MultiStream"},
     CallbackThreadBacksOffWhenItsStreamChanges},
    {"DestroyingATcpStreamRestoresThePacketSize",
     {"MultiStream"},
     DestroyingATcpStreamRestoresThePacketSize},
};

} // namespace

TEST_P(Patterns, SurvivesWithoutHangOrLoss) {
    SpineTest::Watchdog watchdog(60s);
    watchdog.Stage(GetParam().name);
    Open(GetParam().models);
    GetParam().run(*this);
}

INSTANTIATE_TEST_SUITE_P(Application, Patterns, ::testing::ValuesIn(kScenarios),
                         [](const ::testing::TestParamInfo<Scenario>& info) {
                             return std::string(info.param.name);
                         });
