// Image callbacks, disconnect callbacks, camera events and chunk data, with the threads they
// run on.
#include "DeviceTestSupport.h"

#include <GenApi/NodeCallback.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

using DeviceTest::DeviceFixture;
using DeviceTest::IntactFrame;
using SpineTest::Capture;
using namespace std::chrono_literals;

namespace {

constexpr uint64_t kWaitMs = 2000;

// Records, in one shared log, the frames it saw and who saw them.
class Recorder : public Orvan::IImageCallback {
public:
    struct Entry {
        int who;
        uint64_t frame;
        std::thread::id thread;
    };
    Recorder(int who, std::vector<Entry>& log, std::mutex& mutex, std::condition_variable& seen)
        : m_who(who), m_log(log), m_mutex(mutex), m_seen(seen) {}
    void OnImage(Orvan::IImage* image) override {
        const uint64_t frame = IntactFrame(image);
        std::lock_guard<std::mutex> lock(m_mutex);
        m_log.push_back({m_who, frame, std::this_thread::get_id()});
        m_seen.notify_all();
    }

private:
    int m_who;
    std::vector<Entry>& m_log;
    std::mutex& m_mutex;
    std::condition_variable& m_seen;
};

class Callbacks : public DeviceFixture {
protected:
    bool WaitForEntries(size_t count) {
        std::unique_lock<std::mutex> lock(mutex);
        return seen.wait_for(lock, 5s, [&] { return log.size() >= count; });
    }
    std::vector<Recorder::Entry> Log() {
        std::lock_guard<std::mutex> lock(mutex);
        return log;
    }

    std::vector<Recorder::Entry> log;
    std::mutex mutex;
    std::condition_variable seen;
};

class DisconnectCounter : public Orvan::IDisconnectCallback {
public:
    void OnDeviceDisconnected(Orvan::IDevice* device) override {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_states.push_back(device->IsConnected());
        m_changed.notify_all();
    }
    std::vector<bool> WaitFor(size_t count) {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait_for(lock, 5s, [&] { return m_states.size() >= count; });
        return m_states;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<bool> m_states;
};

struct NodeCounter {
    void OnNode(GenApi::INode*) { ++fired; }
    std::atomic<int> fired{0};
};

} // namespace

TEST_F(Callbacks, EveryImageReachesEveryCallbackInRegistrationOrderOnOneThread) {
    Open({"Mono"});
    Orvan::IDevice* device = Create();
    Recorder first(1, log, mutex, seen), second(2, log, mutex, seen);
    device->RegisterImageCallback(&first);
    device->RegisterImageCallback(&second);
    EXPECT_EQ(Capture([&] { device->RegisterImageCallback(&first); }).className,
              "InvalidArgumentException");
    EXPECT_EQ(Capture([&] { device->RegisterImageCallback(nullptr); }).message,
              "InvalidArgumentException: Null image callback pointer specified (Device, "
              "RegisterImageCallback)");
    LimitFrames(device, 200);
    device->StartStream(200);
    ASSERT_TRUE(WaitForEntries(400));
    EXPECT_EQ(Capture([&] { device->GetImage(10); }).message,
              "RuntimeException: GetImage should not be called while there are registered "
              "image callbacks (Device, GetImage)");
    device->StopStream();
    const std::vector<Recorder::Entry> entries = Log();
    ASSERT_EQ(entries.size(), 400u);
    for (size_t i = 0; i < entries.size(); ++i) {
        EXPECT_EQ(entries[i].who, 1 + int(i % 2));
        EXPECT_EQ(entries[i].frame, 1 + i / 2);
        EXPECT_EQ(entries[i].thread, entries[0].thread);
        EXPECT_NE(entries[i].thread, std::this_thread::get_id());
    }
    EXPECT_EQ(Announced(device), 0);
}

TEST_F(Callbacks, RegisteredWhileGrabbingAndDeregisteredFromAnotherThread) {
    Open({"Mono"});
    Orvan::IDevice* device = Create();
    Orvan::SetNodeValue<bool>(device->GetNodeMap(), "AcquisitionFrameRateEnable", true);
    Orvan::SetNodeValue<double>(device->GetNodeMap(), "AcquisitionFrameRate", 1000.0);
    device->StartStream(400);
    Orvan::IImage* first = device->GetImage(kWaitMs);
    EXPECT_EQ(IntactFrame(first), 1u);
    device->RequeueBuffer(first);
    Recorder recorder(1, log, mutex, seen);
    device->RegisterImageCallback(&recorder);
    ASSERT_TRUE(WaitForEntries(20));
    std::thread other([&] { device->DeregisterImageCallback(&recorder); });
    other.join();
    const size_t delivered = Log().size();
    std::this_thread::sleep_for(30ms);
    EXPECT_EQ(Log().size(), delivered);
    // The application takes over after the callbacks; an image the thread had already taken
    // when it was told to stop goes back to the pool unseen.
    Orvan::IImage* next = device->GetImage(kWaitMs);
    EXPECT_GT(IntactFrame(next), Log().back().frame);
    device->RequeueBuffer(next);
    device->StopStream();
    uint64_t expected = 2;
    for (const Recorder::Entry& entry : Log())
        EXPECT_EQ(entry.frame, expected++);
}

TEST_F(Callbacks, ConcurrentTakingAndRequeueingLosesNothing) {
    Open({"Mono"});
    Orvan::IDevice* device = Create();
    device->StartStream(300);
    std::mutex handOver;
    std::condition_variable ready;
    std::vector<Orvan::IImage*> taken;
    bool done = false;
    std::thread requeuer([&] {
        std::unique_lock<std::mutex> lock(handOver);
        for (;;) {
            ready.wait(lock, [&] { return done || !taken.empty(); });
            if (taken.empty())
                return;
            Orvan::IImage* image = taken.back();
            taken.pop_back();
            lock.unlock();
            device->RequeueBuffer(image);
            lock.lock();
        }
    });
    std::vector<uint64_t> frames;
    for (int i = 0; i < 300; ++i) {
        Orvan::IImage* image = device->GetImage(kWaitMs);
        frames.push_back(IntactFrame(image));
        std::lock_guard<std::mutex> lock(handOver);
        taken.push_back(image);
        ready.notify_one();
    }
    {
        std::lock_guard<std::mutex> lock(handOver);
        done = true;
        ready.notify_one();
    }
    requeuer.join();
    device->StopStream();
    for (size_t i = 0; i < frames.size(); ++i)
        EXPECT_EQ(frames[i], i + 1);
}

TEST_F(Callbacks, UnpluggingAndReplugginGivesTwoDisconnectCallbacks) {
    Open({"Mono"});
    Orvan::IDevice* device = Create();
    DisconnectCounter counter;
    system->RegisterDeviceDisconnectCallback(device, &counter);
    EXPECT_TRUE(device->IsConnected());
    ASSERT_EQ(OrvanTC_SetDeviceConnected(devices[0].DeviceId().c_str(), 0), 0);
    EXPECT_EQ(counter.WaitFor(1), std::vector<bool>{false});
    ASSERT_EQ(OrvanTC_SetDeviceConnected(devices[0].DeviceId().c_str(), 1), 0);
    EXPECT_EQ(counter.WaitFor(2), (std::vector<bool>{false, true}));
    system->DeregisterDeviceDisconnectCallback(&counter);
    EXPECT_EQ(Capture([&] { system->DeregisterDeviceDisconnectCallback(&counter); }).message,
              "InvalidArgumentException: Callback handle not found (DeviceCbManager, "
              "DeregisterCallback)");
    EXPECT_EQ(Capture([&] { system->RegisterDeviceDisconnectCallback(device, nullptr); }).message,
              "InvalidArgumentException: Null disconnect callback pointer specified "
              "(DeviceCbManager, RegisterCallback)");
}

TEST_F(Callbacks, CameraEventsUpdateTheirNodesAndFireTheirCallbacks) {
    Open({"Mono"});
    Orvan::IDevice* device = Create();
    EXPECT_EQ(Capture([&] { device->WaitOnEvent(10); }).message,
              "LogicalErrorException: Failure waiting on event because device events not "
              "initialized (Device, WaitOnEvent)");
    GenApi::INodeMap* nodeMap = device->GetNodeMap();
    Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "EventSelector", "ExposureEnd");
    Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "EventNotification", "On");
    NodeCounter counter;
    GenApi::CallbackHandleType handle = GenApi::Register(
        nodeMap->GetNode("EventExposureEndFrameID"), counter, &NodeCounter::OnNode);
    device->InitializeEvents();
    device->StartStream(3);
    for (int64_t frame = 1; frame <= 3; ++frame) {
        const int before = counter.fired;
        device->WaitOnEvent(kWaitMs);
        EXPECT_EQ(Integer(nodeMap, "EventExposureEndFrameID"), frame);
        EXPECT_GT(counter.fired.load(), before);
    }
    device->StopStream();
    device->DeinitializeEvents();
    GenApi::Deregister(handle);
}

