#include "CameraTestSupport.h"

#include "RemoteDevice.h"
#include "virtual/CameraFeatures.h"
#include "virtual/DescriptionArchive.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <set>
#include <sstream>

namespace {

using namespace CameraTest;
using namespace Orvan::Producer;
using namespace GenTL;

class EveryModel : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        camera = MakeCamera(GetParam());
        ASSERT_TRUE(doc.load_string(camera->DescriptionXml().c_str()));
        root = doc.document_element();
        for (pugi::xml_node node : root.children())
            if (node.attribute("Name"))
                nodes[node.attribute("Name").value()] = node;
    }

    std::unique_ptr<VirtualCamera> camera;
    pugi::xml_document doc;
    pugi::xml_node root;
    std::map<std::string, pugi::xml_node> nodes;
};

TEST_P(EveryModel, IsASchemaOneOneDescriptionWithUniqueNames) {
    EXPECT_STREQ(root.name(), "RegisterDescription");
    EXPECT_STREQ(root.attribute("xmlns").value(), "http://www.genicam.org/GenApi/Version_1_1");
    EXPECT_EQ(root.attribute("SchemaMajorVersion").as_int(), 1);
    EXPECT_EQ(root.attribute("SchemaMinorVersion").as_int(), 1);
    size_t named = 0;
    for (pugi::xml_node node : root.children())
        named += node.attribute("Name") ? 1 : 0;
    EXPECT_EQ(named, nodes.size()) << "a node name is used twice";
    ASSERT_TRUE(nodes.count("Root"));
    ASSERT_TRUE(nodes.count("Device"));
}

TEST_P(EveryModel, RegistersSitWhereTheMapHasThem) {
    const auto layout = camera->RegisterLayout();
    size_t deviceRegisters = 0;
    for (pugi::xml_node node : root.children()) {
        const std::string kind = node.name();
        if (kind != "IntReg" && kind != "FloatReg" && kind != "StringReg")
            continue;
        if (std::string(node.child_value("pPort")) != "Device")
            continue;
        ++deviceRegisters;
        const uint64_t address = std::stoull(node.child_value("Address"), nullptr, 0);
        const auto found = layout.find(address);
        ASSERT_NE(found, layout.end()) << node.attribute("Name").value();
        EXPECT_EQ(found->second, std::stoul(node.child_value("Length")))
            << node.attribute("Name").value();
    }
    // Everything but the description file and its two URL registers is described.
    EXPECT_EQ(deviceRegisters + 3, layout.size());
}

TEST_P(EveryModel, ChunkAndEventPortsCarryTheirIds) {
    for (int c = 1; c < int(Chunk::Count); ++c) {
        const ChunkInfo& info = ChunkInfoOf(Chunk(c));
        const std::string port = std::string("Chunk") + info.name + "Port";
        ASSERT_TRUE(nodes.count(port)) << port;
        EXPECT_EQ(std::stoul(nodes[port].child_value("ChunkID"), nullptr, 16), info.id);
        // The value is the chunk's whole data.
        const pugi::xml_node reg = nodes[std::string("Chunk") + info.name + "_Reg"];
        EXPECT_STREQ(reg.child_value("pPort"), port.c_str());
        EXPECT_EQ(std::stoul(reg.child_value("Address"), nullptr, 0), 0u) << info.name;
        EXPECT_EQ(std::stoul(reg.child_value("Length")), info.length) << info.name;
    }
    for (const char* event : {"ExposureEnd", "FrameStart"}) {
        const std::string port = std::string("Event") + event + "Port";
        ASSERT_TRUE(nodes.count(port)) << port;
        const auto id = std::stoul(nodes[port].child_value("EventID"), nullptr, 16);
        EXPECT_EQ(int64_t(id),
                  std::stoll(nodes[std::string("Event") + event].child_value("Value")));
        EXPECT_EQ(
            std::stoul(nodes[std::string("Event") + event + "Timestamp_Reg"].child_value("Address"),
                       nullptr, 0),
            kEventTimestampOffset);
    }
}

