// Module ports: the description each module serves, its registers bound to live values, and the
// remote device's port and URL information.
#include "ProducerFixture.h"

#include <pugixml.hpp>

#include <cstring>

using namespace GenTL;
using namespace Orvan::Producer;

namespace {

std::string PortUrl(PORT_HANDLE port) {
    char url[256];
    size_t size = sizeof(url);
    EXPECT_EQ(GCGetPortURL(port, url, &size), GC_ERR_SUCCESS);
    return url;
}

// The description of one module, parsed, with access to a feature's register.
class ModulePort {
public:
    explicit ModulePort(PORT_HANDLE port) : m_port(port), m_text(ReadDescription(port)) {
        m_parsed = m_document.load_buffer(m_text.data(), m_text.size());
    }

    bool WellFormed() const { return static_cast<bool>(m_parsed); }
    pugi::xml_node Root() const { return m_document.child("RegisterDescription"); }
    pugi::xml_node Node(const std::string& name) const {
        return Root().find_child_by_attribute("Name", name.c_str());
    }
    // The register node holding the feature's value.
    pugi::xml_node Register(const std::string& name) const {
        pugi::xml_node node = Node(name);
        pugi::xml_node value = node.child("pValue");
        return value ? Node(value.text().as_string()) : node;
    }
    int64_t ReadInt(const std::string& name) const {
        pugi::xml_node reg = Register(name);
        int64_t value = 0;
        size_t size = reg.child("Length").text().as_uint();
        EXPECT_EQ(GCReadPort(m_port, Address(reg), &value, &size), GC_ERR_SUCCESS);
        return value;
    }
    std::string ReadString(const std::string& name) const {
        pugi::xml_node reg = Register(name);
        std::string text(reg.child("Length").text().as_uint(), '\0');
        size_t size = text.size();
        EXPECT_EQ(GCReadPort(m_port, Address(reg), text.data(), &size), GC_ERR_SUCCESS);
        return text.c_str();
    }
    GC_ERROR WriteInt(const std::string& name, int64_t value) const {
        pugi::xml_node reg = Register(name);
        size_t size = reg.child("Length").text().as_uint();
        return GCWritePort(m_port, Address(reg), &value, &size);
    }

private:
    static uint64_t Address(pugi::xml_node reg) {
        return std::stoull(reg.child("Address").text().as_string(), nullptr, 16);
    }

    PORT_HANDLE m_port;
    std::string m_text;
    pugi::xml_document m_document;
    pugi::xml_parse_result m_parsed;
};

using Ports = StreamFixture;

} // namespace

TEST_F(Ports, EveryModuleServesAWellFormedDescriptionWithTheFeaturesConsumersRead) {
    struct Row {
        PORT_HANDLE port;
        const char* fileNamePart;
        const char* module;
        std::vector<std::string> features;
    };
    const std::vector<Row> rows = {
        {m_system,
         "GenTLSystem",
         TLSystemModuleName,
         {"TLID", "TLVendorName", "InterfaceSelector", "InterfaceID", "GevInterfaceMACAddress"}},
        {m_interface,
         "GenTLInterface",
         TLInterfaceModuleName,
         {"InterfaceID", "GevInterfaceMACAddress", "GevInterfaceSubnetIPAddress",
          "GevInterfaceSubnetMask", "DeviceSelector", "DeviceUpdateList", "DeviceID",
          "DeviceAccessStatus"}},
        {m_device,
         "GenTLDevice",
         TLDeviceModuleName,
         {"DeviceID", "DeviceVendorName", "DeviceModelName", "DeviceSerialNumber", "DeviceType",
          "DeviceAccessStatus", "StreamMultipartEnable", "MultipartFeaturesImplementedEnable"}},
        {m_stream,
         "GenTLDataStream",
         TLDataStreamModuleName,
         {"StreamID", "StreamType", "StreamAnnouncedBufferCount", "StreamAnnounceBufferMinimum",
          "StreamBufferHandlingMode", "StreamIsGrabbing", "StreamStartedFrameCount",
          "StreamDeliveredFrameCount", "StreamLostFrameCount", "StreamIncompleteFrameCount",
          "StreamMultipartNumParts", "StreamEvsOutputFormat", "StreamEvsBitDepth",
          "StreamResendWindowFrameCount"}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fileNamePart);
        std::string url = PortUrl(row.port);
        EXPECT_EQ(url.rfind("local:", 0), 0u);
        EXPECT_NE(url.find(row.fileNamePart), std::string::npos) << url;
        EXPECT_EQ(InfoText(GCGetPortInfo, row.port, PORT_INFO_MODULE), row.module);
        ModulePort port(row.port);
        ASSERT_TRUE(port.WellFormed());
        EXPECT_EQ(port.Root().attribute("SchemaMajorVersion").as_int(), 1);
        EXPECT_EQ(port.Root().attribute("SchemaMinorVersion").as_int(), 1);
        for (const std::string& feature : row.features)
            EXPECT_TRUE(port.Node(feature)) << feature;
        // Every register a feature points at is served by the port.
        for (pugi::xml_node node : port.Root().children()) {
            if (!node.child("Address"))
                continue;
            std::vector<uint8_t> bytes(node.child("Length").text().as_uint());
            size_t size = bytes.size();
            uint64_t address = std::stoull(node.child("Address").text().as_string(), nullptr, 16);
            EXPECT_EQ(GCReadPort(row.port, address, bytes.data(), &size), GC_ERR_SUCCESS)
                << node.attribute("Name").value();
        }
    }
}