TEST_F(Callbacks, ChunksShowTheImagesValuesAndTheCrcCatchesCorruption) {
    Open({"Mono"});
    Orvan::IDevice* device = Create();
    GenApi::INodeMap* nodeMap = device->GetNodeMap();
    Orvan::SetNodeValue<bool>(nodeMap, "ChunkModeActive", true);
    ASSERT_EQ(OrvanTC_InjectFrameFault(devices[0].DeviceId().c_str(), ORVAN_TC_FAULT_CORRUPT, 1),
              0);
    device->StartStream(3);
    Orvan::IImage* corrupt = device->GetImage(kWaitMs);
    EXPECT_FALSE(corrupt->VerifyCRC());
    device->RequeueBuffer(corrupt);
    for (int64_t frame = 2; frame <= 3; ++frame) {
        Orvan::IImage* image = device->GetImage(kWaitMs);
        EXPECT_TRUE(image->VerifyCRC());
        EXPECT_EQ(Integer(nodeMap, "ChunkFrameID"), frame);
        Orvan::IChunkData* chunks = image->AsChunkData();
        ASSERT_NE(chunks, nullptr);
        GenApi::CIntegerPtr width = chunks->GetChunk("ChunkWidth");
        ASSERT_TRUE(width.IsValid());
        EXPECT_EQ(width->GetValue(), 64);
        device->RequeueBuffer(image);
    }
    device->StopStream();
}

// A factory copy of a chunk image reads its chunks after its device is gone.
TEST_F(Callbacks, ChunkImageCopiesOutliveTheirDevice) {
    Open({"Mono"});
    Orvan::IDevice* device = Create();
    Orvan::SetNodeValue<bool>(device->GetNodeMap(), "ChunkModeActive", true);
    device->StartStream(2);
    Orvan::IImage* delivered = device->GetImage(kWaitMs);
    GenApi::CIntegerPtr frame = delivered->AsChunkData()->GetChunk("ChunkFrameID");
    const int64_t id = frame->GetValue();
    Orvan::IImage* copy = Orvan::ImageFactory::Copy(delivered);
    device->RequeueBuffer(delivered);
    device->StopStream();
    Destroy(device);
    EXPECT_TRUE(copy->VerifyCRC());
    EXPECT_EQ(GenApi::CIntegerPtr(copy->AsChunkData()->GetChunk("ChunkFrameID"))->GetValue(), id);
    Orvan::ImageFactory::Destroy(copy); // the chunk nodes it parsed against go with it
}
