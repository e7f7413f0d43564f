// End to end through the GenTL functions alone: the default virtual camera is found, opened,
// described and streams frames into producer buffers.
#include "ProducerFixture.h"

#include <boost/crc.hpp>
#include <pugixml.hpp>
#include <zip.h>

#include <algorithm>

using namespace GenTL;
using namespace Orvan::Producer;

namespace {

// The first file of a zip archive held in memory.
std::string Unzip(const std::string& archive) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source = zip_source_buffer_create(archive.data(), archive.size(), 0, &error);
    zip_t* zip = source ? zip_open_from_source(source, ZIP_RDONLY, &error) : nullptr;
    std::string text;
    zip_stat_t stat;
    if (zip && zip_stat_index(zip, 0, 0, &stat) == 0) {
        text.resize(stat.size);
        zip_file_t* file = zip_fopen_index(zip, 0, 0);
        if (!file || zip_fread(file, text.data(), text.size()) != int64_t(text.size()))
            text.clear();
        if (file)
            zip_fclose(file);
    }
    if (zip)
        zip_close(zip);
    else if (source)
        zip_source_free(source);
    zip_error_fini(&error);
    return text;
}

// The camera's description read through its remote port, for finding registers by feature.
class CameraDescription {
public:
    explicit CameraDescription(PORT_HANDLE remote) : m_remote(remote) {
        uint64_t address = 0, length = 0;
        size_t size = 8;
        EXPECT_EQ(
            GCGetPortURLInfo(remote, 0, URL_INFO_FILE_REGISTER_ADDRESS, nullptr, &address, &size),
            GC_ERR_SUCCESS);
        EXPECT_EQ(GCGetPortURLInfo(remote, 0, URL_INFO_FILE_SIZE, nullptr, &length, &size),
                  GC_ERR_SUCCESS);
        m_text.resize(length);
        size = length;
        EXPECT_EQ(GCReadPort(remote, address, m_text.data(), &size), GC_ERR_SUCCESS);
        std::string file = InfoText([&](INFO_DATATYPE* t, void* b, size_t* s) {
            return GCGetPortURLInfo(remote, 0, URL_INFO_FILENAME, t, b, s);
        });
        if (file.size() > 4 && file.compare(file.size() - 4, 4, ".zip") == 0)
            m_text = Unzip(m_text);
        m_parsed = m_document.load_buffer(m_text.data(), m_text.size());
    }

    bool WellFormed() const { return static_cast<bool>(m_parsed); }

    // Writes value to the register behind the feature, in the register's own byte order.
    void WriteInt(const std::string& feature, int64_t value) const {
        pugi::xml_node reg = Register(feature);
        ASSERT_TRUE(reg) << feature;
        std::vector<uint8_t> bytes(reg.child("Length").text().as_uint());
        const bool big = std::string(reg.child("Endianess").text().as_string()) == "BigEndian";
        for (size_t i = 0; i < bytes.size(); ++i)
            bytes[big ? bytes.size() - 1 - i : i] = static_cast<uint8_t>(value >> (8 * i));
        size_t size = bytes.size();
        ASSERT_EQ(GCWritePort(m_remote, Address(reg), bytes.data(), &size), GC_ERR_SUCCESS)
            << feature;
    }

    // The chunk id of the port a chunk feature reads from.
    uint64_t ChunkId(const std::string& feature) const {
        pugi::xml_node port = Node(Register(feature).child("pPort").text().as_string());
        return std::stoull(port.child("ChunkID").text().as_string(), nullptr, 16);
    }
    bool BigEndian(const std::string& feature) const {
        return std::string(Register(feature).child("Endianess").text().as_string()) == "BigEndian";
    }

private:
    pugi::xml_node Node(const std::string& name) const {
        return m_document.child("RegisterDescription")
            .find_child_by_attribute("Name", name.c_str());
    }
    pugi::xml_node Register(const std::string& feature) const {
        pugi::xml_node value = Node(feature).child("pValue");
        return value ? Node(value.text().as_string()) : pugi::xml_node();
    }
    static uint64_t Address(pugi::xml_node reg) {
        return std::stoull(reg.child("Address").text().as_string(), nullptr, 0);
    }

    PORT_HANDLE m_remote;
    std::string m_text;
    pugi::xml_document m_document;
    pugi::xml_parse_result m_parsed;
};

class VirtualCamera : public ProducerFixture {
protected:
    void SetUp() override {} // the producer's own virtual cameras, no fakes

