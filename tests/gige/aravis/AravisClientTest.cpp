// Debian's Aravis, a GigE Vision client nobody here wrote, against the emulator: it must find
// the camera, read its description, stream from it and win back lost packets by resends.
#include "EmulatedCamera.h"
#include "virtual/TestPattern.h"

#include <arv.h>
#include <gtest/gtest.h>

#include <arpa/inet.h>

#include <memory>
#include <random>
#include <string>

namespace Orvan {
namespace Emulator {
namespace {

constexpr uint32_t kMono8 = 0x01080001;
constexpr uint64_t kPopTimeoutUs = 5000000; // generous: a loaded machine may stall seconds
constexpr uint64_t kFrameRetentionUs = 1000000;
constexpr uint64_t kPacketTimeoutUs = 100000;

template <typename T>
struct GObjectDeleter {
    void operator()(T* object) const {
        if (object)
            g_object_unref(object);
    }
};
template <typename T>
using GPtr = std::unique_ptr<T, GObjectDeleter<T>>;

std::string Dotted(uint32_t ip) {
    in_addr address{htonl(ip)};
    char text[INET_ADDRSTRLEN];
    return inet_ntop(AF_INET, &address, text, sizeof text);
}

// Aravis opens a camera by address on the standard GVCP port, so each emulator gets a loopback
// address of its own: tests running in parallel never share one.
std::unique_ptr<EmulatedCamera> StartOnOwnLoopbackAddress(EmulatorOptions options) {
    std::random_device seed;
    std::mt19937 random(seed());
    for (int attempt = 0; attempt < 50; ++attempt) {
        options.bindIp = 0x7F4D0000u | (random() % 0xFFFE + 1); // 127.77.x.y
        auto camera = std::make_unique<EmulatedCamera>(options);
        if (camera->Start())
            return camera;
    }
    return nullptr;
}

class AravisClientTest : public ::testing::Test {
protected:
    void SetUp() override { arv_set_interface_flags("GigEVision", 0); }
    void TearDown() override { arv_shutdown(); }

    GPtr<ArvCamera> Open(const EmulatedCamera& emulator) {
        GError* error = nullptr;
        GPtr<ArvCamera> camera(
            arv_camera_new(Dotted(emulator.ControlEndpoint().ip).c_str(), &error));
        EXPECT_EQ(error, nullptr) << error->message;
        if (error)
            g_error_free(error);
        return camera;
    }

    static void Check(GError* error, const char* what) {
        ASSERT_EQ(error, nullptr) << what << ": " << error->message;
    }

    void SetInteger(ArvCamera* camera, const char* feature, int64_t value) {
        GError* error = nullptr;
        arv_camera_set_integer(camera, feature, value, &error);
        Check(error, feature);
    }

    // Streams `count` frames of width x height Mono8 and checks each one's stamp and picture.
    void StreamAndCheck(ArvCamera* camera, int width, int height, int count) {
        GError* error = nullptr;
        SetInteger(camera, "Width", width);
        SetInteger(camera, "Height", height);
        arv_camera_set_pixel_format(camera, kMono8, &error);
        Check(error, "PixelFormat");
        arv_camera_set_boolean(camera, "AcquisitionFrameRateEnable", TRUE, &error);
        Check(error, "AcquisitionFrameRateEnable");
        arv_camera_set_frame_rate(camera, 60, &error);
        Check(error, "AcquisitionFrameRate");
        arv_camera_set_acquisition_mode(camera, ARV_ACQUISITION_MODE_CONTINUOUS, &error);
        Check(error, "AcquisitionMode");
        arv_gv_device_set_stream_options(ARV_GV_DEVICE(arv_camera_get_device(camera)),
                                         ARV_GV_STREAM_OPTION_PACKET_SOCKET_DISABLED);
        m_stream.reset(arv_camera_create_stream(camera, nullptr, nullptr, &error));
        Check(error, "stream");
        // A loaded machine may delay a resend round trip well beyond the defaults: wait longer
        // for asked-for packets rather than asking again and spending the frame's request budget.
        g_object_set(m_stream.get(), "frame-retention", guint(kFrameRetentionUs), "packet-timeout",
                     guint(kPacketTimeoutUs), "packet-request-ratio", 1.0, nullptr);
        const guint payload = arv_camera_get_payload(camera, &error);
        for (int i = 0; i < 64; ++i)
            arv_stream_push_buffer(m_stream.get(), arv_buffer_new(payload, nullptr));
        arv_camera_start_acquisition(camera, &error);
        Check(error, "AcquisitionStart");

        // Built once: checking must keep up with the camera, or buffers run out.
        const Producer::TestPattern pattern(kMono8, uint32_t(width), uint32_t(height),
                                            Producer::PatternKind::MovingDiagonal);
        uint64_t expected = 0;
        for (int i = 0; i < count; ++i) {
            ArvBuffer* buffer = arv_stream_timeout_pop_buffer(m_stream.get(), kPopTimeoutUs);
            ASSERT_NE(buffer, nullptr) << "frame " << i << " never came";
            ASSERT_EQ(arv_buffer_get_status(buffer), ARV_BUFFER_STATUS_SUCCESS)
                << "frame " << i << ", emulator dropped " << Stats().packetsDropped << ", resent "
                << Stats().packetsResent << ", reported gone " << Stats().packetsUnavailable;
            size_t size = 0;
            const auto* data = static_cast<const uint8_t*>(arv_buffer_get_data(buffer, &size));
            const uint64_t stamp = Producer::ReadFrameStamp(data, size);
            if (expected != 0) {
                EXPECT_EQ(stamp, expected) << "frames lost or reordered";
            }
            EXPECT_TRUE(pattern.Matches(stamp, data, size)) << "frame " << stamp << " corrupted";
            EXPECT_EQ(arv_buffer_get_frame_id(buffer), (stamp - 1) % 0xFFFF + 1);
            expected = stamp + 1;
            arv_stream_push_buffer(m_stream.get(), buffer);
        }
        arv_camera_stop_acquisition(camera, &error);
        Check(error, "AcquisitionStop");
    }

