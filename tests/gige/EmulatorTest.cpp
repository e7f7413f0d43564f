// The emulator over the network, as a GigE Vision host sees it: statuses, control privilege
// and heartbeat, FORCEIP, actions, events, restarts, and robustness against garbage.
#include "EmulatedCamera.h"
#include "GvcpTestClient.h"
#include "gige/BigEndian.h"
#include "gige/GevProtocol.h"
#include "virtual/VirtualCamera.h"

#include <gtest/gtest.h>

#include <random>
#include <thread>

using Orvan::Gev::Get16;
using Orvan::Gev::Get32;
using Orvan::Gev::Get64;
using Orvan::Gev::Put16;
using Orvan::Gev::Put32;
using Orvan::Gev::Put64;

namespace Orvan {
namespace Emulator {
namespace {

namespace R = Gev::Reg;

class EmulatorTest : public ::testing::Test {
protected:
    // Ephemeral ports on 127.0.0.1: tests running in parallel never collide.
    std::unique_ptr<EmulatedCamera> Start(EmulatorOptions options = {}) {
        options.port = 0;
        auto camera = std::make_unique<EmulatedCamera>(options);
        EXPECT_TRUE(camera->Start()) << camera->Error();
        return camera;
    }

    static std::string Xml(EmulatedCamera& camera) {
        return dynamic_cast<Producer::VirtualCamera&>(camera.Camera()).DescriptionXml();
    }

    static std::optional<GvcpTestClient::Ack> Discover(GvcpTestClient& client) {
        return client.Transact(Gev::DiscoveryCmd, {});
    }

    static uint32_t DiscoveredIp(const GvcpTestClient::Ack& ack) {
        return Get32(ack.payload.data() + Gev::DiscoveryField::CurrentIp);
    }

