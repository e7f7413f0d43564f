// The producer through the SDK's wrappers: module handles, the typed info readers, the modules'
// descriptions and node maps, and descriptions read from disk.
#include "SpineTestSupport.h"
#include "core/DeviceDescription.h"
#include "core/GetInfo.h"
#include "core/Port.h"
#include "core/TLDataStream.h"
#include "core/TLDevice.h"
#include "core/TLInterface.h"
#include "core/TLSystem.h"
#include "feature/NodeMapUtility.h"

#include <GenTL/GenTLExtensions.h>
#include <Orvan/GenApiCustom.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <zip.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>

using SpineTest::Capture;
using SpineTest::Message;
using SpineTest::Outcome;

namespace {

// A module that serves a description from disk and a register space from memory.
class DiskModule : public Orvan::TLBase {
public:
    explicit DiskModule(std::string url) : m_url(std::move(url)) {}
    int32_t GetPortURL(char* url, size_t* size) override {
        std::snprintf(url, *size, "%s", m_url.c_str());
        return GenTL::GC_ERR_SUCCESS;
    }
    int32_t ReadPort(uint64_t address, void* buffer, size_t* size) override {
        std::memcpy(buffer, registers + address, *size);
        return GenTL::GC_ERR_SUCCESS;
    }
    uint8_t registers[16] = {0, 0, 0, 0, 42, 0, 0, 0};

private:
    std::string m_url;
};

// A description whose one feature, Answer, reads 4 bytes at address 4 through portName.
std::string Description(const std::string& portName) {
    return R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Disk" VendorName="Orvan" StandardNameSpace="None"
    SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1"
    MinorVersion="0" SubMinorVersion="0" ProductGuid="6a3e8f00-0000-4000-8000-000000000011"
    VersionGuid="6a3e8f00-0000-4000-8000-000000000012"
    xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <IntReg Name="Answer"><Address>4</Address><Length>4</Length><AccessMode>RO</AccessMode>
    <pPort>)" +
           portName + R"(</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess>
  </IntReg>
  <Port Name=")" +
           portName + R"("/>
</RegisterDescription>
)";
}

std::string TempPath(const std::string& name) {
    return testing::TempDir() + "orvan_" + std::to_string(getpid()) + "_" + name;
}

std::string WritePlain(const std::string& name, const std::string& xml) {
    std::string path = TempPath(name);
    std::ofstream(path, std::ios::binary) << xml;
    return path;
}

std::string WriteZipped(const std::string& name, const std::string& member,
                        const std::string& xml) {
    std::string path = TempPath(name);
    std::remove(path.c_str());
    zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    zip_source_t* source = zip_source_buffer(archive, xml.data(), xml.size(), 0);
    zip_file_add(archive, member.c_str(), source, ZIP_FL_OVERWRITE);
    zip_close(archive);
    return path;
}

struct MapDeleter {
    void operator()(GenApi::INodeMap* map) const { Orvan::DestroyNodeMap(map); }
};
using MapPtr = std::unique_ptr<GenApi::INodeMap, MapDeleter>;

// The producer opened down to the first camera through the wrappers alone.
class TransportLayer : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(GenTL::GCInitLib(), GenTL::GC_ERR_SUCCESS);
        ASSERT_EQ(system.Open(), GenTL::GC_ERR_SUCCESS);
        ASSERT_EQ(system.OpenInterface("VirtualIF0", &interfaceHandle), GenTL::GC_ERR_SUCCESS);
        iface = std::make_unique<Orvan::TLInterface>(interfaceHandle);
        bool changed = false;
        iface->UpdateDeviceList(&changed, 100);
        char id[128] = {};
        size_t size = sizeof(id);
        ASSERT_EQ(iface->GetDeviceID(0, id, &size), GenTL::GC_ERR_SUCCESS);
        deviceId = id;
        void* handle = nullptr;
        ASSERT_EQ(iface->OpenDevice(id, GenTL::DEVICE_ACCESS_CONTROL, &handle),
                  GenTL::GC_ERR_SUCCESS);
        device = std::make_unique<Orvan::TLDevice>(handle);
    }
    void TearDown() override {
        OrvanTC_Reset();
        if (device)
            device->Close();
        if (iface)
            iface->Close();
        system.Close();
        GenTL::GCCloseLib();
    }

    Orvan::TLSystem system;
    void* interfaceHandle = nullptr;
    std::unique_ptr<Orvan::TLInterface> iface;
    std::string deviceId;
    std::unique_ptr<Orvan::TLDevice> device;
};

} // namespace

