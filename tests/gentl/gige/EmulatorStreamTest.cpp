// A long stream through the GenTL calls from our emulator dropping packets, on every receive
// path: every image arrives, in order and intact, its lost packets asked for again.
#include "EmulatedCamera.h"
#include "FeatureRegister.h"
#include "GigeTestSupport.h"
#include "NamespaceLink.h"
#include "RemoteDevice.h"
#include "virtual/TestPattern.h"
#include "virtual/VirtualCamera.h"

#include <unistd.h>

#include <cstring>
#include <memory>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

using namespace GenTL;
using namespace Orvan::Emulator;
using Orvan::Producer::MatchesTestPattern;
using Orvan::Producer::PatternKind;
using Orvan::Producer::ReadFrameStamp;
using Orvan::Producer::ReceivePath;

namespace {

constexpr uint32_t kImages = 1000;
constexpr uint32_t kWidth = 256;
constexpr uint32_t kHeight = 64; // a few jumbo packets, more small ones
// Jumbo: the AF_XDP path spreads each packet over several UMEM frames.
constexpr uint32_t kLinkMtu = 9000;

uint64_t DoubleBits(double value) {
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(value));
    return bits;
}

// A receive path and the share of packets the camera loses on their first way.
using StreamCase = std::tuple<ReceivePath, double>;

class EmulatorStream : public GigeTest::LoopbackFixture,
                       public ::testing::WithParamInterface<StreamCase> {
protected:
    void SetUp() override {
        const ReceivePath path = std::get<0>(GetParam());
        if (path == ReceivePath::PacketRing && geteuid() != 0)
            GTEST_SKIP() << "the packet ring needs CAP_NET_RAW";
        if (path == ReceivePath::Xdp && geteuid() != 0)
            GTEST_SKIP() << "AF_XDP and the network namespace it is tried in need root";
    }
    void TearDown() override {
        if (m_stream) {
            DSFlushQueue(m_stream, ACQ_QUEUE_ALL_DISCARD);
            for (BUFFER_HANDLE buffer : m_buffers)
                DSRevokeBuffer(m_stream, buffer, nullptr, nullptr);
            DSClose(m_stream);
        }
        LoopbackFixture::TearDown();
    }

    // The camera's own feature register, written the way its description says (big-endian;
    // floats as doubles).
    void WriteFeature(const std::string& xml, const char* feature, uint64_t value) {
        const FeatureRegister reg = FindFeatureRegister(xml, feature);
        ASSERT_TRUE(reg.Found()) << feature;
        std::vector<uint8_t> bytes(reg.length, 0);
        for (size_t i = 0; i < 8 && i < bytes.size(); ++i)
            bytes[bytes.size() - 1 - i] = uint8_t(value >> (8 * i));
        size_t size = bytes.size();
        ASSERT_EQ(GCWritePort(m_port, reg.address, bytes.data(), &size), GC_ERR_SUCCESS) << feature;
    }

    // Where the stream module's own node map keeps an integer feature (little-endian).
    std::pair<uint64_t, size_t> StreamRegister(const std::string& feature) {
        uint64_t base = 0, length = 0;
        size_t size = sizeof(base);
        GCGetPortURLInfo(m_stream, 0, URL_INFO_FILE_REGISTER_ADDRESS, nullptr, &base, &size);
        GCGetPortURLInfo(m_stream, 0, URL_INFO_FILE_SIZE, nullptr, &length, &size);
        std::string xml(length, '\0');
        size = xml.size();
        EXPECT_EQ(GCReadPort(m_stream, base, xml.data(), &size), GC_ERR_SUCCESS);
        const size_t at = xml.find("Name=\"" + feature + "Reg\"");
        if (at == std::string::npos) {
            ADD_FAILURE() << "no register for " << feature;
            return {0, 0};
        }
        auto field = [&](const std::string& tag, int base) {
            return std::stoull(xml.substr(xml.find(tag, at) + tag.size()), nullptr, base);
        };
        return {field("<Address>", 16), field("<Length>", 10)};
    }
    GC_ERROR WriteStreamFeature(const std::string& feature, int64_t value) {
        auto [address, size] = StreamRegister(feature);
        return GCWritePort(m_stream, address, &value, &size);
    }
    int64_t ReadStreamFeature(const std::string& feature) {
        int64_t value = 0;
        auto [address, size] = StreamRegister(feature);
        EXPECT_EQ(GCReadPort(m_stream, address, &value, &size), GC_ERR_SUCCESS);
        return value;
    }

    template <typename T>
    T BufferValue(BUFFER_HANDLE buffer, BUFFER_INFO_CMD cmd) {
        T value{};
        INFO_DATATYPE type{};
        size_t size = sizeof(value);
        EXPECT_EQ(DSGetBufferInfo(m_stream, buffer, cmd, &type, &value, &size), GC_ERR_SUCCESS);
        return value;
    }

    // AF_XDP across a veth pair, the camera in a namespace at the far end: loopback's driver
    // runs no XDP, and a link is what the path is for. The others on loopback.
    std::unique_ptr<EmulatedCamera> StartCamera(ReceivePath path, const EmulatorOptions& options) {
        if (path != ReceivePath::Xdp) {
            auto camera = std::make_unique<EmulatedCamera>(options);
            if (camera->Start())
                OpenLoopback(camera->ControlEndpoint().port);
            return camera;
        }
        m_link = std::make_unique<GigeTest::NamespaceLink>(kLinkMtu);
        if (!m_link->Ready())
            return nullptr;
        auto camera = m_link->StartCamera(options);
        if (camera && camera->Running())
            OpenInterface(m_link->HostInterface(), camera->ControlEndpoint().port);
        return camera;
    }
    static std::string LastError() {
        GC_ERROR code{};
        char text[256] = {};
        size_t size = sizeof(text);
        GCGetLastError(&code, text, &size);
        return text;
    }

    std::unique_ptr<GigeTest::NamespaceLink> m_link;
    PORT_HANDLE m_port = nullptr;
    DS_HANDLE m_stream = nullptr;
    std::vector<BUFFER_HANDLE> m_buffers;
};

} // namespace

