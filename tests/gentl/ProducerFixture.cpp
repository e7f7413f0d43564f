#include "ProducerFixture.h"

#include "CameraCatalog.h"

namespace Orvan {
namespace Producer {

using namespace GenTL;

std::string ProducerErrorText() {
    GC_ERROR code = GC_ERR_SUCCESS;
    size_t size = 0;
    GCGetLastError(&code, nullptr, &size);
    std::string text(size, '\0');
    GCGetLastError(&code, text.data(), &size);
    text.resize(size ? size - 1 : 0);
    return text;
}

// The description file a module port serves, read where its first URL points.
std::string ReadDescription(PORT_HANDLE port) {
    uint64_t address = 0, length = 0;
    size_t size = 8;
    EXPECT_EQ(GCGetPortURLInfo(port, 0, URL_INFO_FILE_REGISTER_ADDRESS, nullptr, &address, &size),
              GC_ERR_SUCCESS);
    EXPECT_EQ(GCGetPortURLInfo(port, 0, URL_INFO_FILE_SIZE, nullptr, &length, &size),
              GC_ERR_SUCCESS);
    std::string xml(length, '\0');
    size = length;
    EXPECT_EQ(GCReadPort(port, address, xml.data(), &size), GC_ERR_SUCCESS);
    return xml;
}

void ProducerFixture::SetUp() {
    UseCameras(1, FakeCamera::Options());
}

void ProducerFixture::TearDown() {
    GCCloseLib(); // closes whatever the test left open
    OrvanTC_Reset();
    CameraCatalog::Instance().SetMaker(nullptr);
}

void ProducerFixture::UseCameras(uint32_t count, const FakeCamera::Options& options,
                                 uint32_t interfaces) {
    m_cameras.clear();
    CameraCatalog::Instance().SetMaker([this, options](const std::string&, uint32_t index) {
        auto camera = std::make_unique<FakeCamera>(index, options);
        m_cameras.push_back(camera.get());
        return std::unique_ptr<RemoteDevice>(std::move(camera));
    });
    std::vector<const char*> models(count, "Fake");
    ASSERT_EQ(OrvanTC_SetVirtualCameras(models.data(), count, interfaces), ORVAN_TC_OK);
}

void ProducerFixture::Open(DEVICE_ACCESS_FLAGS access) {
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    ASSERT_EQ(TLOpen(&m_system), GC_ERR_SUCCESS);
    char id[64];
    size_t size = sizeof(id);
    ASSERT_EQ(TLGetInterfaceID(m_system, 0, id, &size), GC_ERR_SUCCESS);
    ASSERT_EQ(TLOpenInterface(m_system, id, &m_interface), GC_ERR_SUCCESS);
    ASSERT_EQ(IFUpdateDeviceList(m_interface, nullptr, 100), GC_ERR_SUCCESS);
    size = sizeof(id);
    ASSERT_EQ(IFGetDeviceID(m_interface, 0, id, &size), GC_ERR_SUCCESS);
    m_deviceId = id;
    ASSERT_EQ(IFOpenDevice(m_interface, id, access, &m_device), GC_ERR_SUCCESS);
}

void ProducerFixture::OpenStream(uint32_t index) {
    char id[64];
    size_t size = sizeof(id);
    ASSERT_EQ(DevGetDataStreamID(m_device, index, id, &size), GC_ERR_SUCCESS);
    ASSERT_EQ(DevOpenDataStream(m_device, id, &m_stream), GC_ERR_SUCCESS);
    ASSERT_EQ(GCRegisterEvent(m_stream, EVENT_NEW_BUFFER, &m_newBuffer), GC_ERR_SUCCESS);
}

std::vector<BUFFER_HANDLE> ProducerFixture::AllocBuffers(size_t count, size_t size) {
    if (size == 0)
        size = Camera().PayloadSize(0);
    std::vector<BUFFER_HANDLE> buffers(count);
    for (BUFFER_HANDLE& buffer : buffers)
        EXPECT_EQ(DSAllocAndAnnounceBuffer(m_stream, size, nullptr, &buffer), GC_ERR_SUCCESS);
    return buffers;
}

void ProducerFixture::QueueAll(const std::vector<BUFFER_HANDLE>& buffers) {
    for (BUFFER_HANDLE buffer : buffers) {
        EXPECT_EQ(DSQueueBuffer(m_stream, buffer), GC_ERR_SUCCESS);
        m_held.erase(buffer);
    }
}

bool ProducerFixture::BufferFlag(BUFFER_HANDLE buffer, BUFFER_INFO_CMD cmd) {
    return InfoAs<bool8_t>(DSGetBufferInfo, m_stream, buffer, cmd) != 0;
}

uint64_t ProducerFixture::BufferValue(BUFFER_HANDLE buffer, BUFFER_INFO_CMD cmd) {
    uint64_t value = 0;
    size_t size = sizeof(value);
    EXPECT_EQ(DSGetBufferInfo(m_stream, buffer, cmd, nullptr, &value, &size), GC_ERR_SUCCESS);
    return value;
}

size_t ProducerFixture::StreamCount(STREAM_INFO_CMD cmd) {
    return InfoAs<size_t>(DSGetInfo, m_stream, cmd);
}

void ProducerFixture::Start(uint64_t frames) {
    ASSERT_EQ(DSStartAcquisition(m_stream, ACQ_START_FLAGS_DEFAULT, frames), GC_ERR_SUCCESS);
}

void ProducerFixture::Stop() {
    ASSERT_EQ(DSStopAcquisition(m_stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
}

BUFFER_HANDLE ProducerFixture::Take(uint64_t timeoutMs) {
    EVENT_NEW_BUFFER_DATA data{};
    size_t size = sizeof(data);
    EXPECT_EQ(EventGetData(m_newBuffer, &data, &size, timeoutMs), GC_ERR_SUCCESS)
        << ProducerErrorText();
    EXPECT_EQ(size, sizeof(data));
    EXPECT_TRUE(m_held.insert(data.BufferHandle).second) << "delivered twice";
    return data.BufferHandle;
}

void ProducerFixture::ExpectAccounted() {
    const size_t announced = StreamCount(STREAM_INFO_NUM_ANNOUNCED);
    size_t queued = 0, filling = 0, outside = 0;
    std::set<BUFFER_HANDLE> seen;
    for (uint32_t i = 0; i < announced; ++i) {
        BUFFER_HANDLE buffer = nullptr;
        ASSERT_EQ(DSGetBufferID(m_stream, i, &buffer), GC_ERR_SUCCESS);
        EXPECT_TRUE(seen.insert(buffer).second);
        bool isQueued = BufferFlag(buffer, BUFFER_INFO_IS_QUEUED);
        bool isFilling = BufferFlag(buffer, BUFFER_INFO_IS_ACQUIRING);
        EXPECT_FALSE(isQueued && isFilling);
        queued += isQueued;
        filling += isFilling;
        outside += !isQueued && !isFilling;
        if (m_held.count(buffer)) {
            EXPECT_FALSE(isQueued || isFilling) << "a held buffer is back in a queue";
        }
    }
    for (BUFFER_HANDLE held : m_held)
        EXPECT_TRUE(seen.count(held)) << "a held buffer is no longer announced";
    EXPECT_GE(outside, m_held.size());
    EXPECT_EQ(filling, 0u) << "a stopped stream holds no buffer in the camera";
    EXPECT_EQ(queued,
              StreamCount(STREAM_INFO_NUM_QUEUED) + StreamCount(STREAM_INFO_NUM_AWAIT_DELIVERY));
}

} // namespace Producer
} // namespace Orvan