TEST_F(TransportLayer, DeletingAWrapperLeavesItsHandleOpen) {
    iface.reset();
    Orvan::TLInterface again(interfaceHandle);
    uint32_t devices = 0;
    EXPECT_EQ(again.GetNumDevices(&devices), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(devices, 1u);
    EXPECT_EQ(again.Close(), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(again.GetNumDevices(&devices), GenTL::GC_ERR_INVALID_HANDLE);
}

TEST_F(TransportLayer, ReadersCheckTheirArgumentsBeforeAnyCall) {
    Orvan::TLDataStream stream(reinterpret_cast<void*>(1));
    int buffer = 0;
    const char* id = deviceId.c_str();
    EXPECT_EQ(Message([&] {
                  Orvan::GetInfo<uint64_t>(static_cast<Orvan::TLDataStream*>(nullptr), &buffer,
                                           GenTL::BUFFER_INFO_SIZE);
              }),
              "InvalidArgumentException: DataStream is null (Buffer, GetInfo)");
    EXPECT_EQ(
        Message([&] { Orvan::GetInfo<bool>(&stream, nullptr, GenTL::BUFFER_INFO_IS_INCOMPLETE); }),
        "InvalidArgumentException: Buffer is null (Buffer, GetInfo)");
    EXPECT_EQ(Message([&] {
                  Orvan::GetInfo<uint32_t>(static_cast<Orvan::TLInterface*>(nullptr), id,
                                           GenTL::DEVICE_INFO_ORVAN_GEV_IP_ADDRESS);
              }),
              "InvalidArgumentException: Interface is null (System, GetInfo)");
    EXPECT_EQ(Message([&] {
                  Orvan::GetInfo<bool>(iface.get(), nullptr,
                                       GenTL::DEVICE_INFO_ORVAN_GEV_LLA_ENABLED);
              }),
              "InvalidArgumentException: pDevId is null (System, GetInfo)");
    EXPECT_EQ(Message([&] {
                  Orvan::GetInfo<uint64_t>(static_cast<Orvan::TLInterface*>(nullptr),
                                           GenTL::INTERFACE_INFO_ORVAN_GEV_IP_ADDRESS);
              }),
              "InvalidArgumentException: Interface is null (System, GetInfo)");
}

TEST_F(TransportLayer, ReadersReturnTypedValuesOrTranslateFailures) {
    const char* id = deviceId.c_str();
    EXPECT_EQ(Orvan::GetInfo<uint32_t>(iface.get(), id, GenTL::DEVICE_INFO_ORVAN_GEV_SUBNET_MASK),
              0xFFFF0000u);
    EXPECT_TRUE(Orvan::GetInfo<bool>(iface.get(), id, GenTL::DEVICE_INFO_ORVAN_GEV_LLA_ENABLED));
    EXPECT_EQ(Orvan::GetInfo<int64_t>(iface.get(), id, GenTL::DEVICE_INFO_ORVAN_GEV_MAC_ADDRESS) >>
                  24,
              0x024F56);
    EXPECT_EQ(Orvan::GetInfo<uint64_t>(iface.get(), GenTL::INTERFACE_INFO_ORVAN_GEV_IP_ADDRESS),
              0x7F000001u);
    EXPECT_EQ(Orvan::GetInfoString(iface.get(), id, GenTL::DEVICE_INFO_VENDOR), "Orvan");

    EXPECT_EQ(
        Message([&] { Orvan::GetInfoString(iface.get(), id, GenTL::DEVICE_INFO_ACCESS_STATUS); }),
        "LogicalErrorException: Incorrect datatype returned (string expected) (System, "
        "GetInfoString)");

    struct Row {
        const char* call;
        int32_t code;
        std::function<void()> read;
        const char* expected;
    };
    const Row rows[] = {
        {"IFGetDeviceInfo", GenTL::GC_ERR_NOT_AVAILABLE,
         [&] {
             Orvan::GetInfo<uint32_t>(iface.get(), id, GenTL::DEVICE_INFO_ORVAN_GEV_IP_ADDRESS);
         },
         "LogicalErrorException (GC_ERR_NOT_AVAILABLE): Unable to get buffer information (System, "
         "GetInfo; GenTL::IFGetDeviceInfo); injected"},
        {"IFGetInfo", GenTL::GC_ERR_INVALID_HANDLE,
         [&] { Orvan::GetInfo<int64_t>(iface.get(), GenTL::INTERFACE_INFO_ORVAN_GEV_MAC_ADDRESS); },
         "InvalidArgumentException (GC_ERR_INVALID_HANDLE): Unable to get buffer information "
         "(System, GetInfo; GenTL::IFGetInfo); injected"},
        {"IFGetDeviceInfo", GenTL::GC_ERR_BUFFER_TOO_SMALL,
         [&] { Orvan::GetInfoString(iface.get(), id, GenTL::DEVICE_INFO_MODEL); },
         "InvalidArgumentException (GC_ERR_BUFFER_TOO_SMALL): Unable to get device information "
         "(System, GetInfoString; GenTL::IFGetDeviceInfo); injected"},
    };
    for (const Row& row : rows) {
        OrvanTC_FailCall(row.call, 1, row.code, "injected");
        EXPECT_EQ(Message(row.read), row.expected);
    }
}

TEST_F(TransportLayer, BufferReadersWorkOnAnnouncedBuffers) {
    char streamId[128] = {};
    size_t size = sizeof(streamId);
    ASSERT_EQ(device->GetDataStreamID(0, streamId, &size), GenTL::GC_ERR_SUCCESS);
    void* streamHandle = nullptr;
    ASSERT_EQ(device->OpenDataStream(streamId, &streamHandle), GenTL::GC_ERR_SUCCESS);
    Orvan::TLDataStream stream(streamHandle);
    void* buffer = nullptr;
    ASSERT_EQ(stream.AllocAndAnnounceBuffer(4096, nullptr, &buffer), GenTL::GC_ERR_SUCCESS);

    EXPECT_EQ(Orvan::GetInfo<uint64_t>(&stream, buffer, GenTL::BUFFER_INFO_SIZE), 4096u);
    EXPECT_NE(Orvan::GetInfo<uint8_t*>(&stream, buffer, GenTL::BUFFER_INFO_BASE), nullptr);
    OrvanTC_FailCall("DSGetBufferInfo", 1, GenTL::GC_ERR_INVALID_BUFFER, "gone");
    EXPECT_EQ(Message([&] { Orvan::GetInfo<uint64_t>(&stream, buffer, GenTL::BUFFER_INFO_SIZE); }),
              "InvalidArgumentException (GC_ERR_INVALID_BUFFER): Unable to get buffer "
              "information (Buffer, GetInfo; GenTL::DSGetBufferInfo); gone");

    EXPECT_EQ(stream.RevokeBuffer(buffer, nullptr, nullptr), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(stream.Close(), GenTL::GC_ERR_SUCCESS);
}

TEST_F(TransportLayer, EachModuleMapIsConnectedUnderItsKindsPortName) {
    struct Row {
        Orvan::TLBase* module;
        const char* feature;
    };
    // A feature reads only when the map's port node, named after the module kind, is connected.
    const Row rows[] = {
        {&system, "TLID"}, {iface.get(), "InterfaceID"}, {device.get(), "DeviceID"}};
    for (const Row& row : rows) {
        Orvan::Port port(row.module);
        MapPtr map(Orvan::InitNodeMap(row.module, port));
        ASSERT_NE(map, nullptr) << row.feature;
        EXPECT_FALSE(Orvan::GetNodeValue<GenICam::gcstring>(map.get(), row.feature).empty());
    }
    Orvan::Port port(iface.get());
    MapPtr map(Orvan::InitNodeMap(iface.get(), port));
    EXPECT_EQ(Orvan::GetNodeValue<int64_t>(map.get(), "GevInterfaceSubnetMask"), 0xFF000000);
}

TEST_F(TransportLayer, PortFailuresCarryTheProducerTextTwice) {
    Orvan::Port port(&system);
    char bytes[4];
    OrvanTC_FailCall("GCReadPort", 1, GenTL::GC_ERR_IO, "link down");
    Outcome read = Capture([&] { port.Read(bytes, 0, 4); });
    EXPECT_EQ(read.className, "RuntimeException");
    EXPECT_EQ(read.message, "RuntimeException (GC_ERR_IO): Unable to read port: link down (Port, "
                            "Read; GenTL::GCReadPort); link down");
    OrvanTC_FailCall("GCWritePort", 1, GenTL::GC_ERR_ACCESS_DENIED, "read only");
    Outcome write = Capture([&] { port.Write(bytes, 0, 4); });
    EXPECT_EQ(write.message, "AccessException (GC_ERR_ACCESS_DENIED): Unable to write port: read "
                             "only (Port, Write; GenTL::GCWritePort); read only");
    Orvan::Port unbound;
    EXPECT_EQ(Capture([&] { unbound.Read(bytes, 0, 4); }).message,
              "InvalidArgumentException: Module is null (Port, Read)");
    EXPECT_EQ(port.GetAccessMode(), GenApi::RW);
}

TEST_F(TransportLayer, CameraDescriptionIsFoundAndReadThroughTheRemotePort) {
    Orvan::TLBase remote(Orvan::GetRemotePort(device.get()));
    Orvan::XmlUrlInfo info = Orvan::GetUrlInfo(&remote);
    EXPECT_EQ(info.url.compare(0, 6, "local:"), 0) << info.url;
    EXPECT_EQ(info.schemaVersionMajor, 1);
    EXPECT_EQ(info.schemaVersionMinor, 1);
    EXPECT_EQ(info.fileVersionMajor, 1);
    char* data = nullptr;
    uint64_t size = 0;
    Orvan::ReadXML(&remote, info, &data, size);
    std::unique_ptr<char[]> owned(data);
    ASSERT_GT(size, 5u);
    EXPECT_EQ(std::string(data, 5), "<?xml");

    OrvanTC_FailCall("GCReadPort", 1, GenTL::GC_ERR_TIMEOUT, "camera silent");
    EXPECT_EQ(Capture([&] { Orvan::ReadXML(&remote, info, &data, size); }).message,
              "TimeoutException (GC_ERR_TIMEOUT): Unable to read port (Device, ReadXML; "
              "GenTL::GCReadPort); camera silent");
}

TEST_F(TransportLayer, CameraDescriptionQueriesTranslateEachItem) {
    Orvan::TLBase remote(Orvan::GetRemotePort(device.get()));
    struct Row {
        const char* call;
        uint32_t nth;
        const char* expected;
    };
    // The URL text takes two calls (its size, then its text); each version one.
    const Row rows[] = {
        {"GCGetNumPortURLs", 1, "Unable to get port (Device, GetUrlInfo; GenTL::GCGetPortURL)"},
        {"GCGetPortURLInfo", 2,
         "Unable to get port URL (Device, GetUrlInfo; GenTL::GCGetPortURLInfo, URL_INFO_URL)"},
        {"GCGetPortURLInfo", 3,
         "Unable to get port URL schema version major (Device, GetUrlInfo; "
         "GenTL::GCGetPortURLInfo, URL_INFO_SCHEMA_VER_MAJOR)"},
        {"GCGetPortURLInfo", 7,
         "Unable to get port URL file version subminor (Device, GetUrlInfo; "
         "GenTL::GCGetPortURLInfo, URL_INFO_FILE_VER_SUBMINOR)"},
    };
    for (const Row& row : rows) {
        OrvanTC_FailCall(row.call, row.nth, GenTL::GC_ERR_NOT_IMPLEMENTED, "no");
        EXPECT_EQ(Capture([&] { Orvan::GetUrlInfo(&remote); }).message,
                  std::string("LogicalErrorException (GC_ERR_NOT_IMPLEMENTED): ") + row.expected +
                      "; no");
    }
    OrvanTC_FailCall("DevGetPort", 1, GenTL::GC_ERR_INVALID_HANDLE, "closed");
    EXPECT_EQ(Capture([&] { Orvan::GetRemotePort(device.get()); }).message,
              "InvalidArgumentException (GC_ERR_INVALID_HANDLE): Unable to get remote device "
              "(Device, GetRemotePort; GenTL::DevGetPort); closed");
}

TEST(DiskDescriptions, PlainZippedAndMissingFilesOnDisk) {
    struct Row {
        std::string path;
        const char* portName;
    };
    const Row rows[] = {
        {WritePlain("camera.xml", Description("Port")), "Port"},
        {WritePlain("GenTLDevice_disk.xml", Description("DevicePort")), "DevicePort"},
        {WriteZipped("GenTLDataStream_disk.zip", "stream.xml", Description("StreamPort")),
         "StreamPort"},
    };
    for (const Row& row : rows) {
        DiskModule module("file:" + row.path + "?SchemaVersion=1.1.0");
        Orvan::Port port(&module);
        MapPtr map(Orvan::InitNodeMap(&module, port));
        ASSERT_NE(map, nullptr) << row.path;
        EXPECT_EQ(Orvan::GetNodeValue<int64_t>(map.get(), "Answer"), 42) << row.portName;
    }
    DiskModule missing("file:" + TempPath("nowhere.xml"));
    Orvan::Port port(&missing);
    EXPECT_EQ(Orvan::InitNodeMap(&missing, port), nullptr);
}

TEST(DiskDescriptions, ReadXmlUnpacksZippedFilesAndRefusesTheWeb) {
    const std::string xml = Description("Device");
    DiskModule module("unused");
    struct Row {
        std::string url;
        std::string refusal; // empty: the description is read
    };
    const Row rows[] = {
        {"file:" + WritePlain("read.xml", xml), ""},
        {"File://" + WriteZipped("read.zip", "camera.xml", xml) + "?SchemaVersion=1.1.0", ""},
        {"http://example.com/camera.xml",
         "LogicalErrorException: Descriptions on the web are not supported: "
         "http://example.com/camera.xml (Device, ReadXML)"},
        {"file:" + TempPath("absent.xml"), "RuntimeException: Unable to open description file " +
                                               TempPath("absent.xml") + " (Device, ReadXML)"},
        {"local:camera.xml;zz;10",
         "InvalidArgumentException: Malformed description URL: local:camera.xml;zz;10 (Device, "
         "ReadXML)"},
    };
    for (const Row& row : rows) {
        Orvan::XmlUrlInfo info;
        info.url = row.url;
        char* data = nullptr;
        uint64_t size = 0;
        Outcome outcome = Capture([&] { Orvan::ReadXML(&module, info, &data, size); });
        std::unique_ptr<char[]> owned(data);
        if (!row.refusal.empty())
            EXPECT_EQ(outcome.message, row.refusal);
        else {
            ASSERT_NE(data, nullptr) << row.url << ": " << outcome.message;
            EXPECT_EQ(std::string(data, size), xml) << row.url;
        }
    }
    Orvan::XmlUrlInfo info;
    char* data = nullptr;
    uint64_t size = 0;
    EXPECT_EQ(Capture([&] { Orvan::ReadXML(nullptr, info, &data, size); }).message,
              "InvalidArgumentException: Module is null (Device, ReadXML)");
}