    // Streams `frames` frames from the open device's stream and checks their payload type.
    void StreamFrames(CameraDescription& description, int frames, uint64_t payloadType) {
        const size_t payload = StreamCount(STREAM_INFO_PAYLOAD_SIZE);
        ASSERT_GT(payload, 0u);
        QueueAll(AllocBuffers(4, payload));
        ASSERT_EQ(DSStartAcquisition(m_stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE),
                  GC_ERR_SUCCESS);
        description.WriteInt("AcquisitionStart", 1);
        uint64_t lastFrame = 0;
        for (int i = 0; i < frames; ++i) {
            BUFFER_HANDLE buffer = Take(5000);
            const uint64_t frame = BufferValue(buffer, BUFFER_INFO_FRAMEID);
            EXPECT_GT(frame, lastFrame);
            lastFrame = frame;
            EXPECT_EQ(BufferValue(buffer, BUFFER_INFO_PAYLOADTYPE), payloadType);
            EXPECT_GT(BufferValue(buffer, BUFFER_INFO_SIZE_FILLED), 0u);
            EXPECT_LE(BufferValue(buffer, BUFFER_INFO_SIZE_FILLED), payload);
            QueueAll({buffer});
        }
        description.WriteInt("AcquisitionStop", 1);
        ASSERT_EQ(DSStopAcquisition(m_stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
        ExpectAccounted();
        ASSERT_EQ(DSFlushQueue(m_stream, ACQ_QUEUE_ALL_DISCARD), GC_ERR_SUCCESS);
        for (BUFFER_HANDLE buffer = nullptr; DSGetBufferID(m_stream, 0, &buffer) == GC_ERR_SUCCESS;)
            ASSERT_EQ(DSRevokeBuffer(m_stream, buffer, nullptr, nullptr), GC_ERR_SUCCESS);
    }
};

// With chunk mode on, each image carries chunks after it, the CRC among them.
TEST_F(VirtualCamera, ChunkModeAppendsTheImagesCrc) {
    Open();
    PORT_HANDLE remote = nullptr;
    ASSERT_EQ(DevGetPort(m_device, &remote), GC_ERR_SUCCESS);
    CameraDescription description(remote);
    description.WriteInt("ChunkModeActive", 1);
    OpenStream();
    QueueAll(AllocBuffers(2, StreamCount(STREAM_INFO_PAYLOAD_SIZE)));
    ASSERT_EQ(DSStartAcquisition(m_stream, ACQ_START_FLAGS_DEFAULT, 1), GC_ERR_SUCCESS);
    description.WriteInt("AcquisitionStart", 1);
    BUFFER_HANDLE buffer = Take(5000);
    EXPECT_EQ(BufferValue(buffer, BUFFER_INFO_PAYLOADTYPE), 0x4001u);
    EXPECT_TRUE(BufferFlag(buffer, BUFFER_INFO_CONTAINS_CHUNKDATA));
    size_t count = 0;
    ASSERT_EQ(DSGetBufferChunkData(m_stream, buffer, nullptr, &count), GC_ERR_SUCCESS);
    std::vector<SINGLE_CHUNK_DATA> chunks(count);
    ASSERT_EQ(DSGetBufferChunkData(m_stream, buffer, chunks.data(), &count), GC_ERR_SUCCESS);
    ASSERT_GE(count, 2u);
    const auto* base = reinterpret_cast<const uint8_t*>(BufferValue(buffer, BUFFER_INFO_BASE));
    const uint64_t imageBytes =
        BufferValue(buffer, BUFFER_INFO_WIDTH) * BufferValue(buffer, BUFFER_INFO_HEIGHT);
    EXPECT_EQ(chunks[0].ChunkOffset, 0);
    EXPECT_GE(chunks[0].ChunkLength, imageBytes);
    boost::crc_32_type crc;
    crc.process_bytes(base, imageBytes);
    const uint64_t crcId = description.ChunkId("ChunkCRC");
    auto found = std::find_if(chunks.begin(), chunks.end(),
                              [&](const SINGLE_CHUNK_DATA& c) { return c.ChunkID == crcId; });
    ASSERT_NE(found, chunks.end());
    ASSERT_EQ(found->ChunkLength, 4u);
    const uint8_t* bytes = base + found->ChunkOffset;
    uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
        value |= uint32_t(bytes[description.BigEndian("ChunkCRC") ? 3 - i : i]) << (8 * i);
    EXPECT_EQ(value, crc.checksum());
    description.WriteInt("AcquisitionStop", 1);
}

struct ModelCase {
    const char* model;
    uint32_t streams;
    uint32_t imageStream;
    uint64_t payloadType;
};

class EveryModel : public VirtualCamera, public ::testing::WithParamInterface<ModelCase> {};

} // namespace

// Each model opened through the producer alone delivers frames on the stream the SDK picks.
TEST_P(EveryModel, OpensAndStreamsOnItsImageStream) {
    const ModelCase& model = GetParam();
    ASSERT_EQ(OrvanTC_SetVirtualCameras(&model.model, 1, 1), ORVAN_TC_OK);
    Open();
    uint32_t streams = 0;
    ASSERT_EQ(DevGetNumDataStreams(m_device, &streams), GC_ERR_SUCCESS);
    EXPECT_EQ(streams, model.streams);
    PORT_HANDLE remote = nullptr;
    ASSERT_EQ(DevGetPort(m_device, &remote), GC_ERR_SUCCESS);
    CameraDescription description(remote);
    OpenStream(model.imageStream);
    StreamFrames(description, 3, model.payloadType);
}

INSTANTIATE_TEST_SUITE_P(
    VirtualModels, EveryModel,
    ::testing::Values(ModelCase{"Mono", 1, 0, PAYLOAD_TYPE_IMAGE},
                      ModelCase{"Color", 1, 0, PAYLOAD_TYPE_IMAGE},
                      ModelCase{"LineScan", 5, 0, PAYLOAD_TYPE_IMAGE},
                      ModelCase{"MultiStream", 3, 0, PAYLOAD_TYPE_IMAGE},
                      ModelCase{"Compressed", 1, 0, PAYLOAD_TYPE_ORVAN_COMPRESSED_IMAGE},
                      ModelCase{"EventSensor", 4, 3, PAYLOAD_TYPE_RAW_DATA}),
    [](const ::testing::TestParamInfo<ModelCase>& info) { return info.param.model; });

TEST_F(VirtualCamera, TheDefaultMonoCameraStreamsNumberedFrames) {
    Open();
    EXPECT_EQ(InfoText([&](INFO_DATATYPE* t, void* b, size_t* s) {
                  return DevGetInfo(m_device, DEVICE_INFO_TLTYPE, t, b, s);
              }),
              "GEV");
    PORT_HANDLE remote = nullptr;
    ASSERT_EQ(DevGetPort(m_device, &remote), GC_ERR_SUCCESS);
    CameraDescription description(remote);
    ASSERT_TRUE(description.WellFormed());
    OpenStream();
    StreamFrames(description, 8, PAYLOAD_TYPE_IMAGE);
}