    StreamChannel::Counters Stats() const { return m_emulator->StreamStatistics(); }

    // Destroyed in reverse: the stream still talks to the camera when it goes.
    std::unique_ptr<EmulatedCamera> m_emulator;
    GPtr<ArvCamera> m_camera;
    GPtr<ArvStream> m_stream;
};

// Aravis discovers only by broadcast to 255.255.255.255 from each interface's address.
bool FoundByBroadcast(const std::string& address) {
    arv_update_device_list();
    for (unsigned i = 0; i < arv_get_n_devices(); ++i)
        if (address == arv_get_device_address(i))
            return true;
    return false;
}

TEST_F(AravisClientTest, FindsTheCameraAndReadsAndWritesItsFeatures) {
    auto emulator = StartOnOwnLoopbackAddress({});
    ASSERT_TRUE(emulator);
    EXPECT_TRUE(FoundByBroadcast(Dotted(emulator->ControlEndpoint().ip)));
    GPtr<ArvCamera> camera = Open(*emulator);
    ASSERT_TRUE(camera);
    GError* error = nullptr;
    EXPECT_STREQ(arv_camera_get_vendor_name(camera.get(), &error), "Orvan");
    EXPECT_EQ(arv_camera_get_model_name(camera.get(), &error), emulator->Identity().model);
    EXPECT_EQ(arv_camera_get_device_serial_number(camera.get(), &error),
              emulator->Identity().serialNumber);
    EXPECT_STREQ(arv_camera_get_pixel_format_as_string(camera.get(), &error), "Mono8");
    SetInteger(camera.get(), "Width", 320);
    EXPECT_EQ(arv_camera_get_integer(camera.get(), "Width", &error), 320);
    Check(error, "feature access");
}

TEST_F(AravisClientTest, OnlyOneApplicationControlsTheCameraUntilItLetsGo) {
    auto emulator = StartOnOwnLoopbackAddress({});
    ASSERT_TRUE(emulator);
    GPtr<ArvCamera> first = Open(*emulator);
    GPtr<ArvCamera> second = Open(*emulator);
    ASSERT_TRUE(first && second);
    auto* secondDevice = ARV_GV_DEVICE(arv_camera_get_device(second.get()));
    GError* error = nullptr;
    EXPECT_FALSE(arv_gv_device_take_control(secondDevice, &error));
    g_clear_error(&error);
    first.reset(); // gives control back
    EXPECT_TRUE(arv_gv_device_take_control(secondDevice, &error));
    g_clear_error(&error);
}

TEST_F(AravisClientTest, StreamsIntactFramesInOrder) {
    m_emulator = StartOnOwnLoopbackAddress({});
    ASSERT_TRUE(m_emulator);
    m_camera = Open(*m_emulator);
    ASSERT_TRUE(m_camera);
    StreamAndCheck(m_camera.get(), 64, 48, 200);
}

class AravisResendTest : public AravisClientTest, public ::testing::WithParamInterface<double> {};

TEST_P(AravisResendTest, RecoversEveryLostPacket) {
    EmulatorOptions options;
    options.packetLossPercent = GetParam();
    options.reorderPercent = 1;
    options.seed = 7;
    m_emulator = StartOnOwnLoopbackAddress(options);
    ASSERT_TRUE(m_emulator);
    m_camera = Open(*m_emulator);
    ASSERT_TRUE(m_camera);
    StreamAndCheck(m_camera.get(), 320, 240, 150);
    guint64 resent = 0, missing = 0;
    arv_gv_stream_get_statistics(ARV_GV_STREAM(m_stream.get()), &resent, &missing);
    EXPECT_GT(resent, 0u);
    EXPECT_GT(m_emulator->StreamStatistics().packetsDropped, 0u);
    EXPECT_GT(m_emulator->StreamStatistics().packetsResent, 0u);
}

INSTANTIATE_TEST_SUITE_P(Loss, AravisResendTest, ::testing::Values(1.0, 5.0));

} // namespace
} // namespace Emulator
} // namespace Orvan