TEST_F(Ports, RegistersShowLiveValuesAndAcceptWrites) {
    ModulePort interface(m_interface);
    EXPECT_EQ(interface.ReadString("DeviceID"), m_deviceId);
    EXPECT_EQ(interface.ReadInt("DeviceAccessStatus"), 5); // OpenReadWrite: this host has it
    EXPECT_EQ(interface.ReadInt("GevInterfaceSubnetIPAddress"), 0x7F000001);
    EXPECT_EQ(interface.WriteInt("DeviceSelector", 5), GC_ERR_INVALID_VALUE);

    ModulePort device(m_device);
    EXPECT_EQ(device.ReadString("DeviceSerialNumber"), Camera().Identity().serialNumber);
    EXPECT_EQ(device.ReadInt("DeviceType"), 2); // GigEVision
    EXPECT_EQ(device.Node("StreamMultipartEnable").child("pIsAvailable").text().as_string(),
              std::string("MultipartFeaturesImplementedEnable"));
    ASSERT_EQ(device.WriteInt("MultipartFeaturesImplementedEnable", 1), GC_ERR_SUCCESS);
    EXPECT_EQ(device.ReadInt("MultipartFeaturesImplementedEnable"), 1);
    EXPECT_EQ(device.WriteInt("DeviceType", 1), GC_ERR_ACCESS_DENIED);

    ModulePort stream(m_stream);
    AllocBuffers(3);
    EXPECT_EQ(stream.ReadInt("StreamAnnouncedBufferCount"), 3);
    ASSERT_EQ(stream.WriteInt("StreamBufferHandlingMode", 3), GC_ERR_SUCCESS);
    EXPECT_EQ(stream.ReadInt("StreamBufferHandlingMode"), 3);
    EXPECT_EQ(stream.WriteInt("StreamBufferHandlingMode", 9), GC_ERR_INVALID_VALUE);
    ASSERT_EQ(DSSetupResendRetryParams(m_stream, 12, 30.0, "SN9", "FW2", 640, 480), GC_ERR_SUCCESS);
    EXPECT_EQ(stream.ReadInt("StreamResendWindowFrameCount"), 12);
    EXPECT_EQ(stream.ReadString("StreamResendDeviceSerialNumber"), "SN9");
    EXPECT_EQ(stream.ReadInt("StreamResendImageHeight"), 480);

    uint32_t value = 0;
    size_t size = sizeof(value);
    EXPECT_EQ(GCReadPort(m_stream, 0x10, &value, &size), GC_ERR_INVALID_ADDRESS);
}

TEST_F(Ports, NewestOnlyKeepsJustTheLatestFrameWaiting) {
    ModulePort stream(m_stream);
    ASSERT_EQ(stream.WriteInt("StreamBufferHandlingMode", 3), GC_ERR_SUCCESS);
    QueueAll(AllocBuffers(4));
    Start();
    for (int i = 0; i < 400 && stream.ReadInt("StreamDeliveredFrameCount") < 6; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    Stop();
    EXPECT_GE(stream.ReadInt("StreamDeliveredFrameCount"), 6);
    EXPECT_EQ(StreamCount(STREAM_INFO_NUM_AWAIT_DELIVERY), 1u);
    ExpectAccounted();
}

TEST_F(Ports, TheRemotePortForwardsToTheCamera) {
    PORT_HANDLE remote = nullptr;
    ASSERT_EQ(DevGetPort(m_device, &remote), GC_ERR_SUCCESS);
    EXPECT_EQ(PortUrl(remote), Camera().DescriptionUrl());
    EXPECT_EQ(InfoAs<int32_t>(GCGetPortURLInfo, remote, 0, URL_INFO_FILE_VER_MINOR), 3);
    EXPECT_EQ(InfoAs<int32_t>(GCGetPortURLInfo, remote, 0, URL_INFO_SCHEME), URL_SCHEME_LOCAL);
    EXPECT_EQ(InfoText(GCGetPortURLInfo, remote, 0, URL_INFO_FILENAME), "FakeCamera.xml");
    EXPECT_EQ(InfoText(GCGetPortInfo, remote, PORT_INFO_PORTNAME), "Device");
    uint32_t numUrls = 0;
    ASSERT_EQ(GCGetNumPortURLs(remote, &numUrls), GC_ERR_SUCCESS);
    EXPECT_EQ(numUrls, 1u);
    uint64_t unused = 0;
    size_t size = 8;
    EXPECT_EQ(GCGetPortURLInfo(remote, 1, URL_INFO_URL, nullptr, &unused, &size),
              GC_ERR_INVALID_INDEX);
    EXPECT_TRUE(ModulePort(remote).WellFormed());

    uint32_t written[2] = {0x11223344, 0x55667788}, read[2] = {};
    PORT_REGISTER_STACK_ENTRY writes[2] = {{0x100, &written[0], 4}, {0x104, &written[1], 4}};
    size_t entries = 2;
    ASSERT_EQ(GCWritePortStacked(remote, writes, &entries), GC_ERR_SUCCESS);
    PORT_REGISTER_STACK_ENTRY reads[3] = {
        {0x100, &read[0], 4}, {0x104, &read[1], 4}, {0xFFFFFF, &read[0], 4}};
    entries = 3;
    EXPECT_EQ(GCReadPortStacked(remote, reads, &entries), GC_ERR_INVALID_ADDRESS);
    EXPECT_EQ(entries, 2u);
    EXPECT_EQ(read[1], written[1]);
}
