// A long stream through the GenTL calls from our emulator dropping packets: every image
// arrives, in order and intact, its lost packets asked for again.
#include "EmulatedCamera.h"
#include "FeatureRegister.h"
#include "GigeTestSupport.h"
#include "virtual/TestPattern.h"
#include "virtual/VirtualCamera.h"

#include <cstring>
#include <vector>

using namespace GenTL;
using namespace Orvan::Emulator;
using Orvan::Producer::MatchesTestPattern;
using Orvan::Producer::PatternKind;
using Orvan::Producer::ReadFrameStamp;

namespace {

constexpr uint32_t kImages = 1000;

uint64_t DoubleBits(double value) {
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(value));
    return bits;
}

class EmulatorStream : public GigeTest::LoopbackFixture {
protected:
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

    template <typename T>
    T BufferValue(BUFFER_HANDLE buffer, BUFFER_INFO_CMD cmd) {
        T value{};
        INFO_DATATYPE type{};
        size_t size = sizeof(value);
        EXPECT_EQ(DSGetBufferInfo(m_stream, buffer, cmd, &type, &value, &size), GC_ERR_SUCCESS);
        return value;
    }

    PORT_HANDLE m_port = nullptr;
    DS_HANDLE m_stream = nullptr;
    std::vector<BUFFER_HANDLE> m_buffers;
};

} // namespace

TEST_F(EmulatorStream, AThousandImagesThroughFivePercentPacketLoss) {
    EmulatorOptions options;
    options.port = 0;
    options.index = 3;
    options.packetLossPercent = 5;
    options.seed = 5;
    EmulatedCamera camera(options);
    ASSERT_TRUE(camera.Start()) << camera.Error();
    OpenLoopback(camera.ControlEndpoint().port);
    const std::string id = FindBySerial(camera.Identity().serialNumber, 300);
    ASSERT_FALSE(id.empty());
    ASSERT_EQ(IFOpenDevice(m_interface, id.c_str(), DEVICE_ACCESS_CONTROL, &m_device),
              GC_ERR_SUCCESS);
    ASSERT_EQ(DevGetPort(m_device, &m_port), GC_ERR_SUCCESS);
    const std::string xml =
        dynamic_cast<Orvan::Producer::VirtualCamera&>(camera.Camera()).DescriptionXml();
    WriteFeature(xml, "Width", 64);
    WriteFeature(xml, "Height", 32);
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
    ASSERT_EQ(payload, 64u * 32u);
    // A buffer for every image: however slowly the checks run, the camera never waits.
    m_buffers.resize(kImages);
    for (BUFFER_HANDLE& buffer : m_buffers) {
        ASSERT_EQ(DSAllocAndAnnounceBuffer(m_stream, payload, nullptr, &buffer), GC_ERR_SUCCESS);
        ASSERT_EQ(DSQueueBuffer(m_stream, buffer), GC_ERR_SUCCESS);
    }
    EVENT_HANDLE newBuffer = nullptr;
    ASSERT_EQ(GCRegisterEvent(m_stream, EVENT_NEW_BUFFER, &newBuffer), GC_ERR_SUCCESS);
    ASSERT_EQ(DSStartAcquisition(m_stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE),
              GC_ERR_SUCCESS);
    WriteFeature(xml, "AcquisitionStart", 1);

    uint64_t first = 0;
    for (uint32_t i = 0; i < kImages; ++i) {
        EVENT_NEW_BUFFER_DATA data{};
        size = sizeof(data);
        ASSERT_EQ(EventGetData(newBuffer, &data, &size, 5000), GC_ERR_SUCCESS) << "image " << i;
        const auto* image = BufferValue<uint8_t*>(data.BufferHandle, BUFFER_INFO_BASE);
        const uint64_t frame = ReadFrameStamp(image, payload);
        ASSERT_FALSE(BufferValue<bool8_t>(data.BufferHandle, BUFFER_INFO_IS_INCOMPLETE));
        ASSERT_TRUE(MatchesTestPattern(0x01080001, 64, 32, PatternKind::MovingDiagonal, frame,
                                       image, payload))
            << "image " << i << " damaged";
        if (i == 0)
            first = frame;
        ASSERT_EQ(frame, first + i) << "an image was lost";
    }
    WriteFeature(xml, "AcquisitionStop", 1);
    EXPECT_EQ(DSStopAcquisition(m_stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    EXPECT_GT(camera.StreamStatistics().packetsResent, 0u);
    EXPECT_EQ(GCUnregisterEvent(m_stream, EVENT_NEW_BUFFER), GC_ERR_SUCCESS);
}
