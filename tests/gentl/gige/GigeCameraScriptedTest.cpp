// GigeCamera against a scripted camera: the action time converted to the camera's ticks,
// FORCEIP aimed at the camera's MAC with the camera followed to its new address data, and the
// description versions taken from the URL.
#include "ScriptedCamera.h"
#include "gige/GevProtocol.h"
#include "gige/GigeCamera.h"

#include <gtest/gtest.h>

#include <mutex>

using namespace Orvan::Producer;
using namespace GigeTest;
namespace Gev = Orvan::Gev;

namespace {

uint32_t Word(const std::vector<uint8_t>& bytes, size_t at) {
    return uint32_t(bytes[at]) << 24 | uint32_t(bytes[at + 1]) << 16 |
           uint32_t(bytes[at + 2]) << 8 | bytes[at + 3];
}

std::vector<uint8_t> Value(uint32_t v) {
    return {uint8_t(v >> 24), uint8_t(v >> 16), uint8_t(v >> 8), uint8_t(v)};
}

// Answers register reads (a 125 MHz tick), actions and FORCEIP, and keeps what it was sent.
class Recorder {
public:
    Replies operator()(const Command& c) {
        std::lock_guard<std::mutex> lock(mutex);
        received.push_back(c);
        switch (c.code) {
        case Gev::ReadRegCmd:
            return {{Ack(
                0, Gev::ReadRegAck, c.id,
                Value(Word(c.payload, 0) == Gev::Reg::TimestampTickFrequencyLow ? 125000000 : 0))}};
        case Gev::ActionCmd:
            return {{Ack(0, Gev::ActionAck, c.id, {})}};
        case Gev::ForceIpCmd:
            return {{Ack(0, Gev::ForceIpAck, c.id, {})}};
        case Gev::ReadMemCmd: {
            // Every memory read sees the first URL register.
            const char url[] = "local:Maker_Model_1_2_3.zip;A0000;1234?SchemaVersion=1.1.0";
            std::vector<uint8_t> payload(c.payload.begin(), c.payload.begin() + 4);
            payload.resize(4 + (size_t(c.payload[6]) << 8 | c.payload[7]), 0);
            std::copy(url, url + sizeof url - 1, payload.begin() + 4);
            return {{Ack(0, Gev::ReadMemAck, c.id, payload)}};
        }
        default:
            return {};
        }
    }
    std::vector<Command> Sent(uint16_t code) {
        std::lock_guard<std::mutex> lock(mutex);
        std::vector<Command> out;
        for (const Command& c : received)
            if (c.code == code)
                out.push_back(c);
        return out;
    }

    std::mutex mutex;
    std::vector<Command> received;
};

DeviceIdentity ScriptedIdentity() {
    DeviceIdentity identity;
    identity.id = "00:11:22:33:44:55";
    identity.mac = 0x001122334455ull;
    identity.ip = kLoopback;
    identity.subnet = 0xFF000000;
    return identity;
}

} // namespace

TEST(GigeCameraScripted, ScheduledActionTimeIsInCameraTicks) {
    Recorder recorder;
    ScriptedCamera peer([&](const Command& c) { return recorder(c); });
    GigeCamera camera(ScriptedIdentity(), kLoopback, peer.Port());

    ASSERT_EQ(camera.ActionCommand(1, 2, 3, 0), GenTL::GC_ERR_SUCCESS);
    ASSERT_EQ(camera.ActionCommand(1, 2, 3, 2000000000ull), GenTL::GC_ERR_SUCCESS);
    const auto actions = recorder.Sent(Gev::ActionCmd);
    ASSERT_EQ(actions.size(), 2u);
    EXPECT_EQ(actions[0].payload.size(), Gev::kActionPayloadSize);
    ASSERT_EQ(actions[1].payload.size(), Gev::kScheduledActionPayloadSize);
    EXPECT_EQ(Word(actions[1].payload, 8), 3u);
    EXPECT_EQ(Word(actions[1].payload, 12), 0u);
    EXPECT_EQ(Word(actions[1].payload, 16), 250000000u) << "2 s at 125 MHz";
}

TEST(GigeCameraScripted, ForceIpNamesTheCameraAndFollowsIt) {
    Recorder recorder;
    ScriptedCamera peer([&](const Command& c) { return recorder(c); });
    GigeCamera camera(ScriptedIdentity(), kLoopback, peer.Port());

    // The camera stays reachable at the same address; subnet and gateway change.
    ASSERT_EQ(camera.ForceIp(kLoopback, 0xFFFF0000, 0x7F000002), GenTL::GC_ERR_SUCCESS);
    const auto forced = recorder.Sent(Gev::ForceIpCmd);
    ASSERT_EQ(forced.size(), 1u);
    EXPECT_EQ(Word(forced[0].payload, Gev::ForceIpField::MacHigh - 2), 0x0011u);
    EXPECT_EQ(Word(forced[0].payload, Gev::ForceIpField::MacLow), 0x22334455u);
    EXPECT_EQ(Word(forced[0].payload, Gev::ForceIpField::StaticSubnet), 0xFFFF0000u);
    EXPECT_EQ(camera.Identity().subnet, 0xFFFF0000u);
    EXPECT_EQ(camera.Identity().gateway, 0x7F000002u);
    EXPECT_TRUE(camera.IsConnected());
}

TEST(GigeCameraScripted, DescriptionVersionsComeFromTheUrl) {
    Recorder recorder;
    ScriptedCamera peer([&](const Command& c) { return recorder(c); });
    GigeCamera camera(ScriptedIdentity(), kLoopback, peer.Port());
    EXPECT_EQ(camera.DescriptionUrl(),
              "local:Maker_Model_1_2_3.zip;A0000;1234?SchemaVersion=1.1.0");
    int32_t version[5] = {};
    camera.DescriptionVersions(version[0], version[1], version[2], version[3], version[4]);
    EXPECT_EQ(std::vector<int32_t>(version, version + 5), (std::vector<int32_t>{1, 1, 1, 2, 3}));
}
