// GigeCamera against an independent peer, Debian's Aravis camera emulator on 127.0.0.1:3956:
// bootstrap and description, control privilege kept by the heartbeat and refused to a second
// controller, register and memory writes, and a lost camera coming back.
#include "AravisFakeCamera.h"
#include "GvspFakeSink.h"
#include "LastError.h"
#include "gige/GevProtocol.h"
#include "gige/GigeCamera.h"

#include <GenApi/GenApi.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <iostream>
#include <strings.h>
#include <thread>

using namespace Orvan::Producer;
namespace Gev = Orvan::Gev;

namespace {

constexpr uint32_t kLoopback = 0x7F000001;

DeviceIdentity AravisIdentity() {
    DeviceIdentity identity;
    identity.id = "127.0.0.1";
    identity.ip = kLoopback;
    identity.subnet = 0xFF000000;
    return identity;
}

uint32_t ReadWord(GigeCamera& camera, uint32_t address) {
    uint8_t bytes[4] = {};
    size_t size = 4;
    EXPECT_EQ(camera.ReadPort(address, bytes, &size), GenTL::GC_ERR_SUCCESS);
    return uint32_t(bytes[0]) << 24 | uint32_t(bytes[1]) << 16 | uint32_t(bytes[2]) << 8 | bytes[3];
}

GenTL::GC_ERROR WriteWord(GigeCamera& camera, uint32_t address, uint32_t value) {
    const uint8_t bytes[4] = {uint8_t(value >> 24), uint8_t(value >> 16), uint8_t(value >> 8),
                              uint8_t(value)};
    size_t size = 4;
    return camera.WritePort(address, bytes, &size);
}

// The camera's features through our GenApi engine, as an application would set them.
class CameraPort : public GenApi::IPort {
public:
    explicit CameraPort(GigeCamera& camera) : m_camera(camera) {}
    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
    void Read(void* buffer, int64_t address, int64_t length) override {
        size_t size = size_t(length);
        ASSERT_EQ(m_camera.ReadPort(uint64_t(address), buffer, &size), GenTL::GC_ERR_SUCCESS);
    }
    void Write(const void* buffer, int64_t address, int64_t length) override {
        size_t size = size_t(length);
        ASSERT_EQ(m_camera.WritePort(uint64_t(address), buffer, &size), GenTL::GC_ERR_SUCCESS);
    }

private:
    GigeCamera& m_camera;
};

template <typename Condition>
bool WaitFor(Condition condition, std::chrono::seconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

} // namespace

TEST(GigeCameraAravis, ReadsBootstrapAndDescription) {
    GigeTest::AravisFakeCamera emulator("GVCP01");
    ASSERT_TRUE(emulator.Running());
    GigeCamera camera(AravisIdentity(), kLoopback);
    ASSERT_EQ(camera.Open(GenTL::DEVICE_ACCESS_READONLY), GenTL::GC_ERR_SUCCESS);

    char serial[16] = {};
    size_t size = sizeof serial;
    ASSERT_EQ(camera.ReadPort(Gev::Reg::SerialNumber, serial, &size), GenTL::GC_ERR_SUCCESS);
    EXPECT_STREQ(serial, "GVCP01");
    EXPECT_EQ(camera.StreamCount(), 1u);
    EXPECT_GT(camera.TimestampFrequency(), 0u);

    const std::string url = camera.DescriptionUrl();
    ASSERT_EQ(strncasecmp(url.c_str(), "local:", 6), 0) << url;
    const size_t first = url.find(';');
    const size_t second = url.find(';', first + 1);
    ASSERT_NE(second, std::string::npos) << url;
    const uint64_t address = std::stoull(url.substr(first + 1), nullptr, 16);
    const size_t length = std::stoull(url.substr(second + 1), nullptr, 16);
    std::vector<char> description(length);
    size = length;
    ASSERT_EQ(camera.ReadPort(address, description.data(), &size), GenTL::GC_ERR_SUCCESS);
    const std::string start(description.begin(), description.begin() + 2);
    EXPECT_TRUE(start == "<?" || start == "PK") << start;

    // Read through the description with our own GenApi engine.
    EXPECT_GT(camera.PayloadSize(0), 0u);

    EXPECT_EQ(WriteWord(camera, Gev::Reg::HeartbeatTimeout, 2000), GenTL::GC_ERR_ACCESS_DENIED)
        << "a read-only camera refuses writes itself";
    camera.Close();
}

TEST(GigeCameraAravis, KeepsControlAndRefusesASecondController) {
    GigeTest::AravisFakeCamera emulator("GVCP02");
    ASSERT_TRUE(emulator.Running());
    GigeCamera camera(AravisIdentity(), kLoopback);
    GigeCamera rival(AravisIdentity(), kLoopback);
    EXPECT_EQ(rival.QueryAccessStatus(), GenTL::DEVICE_ACCESS_STATUS_READWRITE);
    ASSERT_EQ(camera.Open(GenTL::DEVICE_ACCESS_CONTROL), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(camera.QueryAccessStatus(), GenTL::DEVICE_ACCESS_STATUS_OPEN_READWRITE);

    // A short heartbeat timeout keeps the test short; the heartbeat must follow it.
    ASSERT_EQ(WriteWord(camera, Gev::Reg::HeartbeatTimeout, 1000), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(ReadWord(camera, Gev::Reg::HeartbeatTimeout), 1000u);
    std::this_thread::sleep_for(std::chrono::milliseconds(2600));

    EXPECT_EQ(rival.QueryAccessStatus(), GenTL::DEVICE_ACCESS_STATUS_READONLY);
    EXPECT_EQ(rival.Open(GenTL::DEVICE_ACCESS_CONTROL), GenTL::GC_ERR_ACCESS_DENIED);
    EXPECT_TRUE(camera.IsConnected());

    // Memory and register writes of the controller still go through.
    const char name[16] = "renamed";
    size_t size = sizeof name;
    ASSERT_EQ(camera.WritePort(Gev::Reg::UserDefinedName, name, &size), GenTL::GC_ERR_SUCCESS)
        << Orvan::Producer::LastErrorText();
    char back[16] = {};
    size = sizeof back;
    ASSERT_EQ(camera.ReadPort(Gev::Reg::UserDefinedName, back, &size), GenTL::GC_ERR_SUCCESS);
    EXPECT_STREQ(back, "renamed");

    camera.Close();
    EXPECT_EQ(rival.Open(GenTL::DEVICE_ACCESS_EXCLUSIVE), GenTL::GC_ERR_SUCCESS)
        << "Close gives control back";
    rival.Close();
}

TEST(GigeCameraAravis, LostCameraIsNoticedAndComesBackOnRediscovery) {
    auto emulator = std::make_unique<GigeTest::AravisFakeCamera>("GVCP03");
    ASSERT_TRUE(emulator->Running());
    GigeCamera camera(AravisIdentity(), kLoopback);
    std::atomic<int> lost{0};
    std::atomic<int> back{0};
    camera.SetConnectionCallback([&](bool connected) { ++(connected ? back : lost); });
    ASSERT_EQ(camera.Open(GenTL::DEVICE_ACCESS_CONTROL), GenTL::GC_ERR_SUCCESS);
    ASSERT_EQ(WriteWord(camera, Gev::Reg::HeartbeatTimeout, 1000), GenTL::GC_ERR_SUCCESS);

    emulator.reset();
    ASSERT_TRUE(WaitFor([&] { return !camera.IsConnected(); }, std::chrono::seconds(10)));
    EXPECT_EQ(lost, 1);
    uint32_t value = 0;
    size_t size = 4;
    EXPECT_EQ(camera.ReadPort(0, &value, &size), GenTL::GC_ERR_IO);

    emulator = std::make_unique<GigeTest::AravisFakeCamera>("GVCP03");
    ASSERT_TRUE(emulator->Running());
    camera.Rediscovered(AravisIdentity(), kLoopback);
    EXPECT_TRUE(camera.IsConnected());
    EXPECT_EQ(back, 1);
    GigeCamera rival(AravisIdentity(), kLoopback);
    EXPECT_EQ(rival.Open(GenTL::DEVICE_ACCESS_CONTROL), GenTL::GC_ERR_ACCESS_DENIED)
        << "control was taken again";
    camera.Close();
}

TEST(GigeCameraAravis, StreamsIntoTheSinkAndStopsAtTheLimit) {
    GigeTest::AravisFakeCamera emulator("GVCP04");
    ASSERT_TRUE(emulator.Running());
    GigeCamera camera(AravisIdentity(), kLoopback);
    ASSERT_EQ(camera.Open(GenTL::DEVICE_ACCESS_EXCLUSIVE), GenTL::GC_ERR_SUCCESS);
    const std::string url = camera.DescriptionUrl();
    const size_t first = url.find(';');
    const size_t second = url.find(';', first + 1);
    std::vector<char> description(std::stoull(url.substr(second + 1), nullptr, 16));
    size_t size = description.size();
    ASSERT_EQ(
        camera.ReadPort(std::stoull(url.substr(first + 1), nullptr, 16), description.data(), &size),
        GenTL::GC_ERR_SUCCESS);
    const bool zipped = description[0] == 'P' && description[1] == 'K';
    GenApi::CNodeMapFactory factory(zipped ? GenApi::ContentType_ZippedXml
                                           : GenApi::ContentType_Xml,
                                    description.data(), description.size());
    std::unique_ptr<GenApi::INodeMap, void (*)(GenApi::INodeMap*)> map(
        factory.CreateNodeMap(),
        [](GenApi::INodeMap* doomed) { dynamic_cast<GenApi::IDestroy*>(doomed)->Destroy(); });
    CameraPort port(camera);
    ASSERT_TRUE(map->Connect(&port));
    GenApi::CIntegerPtr width = map->GetNode("Width");
    GenApi::CIntegerPtr height = map->GetNode("Height");
    width->SetValue(64);
    height->SetValue(48);
    EXPECT_EQ(camera.PayloadSize(0), 64u * 48u) << "the feature follows the camera's settings";

    const uint64_t limit = 5;
    GvspTest::FakeSink sink(4, camera.PayloadSize(0));
    ASSERT_EQ(camera.StartStream(0, &sink, limit), GenTL::GC_ERR_SUCCESS)
        << Orvan::Producer::LastErrorText();
    GenApi::CCommandPtr start = map->GetNode("AcquisitionStart");
    start->Execute();
    EXPECT_TRUE(sink.WaitFor(limit, std::chrono::seconds(20)));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    GenApi::CCommandPtr stop = map->GetNode("AcquisitionStop");
    stop->Execute();
    camera.StopStream(0);

    const auto frames = sink.Frames();
    ASSERT_EQ(frames.size(), limit) << "frames beyond the limit are not delivered";
    for (const auto& frame : frames) {
        EXPECT_FALSE(frame.info.incomplete);
        EXPECT_GE(GigeTest::AravisFakeCamera::IntactFrame(frame.data.data(), frame.data.size()), 0)
            << frame.data.size() << " " << int(frame.data[0]) << " " << int(frame.data[1]) << " "
            << int(frame.data[8]) << " " << int(frame.data[9]) << " " << int(frame.data[100]);
    }
    StreamStatistics statistics;
    ASSERT_TRUE(camera.GetStreamStatistics(0, statistics));
    EXPECT_GE(statistics.framesDelivered, limit);
    std::cerr << "STATS rx=" << statistics.packetsReceived << " lost=" << statistics.packetsLost
              << " inc=" << statistics.framesIncomplete << " filled=" << frames[0].info.sizeFilled
              << " w=" << frames[0].info.width << " pf=" << frames[0].info.pixelFormat << "\n";
    camera.Close();
}

TEST(GigeCameraAravis, CameraRestartedWithinTheTimeoutIsControlledAgain) {
    auto emulator = std::make_unique<GigeTest::AravisFakeCamera>("GVCP05");
    ASSERT_TRUE(emulator->Running());
    GigeCamera camera(AravisIdentity(), kLoopback);
    ASSERT_EQ(camera.Open(GenTL::DEVICE_ACCESS_CONTROL), GenTL::GC_ERR_SUCCESS);

    emulator.reset();
    emulator = std::make_unique<GigeTest::AravisFakeCamera>("GVCP05");
    ASSERT_TRUE(emulator->Running());
    // The restarted camera's heartbeat timeout is its default of 3 s; a beat comes every second.
    GigeCamera rival(AravisIdentity(), kLoopback);
    EXPECT_TRUE(
        WaitFor([&] { return rival.QueryAccessStatus() == GenTL::DEVICE_ACCESS_STATUS_READONLY; },
                std::chrono::seconds(10)));
    EXPECT_TRUE(camera.IsConnected());
    EXPECT_EQ(rival.Open(GenTL::DEVICE_ACCESS_CONTROL), GenTL::GC_ERR_ACCESS_DENIED);
    camera.Close();
}
