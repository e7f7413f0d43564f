#include "CameraTestSupport.h"

#include <GenApi/GenApi.h>
#include <gtest/gtest.h>

namespace {

using namespace CameraTest;
using namespace GenApi;
using Orvan::Producer::VirtualCamera;

// The camera's remote port as a GenApi consumer connects it.
class CameraPort : public IPort {
public:
    explicit CameraPort(VirtualCamera& camera) : m_camera(camera) {}
    EAccessMode GetAccessMode() const override { return RW; }
    void Read(void* buffer, int64_t address, int64_t length) override {
        size_t size = size_t(length);
        if (m_camera.ReadPort(uint64_t(address), buffer, &size) != GenTL::GC_ERR_SUCCESS)
            throw ACCESS_EXCEPTION("read failed at %lld", static_cast<long long>(address));
    }
    void Write(const void* buffer, int64_t address, int64_t length) override {
        size_t size = size_t(length);
        if (m_camera.WritePort(uint64_t(address), buffer, &size) != GenTL::GC_ERR_SUCCESS)
            throw ACCESS_EXCEPTION("write failed at %lld", static_cast<long long>(address));
    }

private:
    VirtualCamera& m_camera;
};

class GenApiOverCamera : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        camera = MakeCamera(GetParam());
        const auto& file = camera->DescriptionFile();
        if (camera->DescriptionUrl().find(".zip;") != std::string::npos)
            map._LoadXMLFromZIPData(file.data(), file.size());
        else
            map._LoadXMLFromString(camera->DescriptionXml().c_str());
        port = std::make_unique<CameraPort>(*camera);
        ASSERT_TRUE(map._Connect(port.get(), "Device"));
    }

    std::unique_ptr<VirtualCamera> camera;
    std::unique_ptr<CameraPort> port;
    CNodeMapRef map;
};

TEST_P(GenApiOverCamera, FeaturesReadAndWriteThroughThePort) {
    CStringPtr serial = map._GetNode("DeviceSerialNumber");
    EXPECT_EQ(std::string(serial->GetValue().c_str()), camera->Identity().serialNumber);

    CIntegerPtr width = map._GetNode("Width");
    CIntegerPtr offsetX = map._GetNode("OffsetX");
    CIntegerPtr payload = map._GetNode("PayloadSize");
    const int64_t widthMax = CIntegerPtr(map._GetNode("WidthMax"))->GetValue();
    width->SetValue(64);
    offsetX->SetValue(16);
    EXPECT_EQ(width->GetMax(), widthMax - 16);
    EXPECT_EQ(offsetX->GetMax(), widthMax - 64);
    EXPECT_EQ(payload->GetValue(), int64_t(camera->PayloadSize(0)));

    CEnumerationPtr format = map._GetNode("PixelFormat");
    EXPECT_EQ(format->GetIntValue(), int64_t(Features(*camera).Int("PixelFormat")));
    CBooleanPtr chunkMode = map._GetNode("ChunkModeActive");
    const int64_t before = payload->GetValue();
    chunkMode->SetValue(true);
    if (GetParam() != "EventSensor") { // its payload is events, not images
        EXPECT_GT(payload->GetValue(), before);
    }

    CIntegerPtr locked = map._GetNode("TLParamsLocked");
    locked->SetValue(1);
    EXPECT_FALSE(IsWritable(width));
    EXPECT_TRUE(IsWritable(offsetX));
    EXPECT_THROW(width->SetValue(128), GenICam::GenericException);
    locked->SetValue(0);
    EXPECT_TRUE(IsWritable(width));

    CCommandPtr start = map._GetNode("AcquisitionStart");
    start->Execute();
    EXPECT_TRUE(start->IsDone());
    CFloatPtr temperature = map._GetNode("DeviceTemperature");
    EXPECT_GT(temperature->GetValue(), 0.0);
    CCommandPtr(map._GetNode("AcquisitionStop"))->Execute();
}

TEST_P(GenApiOverCamera, SelectorsReachTheSelectedItem) {
    CEnumerationPtr selector = map._GetNode("ChunkSelector");
    CBooleanPtr enable = map._GetNode("ChunkEnable");
    selector->FromString("Timestamp");
    enable->SetValue(false);
    selector->FromString("FrameID");
    EXPECT_TRUE(enable->GetValue());
    selector->FromString("Timestamp");
    EXPECT_FALSE(enable->GetValue());

    CEnumerationPtr events = map._GetNode("EventSelector");
    CEnumerationPtr notification = map._GetNode("EventNotification");
    events->FromString("FrameStart");
    notification->FromString("On");
    events->FromString("ExposureEnd");
    EXPECT_EQ(std::string(notification->ToString().c_str()), "Off");
}

INSTANTIATE_TEST_SUITE_P(VirtualCameras, GenApiOverCamera,
                         ::testing::ValuesIn(Orvan::Producer::VirtualCameraModels()));

} // namespace
