#include "CameraTestSupport.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

using namespace CameraTest;
using namespace GenTL;

TEST(CameraRegisters, SizeOffsetsAndBinningLimitEachOther) {
    auto camera = MakeCamera("Mono");
    Features f(*camera);
    EXPECT_EQ(f.Int("WidthMax"), 4096);
    EXPECT_EQ(f.SetInt("OffsetX", 4096 - 1280), GC_ERR_SUCCESS);
    EXPECT_EQ(f.Int("Width_Max"), 1280);
    EXPECT_EQ(f.SetInt("Width", 1288), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(f.SetInt("OffsetX", 0), GC_ERR_SUCCESS);
    EXPECT_EQ(f.SetInt("Width", 4096), GC_ERR_SUCCESS);
    EXPECT_EQ(f.Int("OffsetX_Max"), 0);

    // Binning shrinks the sensor; the region follows it.
    EXPECT_EQ(f.SetInt("Height", 2000), GC_ERR_SUCCESS);
    EXPECT_EQ(f.SetInt("OffsetY", 1000), GC_ERR_SUCCESS);
    EXPECT_EQ(f.SetInt("BinningVertical", 2), GC_ERR_SUCCESS);
    EXPECT_EQ(f.Int("HeightMax"), 1500);
    EXPECT_EQ(f.Int("Height"), 1500);
    EXPECT_EQ(f.Int("OffsetY"), 0);
    EXPECT_EQ(f.SetInt("BinningHorizontal", 4), GC_ERR_SUCCESS);
    EXPECT_EQ(f.Int("Width"), 1024);
    EXPECT_EQ(f.SetInt("BinningHorizontal", 5), GC_ERR_INVALID_VALUE);
}

TEST(CameraRegisters, PixelFormatSetsTheIncrements) {
    auto camera = MakeCamera("Color");
    Features f(*camera);
    ASSERT_EQ(f.SetEnum("PixelFormat", "Mono8"), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetInt("Width", 1283), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetInt("Height", 961), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetInt("OffsetX", 3), GC_ERR_SUCCESS);
    struct Case {
        const char* format;
        int64_t widthInc, heightInc, width, height, offsetX;
    } cases[] = {
        {"BayerRG8", 2, 2, 1282, 960, 2},
        {"BayerGR12p", 4, 2, 1280, 960, 0},
        {"YCbCr422_8", 2, 1, 1280, 960, 0},
        {"RGB8", 1, 1, 1280, 960, 0},
    };
    for (const Case& c : cases) {
        ASSERT_EQ(f.SetEnum("PixelFormat", c.format), GC_ERR_SUCCESS) << c.format;
        EXPECT_EQ(f.Int("Width_Inc"), c.widthInc) << c.format;
        EXPECT_EQ(f.Int("OffsetX_Inc"), c.widthInc) << c.format;
        EXPECT_EQ(f.Int("Height_Inc"), c.heightInc) << c.format;
        EXPECT_EQ(f.Int("Width"), c.width) << c.format;
        EXPECT_EQ(f.Int("Height"), c.height) << c.format;
        EXPECT_EQ(f.Int("OffsetX"), c.offsetX) << c.format;
    }
    EXPECT_EQ(f.SetInt("Width", 1281), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetEnum("PixelFormat", "BayerGB12p"), GC_ERR_SUCCESS);
    EXPECT_EQ(f.SetInt("Width", 1282), GC_ERR_INVALID_VALUE);
}

TEST(CameraRegisters, TransportLockFreezesWhatShapesThePayload) {
    auto camera = MakeCamera("MultiStream");
    Features f(*camera);
    ASSERT_EQ(f.SetInt("Width", 640), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetInt("TLParamsLocked", 1), GC_ERR_SUCCESS);
    struct Case {
        const char* node;
        int64_t value;
        bool locked;
    } cases[] = {
        {"Width", 320, true},
        {"Height", 480, true},
        {"PixelFormat", 0x01100007, true},
        {"BinningHorizontal", 2, true},
        {"ChunkModeActive", 1, true},
        {"ChunkEnable", 0, true},
        {"DeviceStreamChannelPacketSize", 9000, true},
        {"TCPEnable", 1, true},
        {"TransportStreamProtocol", 2, true},
        {"OffsetX", 8, false},
        {"ReverseY", 1, false},
        {"AcquisitionMode", 0, false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(f.SetInt(c.node, c.value), c.locked ? GC_ERR_ACCESS_DENIED : GC_ERR_SUCCESS)
            << c.node;
    EXPECT_EQ(f.Execute("UserSetLoad"), GC_ERR_ACCESS_DENIED);
    ASSERT_EQ(f.SetInt("TLParamsLocked", 0), GC_ERR_SUCCESS);
    for (const Case& c : cases)
        EXPECT_EQ(f.SetInt(c.node, c.value), GC_ERR_SUCCESS) << c.node;
}

TEST(CameraRegisters, TcpEnableAndProtocolAgree) {
    auto camera = MakeCamera("MultiStream");
    Features f(*camera);
    EXPECT_EQ(f.Enum("TransportStreamProtocol"), "UDP");
    ASSERT_EQ(f.SetInt("TCPEnable", 1), GC_ERR_SUCCESS);
    EXPECT_EQ(f.Enum("TransportStreamProtocol"), "TCP");
    ASSERT_EQ(f.SetEnum("TransportStreamProtocol", "RDMA"), GC_ERR_SUCCESS);
    EXPECT_EQ(f.Int("TCPEnable"), 0);
    ASSERT_EQ(f.SetInt("TCPEnable", 1), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetInt("TCPEnable", 0), GC_ERR_SUCCESS);
    EXPECT_EQ(f.Enum("TransportStreamProtocol"), "UDP");
}

TEST(CameraRegisters, UserSetsRoundTripAndDefaultSurvivesReset) {
    auto camera = MakeCamera("Mono");
    Features f(*camera);
    ASSERT_EQ(f.SetInt("Width", 640), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetFloat("ExposureTime", 1234.5), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetEnum("PixelFormat", "Mono12"), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetEnum("ChunkSelector", "Gain"), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetInt("ChunkEnable", 0), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetEnum("EventSelector", "FrameStart"), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetEnum("EventNotification", "On"), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetEnum("UserSetSelector", "UserSet1"), GC_ERR_SUCCESS);
    ASSERT_EQ(f.Execute("UserSetSave"), GC_ERR_SUCCESS);

    ASSERT_EQ(f.SetInt("Width", 320), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetFloat("ExposureTime", 99), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetInt("ChunkEnable", 1), GC_ERR_SUCCESS);
    ASSERT_EQ(f.Execute("UserSetLoad"), GC_ERR_SUCCESS);
    EXPECT_EQ(f.Int("Width"), 640);
    EXPECT_DOUBLE_EQ(f.Float("ExposureTime"), 1234.5);
    EXPECT_EQ(f.Enum("PixelFormat"), "Mono12");
    EXPECT_EQ(f.Int("ChunkEnable"), 0);
    EXPECT_EQ(f.Enum("EventNotification"), "On");

    ASSERT_EQ(f.SetEnum("UserSetSelector", "Default"), GC_ERR_SUCCESS);
    EXPECT_EQ(f.Execute("UserSetSave"), GC_ERR_ACCESS_DENIED);
    ASSERT_EQ(f.Execute("UserSetLoad"), GC_ERR_SUCCESS);
    EXPECT_EQ(f.Int("Width"), 1280);
    EXPECT_EQ(f.Enum("PixelFormat"), "Mono8");

    ASSERT_EQ(f.SetEnum("UserSetDefault", "UserSet1"), GC_ERR_SUCCESS);
    ASSERT_EQ(f.Execute("DeviceReset"), GC_ERR_SUCCESS);
    EXPECT_EQ(f.Int("Width"), 640);
}

TEST(CameraRegisters, FrameRateMaximumFollowsExposureAndThroughput) {
    auto camera = MakeCamera("Mono");
    Features f(*camera);
    ASSERT_EQ(f.SetFloat("ExposureTime", 20000), GC_ERR_SUCCESS);
    EXPECT_DOUBLE_EQ(f.Float("AcquisitionFrameRate_Max"), 50);
    EXPECT_EQ(f.SetFloat("AcquisitionFrameRate", 60), GC_ERR_INVALID_VALUE);

    // 1500-byte packets carry 1464 bytes of picture each.
    ASSERT_EQ(f.SetFloat("ExposureTime", 100), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetInt("DeviceLinkThroughputLimit", 12288000), GC_ERR_SUCCESS);
    const double payload = double(f.Int("PayloadSize"));
    const double byLink = 12288000 / (payload * 1500 / 1464);
    EXPECT_DOUBLE_EQ(f.Float("AcquisitionFrameRate_Max"), byLink);
    EXPECT_EQ(f.Int("DeviceMaxThroughput"), 12288000);
    ASSERT_EQ(f.SetInt("DeviceStreamChannelPacketSize", 9000), GC_ERR_SUCCESS);
    EXPECT_GT(f.Float("AcquisitionFrameRate_Max"), byLink);
    ASSERT_EQ(f.SetInt("DeviceStreamChannelPacketSize", 1500), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetEnum("DeviceLinkThroughputLimitMode", "Off"), GC_ERR_SUCCESS);
    EXPECT_DOUBLE_EQ(f.Float("AcquisitionFrameRate_Max"), 10000);
    EXPECT_EQ(f.Int("DeviceMaxThroughput"), 1250000000);
    ASSERT_EQ(f.SetEnum("DeviceLinkThroughputLimitMode", "On"), GC_ERR_SUCCESS);

    ASSERT_EQ(f.SetFloat("AcquisitionFrameRate", 5), GC_ERR_SUCCESS);
    EXPECT_DOUBLE_EQ(f.Float("AcquisitionResultingFrameRate"), byLink);
    ASSERT_EQ(f.SetInt("AcquisitionFrameRateEnable", 1), GC_ERR_SUCCESS);
    EXPECT_DOUBLE_EQ(f.Float("AcquisitionResultingFrameRate"), 5);
}

TEST(CameraRegisters, AutoExposureOwnsTheExposureTime) {
    auto camera = MakeCamera("Mono");
    Features f(*camera);
    ASSERT_EQ(f.SetFloat("Gain", 20), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetEnum("ExposureAuto", "Once"), GC_ERR_SUCCESS);
    EXPECT_EQ(f.Enum("ExposureAuto"), "Off");
    EXPECT_NEAR(f.Float("ExposureTime"), 800, 1e-9); // a gain of 10 takes a tenth
    ASSERT_EQ(f.SetEnum("ExposureAuto", "Continuous"), GC_ERR_SUCCESS);
    EXPECT_EQ(f.Int("ExposureAutoActive"), 1);
    EXPECT_EQ(f.SetFloat("ExposureTime", 500), GC_ERR_ACCESS_DENIED);
}

TEST(CameraRegisters, MirroringLeftRightNeedsWholeBytePixels) {
    auto camera = MakeCamera("Mono");
    Features f(*camera);
    ASSERT_EQ(f.SetEnum("PixelFormat", "Mono10p"), GC_ERR_SUCCESS);
    EXPECT_EQ(f.SetInt("ReverseX", 1), GC_ERR_INVALID_VALUE);
    ASSERT_EQ(f.SetEnum("PixelFormat", "Mono16"), GC_ERR_SUCCESS);
    ASSERT_EQ(f.SetInt("ReverseX", 1), GC_ERR_SUCCESS);
    EXPECT_EQ(f.SetEnum("PixelFormat", "Mono12Packed"), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(f.SetInt("ReverseY", 1), GC_ERR_SUCCESS);
}

TEST(CameraRegisters, IdentityAndAddressesMatchDiscovery) {
    auto camera = MakeCamera("Color", 7);
    Features f(*camera);
    const auto& id = camera->Identity();
    EXPECT_EQ(f.String("DeviceVendorName"), id.vendor);
    EXPECT_EQ(f.String("DeviceModelName"), id.model);
    EXPECT_EQ(f.String("DeviceSerialNumber"), id.serialNumber);
    EXPECT_EQ(uint64_t(f.Int("GevMACAddress")), id.mac);
    EXPECT_EQ(uint32_t(f.Int("GevCurrentIPAddress")), id.ip);
    EXPECT_NE(MakeCamera("Color", 8)->Identity().mac, id.mac);
    EXPECT_NE(MakeCamera("Mono", 7)->Identity().serialNumber, id.serialNumber);

    ASSERT_EQ(camera->ForceIp(0xC0A80A05, 0xFFFFFF00, 0xC0A80A01), GC_ERR_SUCCESS);
    EXPECT_EQ(f.Int("GevCurrentIPAddress"), 0xC0A80A05);
    EXPECT_EQ(f.Int("GevCurrentDefaultGateway"), 0xC0A80A01);
    EXPECT_EQ(camera->Identity().ip, 0xC0A80A05u);

    const char name[] = "left";
    size_t size = sizeof name;
    ASSERT_EQ(camera->WritePort(0x00E8, name, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(camera->Identity().userDefinedName, "left");
}

TEST(CameraRegisters, TemperatureRisesWhileAcquiring) {
    auto camera = MakeCamera("Mono");
    Features f(*camera);
    const double idle = f.Float("DeviceTemperature");
    ASSERT_EQ(f.Execute("AcquisitionStart"), GC_ERR_SUCCESS);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_GT(f.Float("DeviceTemperature"), idle);
    ASSERT_EQ(f.Execute("AcquisitionStop"), GC_ERR_SUCCESS);
}

TEST(CameraRegisters, DisconnectedPortFailsLikeALostDevice) {
    auto camera = MakeCamera("Mono");
    Features f(*camera);
    camera->SetConnected(false);
    EXPECT_FALSE(camera->IsConnected());
    EXPECT_THROW(f.Int("Width"), std::runtime_error);
    EXPECT_EQ(f.SetInt("Width", 640), GC_ERR_IO);
    camera->SetConnected(true);
    EXPECT_EQ(f.Int("Width"), 1280);
}

} // namespace