TEST_P(EveryModel, OffersTheStandardFeatures) {
    std::istringstream required(
        "DeviceVendorName DeviceModelName DeviceSerialNumber DeviceFirmwareVersion "
        "DeviceUserID DeviceScanType DeviceLinkSpeed DeviceMaxThroughput "
        "DeviceLinkThroughputLimit DeviceTemperature DeviceReset TLParamsLocked SensorWidth "
        "SensorHeight WidthMax HeightMax Width Height OffsetX OffsetY ReverseX ReverseY "
        "BinningHorizontal BinningVertical PixelFormat TestPattern PayloadSize AcquisitionMode "
        "AcquisitionStart AcquisitionStop AcquisitionFrameCount AcquisitionFrameRateEnable "
        "AcquisitionFrameRate ExposureTime ExposureAuto Gain BlackLevel Gamma TriggerSelector "
        "TriggerMode TriggerSource TriggerActivation TriggerSoftware "
        "DeviceStreamChannelPacketSize PacketResendWindowFrameCount GevCurrentIPAddress "
        "GevCurrentSubnetMask GevCurrentDefaultGateway GevMACAddress ChunkModeActive "
        "ChunkSelector ChunkEnable ChunkCRC ChunkWidth ChunkHeight ChunkOffsetX ChunkOffsetY "
        "ChunkPixelFormat ChunkExposureTime ChunkGain ChunkTimestamp ChunkFrameID "
        "EventSelector EventNotification EventExposureEnd EventExposureEndTimestamp "
        "EventExposureEndFrameID EventFrameStart EventFrameStartTimestamp "
        "EventFrameStartFrameID UserSetSelector UserSetLoad UserSetSave UserSetDefault");
    for (std::string feature; required >> feature;)
        EXPECT_TRUE(nodes.count(feature)) << feature;
    std::vector<std::string> entries;
    for (pugi::xml_node entry : nodes["ChunkSelector"].children("EnumEntry"))
        entries.push_back(entry.attribute("Name").value());
    EXPECT_EQ(entries, (std::vector<std::string>{"Image", "CRC", "Width", "Height", "OffsetX",
                                                 "OffsetY", "PixelFormat", "ExposureTime", "Gain",
                                                 "Timestamp", "FrameID"}));
    const bool multiStream = GetParam() == "MultiStream";
    EXPECT_EQ(nodes.count("TCPEnable") == 1, multiStream);
    EXPECT_EQ(nodes.count("TransportStreamProtocol") == 1, multiStream);
    const bool eventSensor = GetParam() == "EventSensor";
    for (const char* feature : {"EventFormat", "ErcEnable", "ErcRateLimit"})
        EXPECT_EQ(nodes.count(feature) == 1, eventSensor) << feature;
}

TEST_P(EveryModel, DescriptionIsServedAtItsUrl) {
    const std::string url = camera->DescriptionUrl();
    ASSERT_EQ(url.rfind("local:", 0), 0u);
    const size_t first = url.find(';'), second = url.find(';', first + 1);
    ASSERT_NE(second, std::string::npos);
    const std::string file = url.substr(6, first - 6);
    const uint64_t address = std::stoull(url.substr(first + 1, second - first - 1), nullptr, 16);
    size_t length = std::stoull(url.substr(second + 1), nullptr, 16);
    std::vector<uint8_t> served(length);
    // Read in pieces, as a consumer with a small transfer size would.
    for (size_t done = 0; done < length;) {
        size_t piece = std::min<size_t>(536, length - done);
        ASSERT_EQ(camera->ReadPort(address + done, served.data() + done, &piece), GC_ERR_SUCCESS);
        done += piece;
    }
    EXPECT_EQ(served, camera->DescriptionFile());
    const bool zipped = file.size() > 4 && file.substr(file.size() - 4) == ".zip";
    EXPECT_TRUE(zipped || file.substr(file.size() - 4) == ".xml") << file;
    const std::string xml =
        zipped ? UnzipFirstFile(served) : std::string(served.begin(), served.end());
    EXPECT_EQ(xml, camera->DescriptionXml());

    char firstUrl[513] = {};
    size_t size = 512;
    ASSERT_EQ(camera->ReadPort(0x200, firstUrl, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(url, firstUrl);
}

INSTANTIATE_TEST_SUITE_P(VirtualCameras, EveryModel,
                         ::testing::ValuesIn(Orvan::Producer::VirtualCameraModels()));

TEST(CameraModels, AtLeastOneServesAZippedDescription) {
    size_t zipped = 0;
    for (const std::string& model : VirtualCameraModels()) {
        auto camera = CreateVirtualCamera(model, 0);
        ASSERT_NE(camera, nullptr) << model;
        zipped += camera->DescriptionUrl().find(".zip;") != std::string::npos;
    }
    EXPECT_GE(zipped, 1u);
    EXPECT_EQ(CreateVirtualCamera("NoSuchModel", 0), nullptr);
}

TEST(CameraModels, StreamsFollowTheTransportIndices) {
    struct Case {
        const char* model;
        std::vector<std::string> ids;
        const char* scanType;
    } cases[] = {
        {"Mono", {"UDP"}, "Areascan"},
        {"LineScan", {"UDP", "TCP", "RDMA", "EventData", "Multipart"}, "Linescan"},
        {"MultiStream", {"UDP", "TCP", "RDMA"}, "Areascan"},
        {"EventSensor", {"UDP", "TCP", "RDMA", "EventData"}, "Areascan"},
    };
    for (const Case& c : cases) {
        auto camera = MakeCamera(c.model);
        std::vector<std::string> ids;
        for (uint32_t i = 0; i < camera->StreamCount(); ++i)
            ids.push_back(camera->StreamId(i));
        EXPECT_EQ(ids, c.ids) << c.model;
        EXPECT_EQ(Features(*camera).Enum("DeviceScanType"), c.scanType) << c.model;
    }
}

} // namespace
