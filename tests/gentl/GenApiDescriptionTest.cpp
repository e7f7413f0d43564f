// The modules' descriptions loaded by the project's GenApi engine and used through it: what a
// consumer's node maps see is what the producer holds.
#include "ProducerFixture.h"

#include <GenApi/GenApi.h>

using namespace GenTL;
using namespace Orvan::Producer;

namespace {

// The GenApi port of one GenTL module.
class ModulePort : public GenApi::IPort {
public:
    explicit ModulePort(PORT_HANDLE handle) : m_handle(handle) {}
    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
    void Read(void* buffer, int64_t address, int64_t length) override {
        size_t size = static_cast<size_t>(length);
        if (GCReadPort(m_handle, static_cast<uint64_t>(address), buffer, &size) != GC_ERR_SUCCESS)
            throw RUNTIME_EXCEPTION("GCReadPort failed: %s", ProducerErrorText().c_str());
    }
    void Write(const void* buffer, int64_t address, int64_t length) override {
        size_t size = static_cast<size_t>(length);
        if (GCWritePort(m_handle, static_cast<uint64_t>(address), buffer, &size) != GC_ERR_SUCCESS)
            throw RUNTIME_EXCEPTION("GCWritePort failed: %s", ProducerErrorText().c_str());
    }

private:
    PORT_HANDLE m_handle;
};

// A module's node map built from the description its port serves.
class ModuleNodeMap {
public:
    ModuleNodeMap(PORT_HANDLE handle, const char* portName) : m_port(handle) {
        uint64_t address = 0, length = 0;
        size_t size = 8;
        EXPECT_EQ(
            GCGetPortURLInfo(handle, 0, URL_INFO_FILE_REGISTER_ADDRESS, nullptr, &address, &size),
            GC_ERR_SUCCESS);
        EXPECT_EQ(GCGetPortURLInfo(handle, 0, URL_INFO_FILE_SIZE, nullptr, &length, &size),
                  GC_ERR_SUCCESS);
        std::string xml(length, '\0');
        size = length;
        EXPECT_EQ(GCReadPort(handle, address, xml.data(), &size), GC_ERR_SUCCESS);
        GenApi::CNodeMapFactory factory(GenApi::ContentType_Auto, xml.data(), xml.size());
        m_map = factory.CreateNodeMap();
        EXPECT_TRUE(m_map->Connect(&m_port, portName));
    }
    ~ModuleNodeMap() { dynamic_cast<GenApi::IDestroy*>(m_map)->Destroy(); }
    GenApi::INodeMap* operator->() const { return m_map; }

private:
    ModulePort m_port;
    GenApi::INodeMap* m_map = nullptr;
};

class GenApiDescriptions : public ProducerFixture {
protected:
    void SetUp() override {
        ProducerFixture::SetUp();
        Open();
        OpenStream();
    }
};

} // namespace

TEST_F(GenApiDescriptions, NodeMapsOfEveryModuleReadTheProducersValues) {
    ModuleNodeMap system(m_system, "TLPort");
    EXPECT_EQ(GenApi::CStringPtr(system->GetNode("TLID"))->GetValue(), "OrvanGenTL");
    ModuleNodeMap interface(m_interface, "InterfacePort");
    EXPECT_EQ(GenApi::CIntegerPtr(interface->GetNode("GevInterfaceSubnetIPAddress"))->GetValue(),
              0x7F000001);
    EXPECT_EQ(GenApi::CStringPtr(interface->GetNode("DeviceID"))->GetValue(), m_deviceId.c_str());
    ModuleNodeMap device(m_device, "DevicePort");
    EXPECT_EQ(GenApi::CEnumerationPtr(device->GetNode("DeviceAccessStatus"))->ToString(),
              "ReadWrite");
    EXPECT_EQ(GenApi::CEnumerationPtr(device->GetNode("DeviceType"))->ToString(), "GigEVision");
    ModuleNodeMap stream(m_stream, "StreamPort");
    AllocBuffers(2);
    EXPECT_EQ(GenApi::CIntegerPtr(stream->GetNode("StreamAnnouncedBufferCount"))->GetValue(), 2);
    EXPECT_FALSE(GenApi::CBooleanPtr(stream->GetNode("StreamIsGrabbing"))->GetValue());
}

TEST_F(GenApiDescriptions, WritesThroughNodeMapsChangeTheProducer) {
    ModuleNodeMap device(m_device, "DevicePort");
    GenApi::CBooleanPtr multipart(device->GetNode("StreamMultipartEnable"));
    EXPECT_FALSE(GenApi::IsAvailable(multipart)) << "multipart is offered only once implemented";
    GenApi::CBooleanPtr(device->GetNode("MultipartFeaturesImplementedEnable"))->SetValue(true);
    EXPECT_TRUE(GenApi::IsAvailable(multipart));
    multipart->SetValue(true);
    EXPECT_TRUE(multipart->GetValue());

    ModuleNodeMap stream(m_stream, "StreamPort");
    GenApi::CEnumerationPtr mode(stream->GetNode("StreamBufferHandlingMode"));
    mode->FromString("NewestOnly");
    EXPECT_EQ(mode->ToString(), "NewestOnly");
    ASSERT_EQ(DSSetupResendRetryParams(m_stream, 7, 25.0, "SN1", "FW1", 320, 240), GC_ERR_SUCCESS);
    EXPECT_DOUBLE_EQ(GenApi::CFloatPtr(stream->GetNode("StreamResendFrameRate"))->GetValue(), 25.0);
}
