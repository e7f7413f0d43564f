// Packet-size negotiation at stream start: the largest size the path carries, found with test
// packets, behind the emulator's size limit on loopback and across a link of a smaller MTU in a
// network namespace; a size the application chose stays.
#include "EmulatedCamera.h"
#include "FeatureRegister.h"
#include "GvspFakeSink.h"
#include "NamespaceLink.h"
#include "gige/BigEndian.h"
#include "gige/GevProtocol.h"
#include "gige/GigeCamera.h"
#include "virtual/VirtualCamera.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

using namespace Orvan::Producer;
using Orvan::Emulator::EmulatedCamera;
using Orvan::Emulator::EmulatorOptions;

namespace {

constexpr uint32_t kLoopback = 0x7F000001;
constexpr uint32_t kWidth = 64;
constexpr uint32_t kHeight = 256; // several packets at any size

using GigeTest::NamespaceLink;

struct Path {
    const char* name;
    uint32_t limit;      // the emulator drops larger packets (0: no limit)
    uint32_t linkMtu;    // the camera's end of a namespaced link (0: loopback)
    uint32_t chosen;     // the application's own size, written before the start (0: none)
    uint32_t negotiated; // what the channel's packet size is after the start
};

class PacketSizeNegotiation : public ::testing::TestWithParam<Path> {
protected:
    uint32_t Register(uint32_t address) {
        uint8_t bytes[4] = {};
        size_t size = 4;
        EXPECT_EQ(gige->ReadPort(address, bytes, &size), GenTL::GC_ERR_SUCCESS);
        return Orvan::Gev::Get32(bytes);
    }
    // Big-endian, as the register map keeps every value.
    void Write(uint64_t address, uint32_t length, uint64_t value) {
        std::vector<uint8_t> bytes(length);
        for (uint32_t i = 0; i < length; ++i)
            bytes[length - 1 - i] = uint8_t(value >> (8 * i));
        size_t size = length;
        ASSERT_EQ(gige->WritePort(address, bytes.data(), &size), GenTL::GC_ERR_SUCCESS);
    }
    void WriteFeature(const char* name, uint64_t value) {
        const auto& described = dynamic_cast<VirtualCamera&>(camera->Camera());
        const auto reg = Orvan::Emulator::FindFeatureRegister(described.DescriptionXml(), name);
        ASSERT_TRUE(reg.Found()) << name;
        Write(reg.address, reg.length, value);
    }

    std::unique_ptr<NamespaceLink> link;
    std::unique_ptr<EmulatedCamera> camera;
    std::unique_ptr<GigeCamera> gige;
};

TEST_P(PacketSizeNegotiation, FindsTheLargestSizeThePathCarries) {
    const Path& path = GetParam();
    EmulatorOptions options;
    options.port = 0;
    options.maxPacketSize = path.limit;
    uint32_t hostIp = kLoopback;
    if (path.linkMtu != 0) {
        link = std::make_unique<NamespaceLink>(path.linkMtu);
        if (!link->Ready())
            GTEST_SKIP() << "no network namespace for a link of a smaller MTU: " << link->Error();
        camera = link->StartCamera(options);
        hostIp = link->HostIp();
    } else {
        camera = std::make_unique<EmulatedCamera>(options);
        camera->Start();
    }
    ASSERT_TRUE(camera && camera->Running());
    gige = std::make_unique<GigeCamera>(camera->Identity(), hostIp, camera->ControlEndpoint().port);
    ASSERT_EQ(gige->Open(GenTL::DEVICE_ACCESS_CONTROL), GenTL::GC_ERR_SUCCESS);
    if (path.chosen != 0)
        Write(Orvan::Gev::Reg::StreamChannelPacketSize, 4, path.chosen);
    WriteFeature("Width", kWidth);
    WriteFeature("Height", kHeight);

    GvspTest::FakeSink sink(2, kWidth * kHeight);
    ASSERT_EQ(gige->StartStream(0, &sink, 1), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(Register(Orvan::Gev::Reg::StreamChannelPacketSize) & Orvan::Gev::kPacketSizeMask,
              path.negotiated);
    if (path.chosen == 0) { // the path carries what was found
        WriteFeature("AcquisitionStart", 1);
        ASSERT_TRUE(sink.WaitFor(1, std::chrono::seconds(5)));
        EXPECT_FALSE(sink.Frames()[0].info.incomplete);
    }
    gige->StopStream(0);
    gige->Close();
}

INSTANTIATE_TEST_SUITE_P(Paths, PacketSizeNegotiation,
                         ::testing::Values(Path{"LoopbackCarriesJumboFrames", 0, 0, 0, 9000},
                                           Path{"EmulatedLimit", 4000, 0, 0, 4000},
                                           Path{"LimitBetweenSizeSteps", 1999, 0, 0, 1996},
                                           Path{"ApplicationChoiceStays", 4000, 0, 8000, 8000},
                                           Path{"SmallerMtuInANamespace", 0, 1400, 0, 1400}),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