TEST_P(EmulatorStream, AThousandImagesArriveWholeAndInOrder) {
    const auto [path, loss] = GetParam();
    EmulatorOptions options;
    options.port = 0;
    options.index = 3;
    options.packetLossPercent = loss;
    options.seed = 5;
    const std::unique_ptr<EmulatedCamera> camera = StartCamera(path, options);
    if (m_link && !m_link->Ready())
        GTEST_SKIP() << "no network namespace for the link: " << m_link->Error();
    ASSERT_TRUE(camera && camera->Running()) << (camera ? camera->Error() : "");
    const std::string id = FindBySerial(camera->Identity().serialNumber, 300);
    ASSERT_FALSE(id.empty());
    ASSERT_EQ(IFOpenDevice(m_interface, id.c_str(), DEVICE_ACCESS_CONTROL, &m_device),
              GC_ERR_SUCCESS);
    ASSERT_EQ(DevGetPort(m_device, &m_port), GC_ERR_SUCCESS);
    const std::string xml =
        dynamic_cast<Orvan::Producer::VirtualCamera&>(camera->Camera()).DescriptionXml();
    WriteFeature(xml, "Width", kWidth);
    WriteFeature(xml, "Height", kHeight);
    // Paced like a real camera: bursts at loopback speed would overflow the receive buffer of
    // a busy machine, a loss no resend window is meant for.
    WriteFeature(xml, "ExposureTime", DoubleBits(100));
    WriteFeature(xml, "AcquisitionFrameRateEnable", 1);
    WriteFeature(xml, "AcquisitionFrameRate", DoubleBits(150));

    char streamId[64];
    size_t size = sizeof(streamId);
    ASSERT_EQ(DevGetDataStreamID(m_device, 0, streamId, &size), GC_ERR_SUCCESS);
    ASSERT_EQ(DevOpenDataStream(m_device, streamId, &m_stream), GC_ERR_SUCCESS);
    size_t payload = 0;
    INFO_DATATYPE type{};
    size = sizeof(payload);
    ASSERT_EQ(DSGetInfo(m_stream, STREAM_INFO_PAYLOAD_SIZE, &type, &payload, &size),
              GC_ERR_SUCCESS);
    ASSERT_EQ(payload, kWidth * kHeight);
    // A buffer for every image: however slowly the checks run, the camera never waits.
    m_buffers.resize(kImages);
    for (BUFFER_HANDLE& buffer : m_buffers) {
        ASSERT_EQ(DSAllocAndAnnounceBuffer(m_stream, payload, nullptr, &buffer), GC_ERR_SUCCESS);
        ASSERT_EQ(DSQueueBuffer(m_stream, buffer), GC_ERR_SUCCESS);
    }
    EVENT_HANDLE newBuffer = nullptr;
    ASSERT_EQ(GCRegisterEvent(m_stream, EVENT_NEW_BUFFER, &newBuffer), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteStreamFeature("StreamReceivePath", static_cast<int64_t>(path)), GC_ERR_SUCCESS);
    const int64_t noSuchCore = std::thread::hardware_concurrency();
    EXPECT_EQ(WriteStreamFeature("StreamReceiveThreadCore", noSuchCore), GC_ERR_INVALID_VALUE);
    const GC_ERROR started = DSStartAcquisition(m_stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE);
    if (path == ReceivePath::Xdp && started == GC_ERR_NOT_AVAILABLE)
        GTEST_SKIP() << LastError();
    ASSERT_EQ(started, GC_ERR_SUCCESS);
    EXPECT_EQ(ReadStreamFeature("StreamReceivePathInUse"), static_cast<int64_t>(path));
    WriteFeature(xml, "AcquisitionStart", 1);

    uint64_t first = 0;
    for (uint32_t i = 0; i < kImages; ++i) {
        EVENT_NEW_BUFFER_DATA data{};
        size = sizeof(data);
        ASSERT_EQ(EventGetData(newBuffer, &data, &size, 5000), GC_ERR_SUCCESS) << "image " << i;
        const auto* image = BufferValue<uint8_t*>(data.BufferHandle, BUFFER_INFO_BASE);
        const uint64_t frame = ReadFrameStamp(image, payload);
        ASSERT_FALSE(BufferValue<bool8_t>(data.BufferHandle, BUFFER_INFO_IS_INCOMPLETE));
        ASSERT_TRUE(MatchesTestPattern(0x01080001, kWidth, kHeight, PatternKind::MovingDiagonal,
                                       frame, image, payload))
            << "image " << i << " damaged";
        if (i == 0)
            first = frame;
        ASSERT_EQ(frame, first + i) << "an image was lost";
    }
    WriteFeature(xml, "AcquisitionStop", 1);
    EXPECT_EQ(DSStopAcquisition(m_stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    EXPECT_EQ(camera->StreamStatistics().packetsResent > 0, loss > 0);
    EXPECT_EQ(GCUnregisterEvent(m_stream, EVENT_NEW_BUFFER), GC_ERR_SUCCESS);
}

std::string CaseName(const ::testing::TestParamInfo<StreamCase>& info) {
    static const char* const paths[] = {"Auto", "Socket", "PacketRing", "Xdp"};
    return std::string(paths[static_cast<int>(std::get<0>(info.param))]) + "Losing" +
           std::to_string(static_cast<int>(std::get<1>(info.param))) + "Percent";
}

INSTANTIATE_TEST_SUITE_P(EveryPath, EmulatorStream,
                         ::testing::Combine(::testing::Values(ReceivePath::Socket,
                                                              ReceivePath::PacketRing,
                                                              ReceivePath::Xdp),
                                            ::testing::Values(0.0, 1.0, 5.0)),
                         CaseName);