    // Waits for the next EVENTDATA command on the client's socket.
    static std::vector<uint8_t> NextEvent(const GvcpTestClient& client) {
        uint8_t data[600];
        Endpoint from;
        for (int i = 0; i < 50; ++i) {
            const long size = client.Socket().ReceiveFrom(data, sizeof data, from, 100);
            if (size >= long(Gev::kGvcpHeaderSize) && Get16(data + 2) == Gev::EventDataCmd)
                return {data, data + size};
        }
        return {};
    }
};

TEST_F(EmulatorTest, AnswersRegisterAccessWithTheRightStatus) {
    auto camera = Start();
    GvcpTestClient host(camera->ControlEndpoint());
    uint32_t value = 0;
    EXPECT_EQ(host.ReadReg(R::Version, value), Gev::Success);
    EXPECT_EQ(value, 0x00020000u);
    EXPECT_EQ(host.ReadReg(R::Version + 2, value), Gev::BadAlignment);
    EXPECT_EQ(host.ReadReg(0x00FFFF00, value), Gev::InvalidAddress);
    EXPECT_EQ(host.WriteReg(R::HeartbeatTimeout, 1000), Gev::AccessDenied) << "needs control";

    ASSERT_EQ(host.WriteReg(R::ControlChannelPrivilege, Gev::kPrivilegeControl), Gev::Success);
    EXPECT_EQ(host.WriteReg(R::Version, 1), Gev::WriteProtect);
    EXPECT_EQ(host.ReadReg(R::PrimaryApplicationPort, value), Gev::Success);
    EXPECT_EQ(value, host.Socket().Local().port);

    // The packet size register and the camera's packet size feature are one value.
    EXPECT_EQ(host.WriteReg(R::StreamChannelPacketSize, 4000), Gev::Success);
    uint8_t feature[8];
    size_t size = sizeof feature;
    const FeatureRegister packetSize =
        FindFeatureRegister(Xml(*camera), "DeviceStreamChannelPacketSize");
    ASSERT_EQ(camera->Camera().ReadPort(packetSize.address, feature, &size), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(Get32(feature + 4), 4000u);

    // The description read in blocks, its last one running past its end, is the camera's.
    const auto& file = dynamic_cast<Producer::VirtualCamera&>(camera->Camera()).DescriptionFile();
    std::vector<uint8_t> read;
    for (size_t offset = 0; offset < file.size(); offset += Gev::kReadMemMax) {
        std::vector<uint8_t> block;
        ASSERT_EQ(host.ReadMem(uint32_t(0x100000 + offset), Gev::kReadMemMax, block), Gev::Success);
        read.insert(read.end(), block.begin(), block.end());
    }
    read.resize(file.size());
    EXPECT_EQ(read, file);
}

TEST_F(EmulatorTest, ControlPassesOnlyWhenReleasedOrWhenTheHeartbeatStops) {
    EmulatorOptions options;
    options.heartbeatTimeoutMs = 600;
    auto camera = Start(options);
    GvcpTestClient first(camera->ControlEndpoint()), second(camera->ControlEndpoint());
    ASSERT_EQ(first.WriteReg(R::ControlChannelPrivilege, Gev::kPrivilegeExclusive), Gev::Success);
    uint32_t value = 0;
    EXPECT_EQ(second.ReadReg(R::Version, value), Gev::AccessDenied) << "exclusive access";
    EXPECT_EQ(second.WriteReg(R::ControlChannelPrivilege, Gev::kPrivilegeControl),
              Gev::AccessDenied);
    ASSERT_EQ(first.WriteReg(R::ControlChannelPrivilege, 0), Gev::Success);
    ASSERT_EQ(second.WriteReg(R::ControlChannelPrivilege, Gev::kPrivilegeControl), Gev::Success);

    // The first keeps its heartbeat going longer than the timeout: it keeps control.
    for (int i = 0; i < 4; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(250));
        EXPECT_EQ(second.ReadReg(R::ControlChannelPrivilege, value), Gev::Success);
    }
    EXPECT_EQ(first.WriteReg(R::ControlChannelPrivilege, Gev::kPrivilegeControl),
              Gev::AccessDenied);
    // Then it goes silent, like a crashed client.
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    EXPECT_EQ(first.WriteReg(R::ControlChannelPrivilege, Gev::kPrivilegeControl), Gev::Success);
}

TEST_F(EmulatorTest, ForceIpChangesTheReportedAddressOfTheMatchingCameraOnly) {
    auto camera = Start();
    GvcpTestClient host(camera->ControlEndpoint());
    std::vector<uint8_t> command(Gev::ForceIpField::Size);
    const uint64_t mac = camera->Identity().mac;
    Put16(command.data() + Gev::ForceIpField::MacHigh, uint16_t((mac + 1) >> 32));
    Put32(command.data() + Gev::ForceIpField::MacLow, uint32_t(mac + 1));
    Put32(command.data() + Gev::ForceIpField::StaticIp, 0x0A000017);
    Put32(command.data() + Gev::ForceIpField::StaticSubnet, 0xFFFFFF00);
    EXPECT_FALSE(host.Transact(Gev::ForceIpCmd, command, 0x01, 300)) << "another camera's MAC";
    Put16(command.data() + Gev::ForceIpField::MacHigh, uint16_t(mac >> 32));
    Put32(command.data() + Gev::ForceIpField::MacLow, uint32_t(mac));
    const auto ack = host.Transact(Gev::ForceIpCmd, command);
    ASSERT_TRUE(ack);
    EXPECT_EQ(ack->command, Gev::ForceIpAck);

    const auto discovered = Discover(host);
    ASSERT_TRUE(discovered);
    EXPECT_EQ(DiscoveredIp(*discovered), 0x0A000017u);
    uint32_t current = 0;
    EXPECT_EQ(host.ReadReg(R::CurrentIp, current), Gev::Success);
    EXPECT_EQ(current, 0x0A000017u);

    camera->Stop(); // a restart forgets the forced address
    EXPECT_FALSE(Discover(host)) << "a stopped camera is silent";
    ASSERT_TRUE(camera->Start());
    const auto again = Discover(host);
    ASSERT_TRUE(again);
    EXPECT_EQ(DiscoveredIp(*again), 0x7F000001u);
}

TEST_F(EmulatorTest, ExecutesOnlyActionsMeantForIt) {
    auto camera = Start();
    GvcpTestClient host(camera->ControlEndpoint());
    ASSERT_EQ(host.WriteReg(R::ControlChannelPrivilege, Gev::kPrivilegeControl), Gev::Success);
    ASSERT_EQ(host.WriteReg(R::ActionDeviceKey, 0x1234), Gev::Success);
    ASSERT_EQ(host.WriteReg(R::ActionGroupKey, 7), Gev::Success);
    ASSERT_EQ(host.WriteReg(R::ActionGroupMask, 0x3), Gev::Success);
    auto action = [&](uint32_t deviceKey, uint32_t groupMask) {
        std::vector<uint8_t> command(Gev::kActionPayloadSize);
        Put32(command.data(), deviceKey);
        Put32(command.data() + 4, 7);
        Put32(command.data() + 8, groupMask);
        return host.Transact(Gev::ActionCmd, command, 0x01, 300);
    };
    EXPECT_FALSE(action(0x9999, 0x1));
    EXPECT_FALSE(action(0x1234, 0x4));
    const auto ack = action(0x1234, 0x2);
    ASSERT_TRUE(ack);
    EXPECT_EQ(ack->command, Gev::ActionAck);
    EXPECT_EQ(camera->ActionsExecuted(), 1u);
}

TEST_F(EmulatorTest, ResendsEventsUntilAcknowledged) {
    auto camera = Start();
    const std::string xml = Xml(*camera);
    GvcpTestClient host(camera->ControlEndpoint());
    ASSERT_EQ(host.WriteReg(R::ControlChannelPrivilege, Gev::kPrivilegeControl), Gev::Success);
    ASSERT_EQ(host.WriteReg(R::MessageChannelTransmissionTimeout, 100), Gev::Success);
    ASSERT_EQ(host.WriteReg(R::MessageChannelRetryCount, 5), Gev::Success);
    ASSERT_EQ(host.WriteReg(R::MessageChannelDestination, 0x7F000001), Gev::Success);
    ASSERT_EQ(host.WriteReg(R::MessageChannelPort, host.Socket().Local().port), Gev::Success);
    ASSERT_EQ(host.WriteFeature(xml, "EventSelector", 1), Gev::Success); // FrameStart
    ASSERT_EQ(host.WriteFeature(xml, "EventNotification", 1), Gev::Success);
    ASSERT_EQ(host.WriteFeature(xml, "AcquisitionMode", 0), Gev::Success); // one frame
    ASSERT_EQ(host.WriteFeature(xml, "AcquisitionStart", 1), Gev::Success);

    const std::vector<uint8_t> first = NextEvent(host);
    ASSERT_FALSE(first.empty());
    EXPECT_TRUE(first[1] & Gev::kFlagAckRequired);
    const std::vector<uint8_t> repeated = NextEvent(host); // not acknowledged: sent again
    ASSERT_EQ(repeated, first);
    uint8_t ack[Gev::kGvcpHeaderSize] = {};
    Put16(ack + 2, Gev::EventDataAck);
    Put16(ack + 6, Get16(first.data() + 6));
    const Endpoint source{camera->ControlEndpoint().ip, uint16_t(0)};
    uint32_t sourcePort = 0;
    ASSERT_EQ(host.ReadReg(R::MessageChannelSourcePort, sourcePort), Gev::Success);
    host.Socket().SendTo({source.ip, uint16_t(sourcePort)}, ack, sizeof ack);
    for (int i = 0; i < 50 && camera->MessageStatistics().acknowledged == 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(camera->MessageStatistics().acknowledged, 1u);
    EXPECT_EQ(camera->MessageStatistics().abandoned, 0u);
}

TEST_F(EmulatorTest, ResendsKeptPacketsWithExtendedIdsAndReportsForgottenOnes) {
    auto camera = Start();
    const std::string xml = Xml(*camera);
    GvcpTestClient host(camera->ControlEndpoint());
    UdpSocket stream;
    ASSERT_TRUE(stream.Bind({0x7F000001, 0}));
    ASSERT_EQ(host.WriteReg(R::ControlChannelPrivilege, Gev::kPrivilegeControl), Gev::Success);
    ASSERT_EQ(host.WriteReg(R::GvspConfiguration, Gev::kGvspConfigExtendedId), Gev::Success);
    ASSERT_EQ(host.WriteReg(R::StreamChannelDestination, 0x7F000001), Gev::Success);
    ASSERT_EQ(host.WriteReg(R::StreamChannelPort, stream.Local().port), Gev::Success);
    // A frame that fits the socket's buffer: nothing here may be lost on the way.
    ASSERT_EQ(host.WriteFeature(xml, "Width", 64), Gev::Success);
    ASSERT_EQ(host.WriteFeature(xml, "Height", 48), Gev::Success);
    ASSERT_EQ(host.WriteFeature(xml, "AcquisitionMode", 0), Gev::Success); // one frame
    ASSERT_EQ(host.WriteFeature(xml, "AcquisitionStart", 1), Gev::Success);

    // Receives until a packet of this block and packet id arrives; returns it.
    auto receive = [&](uint64_t blockId, uint32_t packetId) {
        uint8_t data[9000];
        Endpoint from;
        for (long size; (size = stream.ReceiveFrom(data, sizeof data, from, 3000)) > 0;) {
            if (size >= long(Gev::kGvspExtendedHeaderSize) && Get64(data + 8) == blockId &&
                Get32(data + 16) == packetId)
                return std::vector<uint8_t>(data, data + size);
        }
        return std::vector<uint8_t>();
    };
    const std::vector<uint8_t> original = receive(1, 1);
    ASSERT_FALSE(original.empty());
    EXPECT_TRUE(original[4] & Gev::kGvspExtendedIdFlag);

    auto resend = [&](uint64_t blockId, uint32_t packetId) {
        std::vector<uint8_t> request(20);
        Put32(request.data() + 4, packetId);
        Put32(request.data() + 8, packetId);
        Put64(request.data() + 12, blockId);
        host.Transact(Gev::PacketResendCmd, request, Gev::kFlagExtendedId, 0);
    };
    resend(1, 1);
    std::vector<uint8_t> again = receive(1, 1);
    ASSERT_EQ(again.size(), original.size());
    EXPECT_EQ(Get16(again.data()), Gev::PacketResend);
    EXPECT_TRUE(std::equal(again.begin() + 2, again.end(), original.begin() + 2));

    resend(999, 3);
    const std::vector<uint8_t> gone = receive(999, 3);
    ASSERT_EQ(gone.size(), Gev::kGvspExtendedHeaderSize);
    EXPECT_EQ(Get16(gone.data()), Gev::PacketUnavailable);
}

TEST_F(EmulatorTest, SlowWritesAnswerPendingAckFirst) {
    EmulatorOptions options;
    options.pendingAckMs = 50;
    auto camera = Start(options);
    GvcpTestClient host(camera->ControlEndpoint());
    ASSERT_EQ(host.WriteReg(R::ControlChannelPrivilege, Gev::kPrivilegeControl), Gev::Success);
    EXPECT_EQ(host.WriteFeature(Xml(*camera), "Gain", 0), Gev::Success);
    EXPECT_EQ(host.PendingAcks(), 1u);
}

TEST_F(EmulatorTest, SurvivesGarbageAndSeveralCamerasAnswerApart) {
    auto first = Start();
    EmulatorOptions other;
    other.index = 1;
    auto second = Start(other);
    GvcpTestClient host(first->ControlEndpoint());
    // Commands with random headers and lengths: none may crash the camera or take it over.
    std::mt19937 random(42);
    std::vector<uint8_t> garbage;
    for (int i = 0; i < 3000; ++i) {
        garbage.resize(random() % 600);
        for (auto& byte : garbage)
            byte = uint8_t(random());
        if (garbage.size() >= 2 && i % 2 == 0)
            garbage[0] = Gev::kCommandKey, garbage[1] = 0; // parsed further, never answered
        host.Socket().SendTo(first->ControlEndpoint(), garbage.data(), garbage.size());
        uint32_t version = 0;
        if (i % 100 == 99) { // still alive; also keeps the socket's queue from overflowing
            ASSERT_EQ(host.ReadReg(R::Version, version), Gev::Success) << "after " << i;
        }
    }
    const auto a = Discover(host);
    GvcpTestClient secondHost(second->ControlEndpoint());
    const auto b = Discover(secondHost);
    ASSERT_TRUE(a && b);
    const size_t serial = Gev::DiscoveryField::SerialNumber;
    EXPECT_NE(std::string(a->payload.begin() + serial, a->payload.begin() + serial + 16),
              std::string(b->payload.begin() + serial, b->payload.begin() + serial + 16));
}

} // namespace
} // namespace Emulator
} // namespace Orvan
