// The stream-selection rules, on small descriptions that hold only the transport features.
#include "device/StreamSelection.h"
#include "SpineTestSupport.h"

#include <GenICam.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

using SpineTest::Capture;

namespace {

std::string Describe(const std::string& nodes) {
    return "<?xml version=\"1.0\"?>\n<RegisterDescription ModelName=\"Test\" "
           "VendorName=\"Orvan\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" "
           "SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" "
           "SubMinorVersion=\"0\" ProductGuid=\"0\" VersionGuid=\"0\" "
           "StandardNameSpace=\"None\">\n" +
           nodes + "\n</RegisterDescription>\n";
}

std::string Value(const std::string& name, int64_t value) {
    return "<Integer Name=\"" + name + "\"><Value>" + std::to_string(value) + "</Value></Integer>";
}

std::string Boolean(const std::string& name, bool value) {
    return Value(name + "Value", value) + "<Boolean Name=\"" + name + "\"><pValue>" + name +
           "Value</pValue></Boolean>";
}

std::string Protocol(int64_t value) {
    return Value("ProtocolValue", value) + "<Enumeration Name=\"TransportStreamProtocol\">"
                                           "<EnumEntry Name=\"UDP\"><Value>0</Value></EnumEntry>"
                                           "<EnumEntry Name=\"TCP\"><Value>1</Value></EnumEntry>"
                                           "<EnumEntry Name=\"RDMA\"><Value>2</Value></EnumEntry>"
                                           "<EnumEntry Name=\"SCTP\"><Value>3</Value></EnumEntry>"
                                           "<pValue>ProtocolValue</pValue></Enumeration>";
}

std::string EventFormat(const char* entry) {
    return Value("FormatValue", 0) + "<Enumeration Name=\"EventFormat\"><EnumEntry Name=\"" +
           entry + "\"><Value>0</Value></EnumEntry><pValue>FormatValue</pValue></Enumeration>";
}

struct Map {
    explicit Map(const std::string& nodes) : ref("Device") {
        ref._LoadXMLFromString(Describe(nodes).c_str());
    }
    GenApi::INodeMap* Get() { return ref._Ptr; }
    GenApi::CNodeMapRef ref;
};

uint32_t Select(const std::string& device, size_t streams, const std::string& tl = "") {
    Map deviceMap(device);
    if (tl.empty())
        return Orvan::GetStreamNumber(deviceMap.Get(), nullptr, streams);
    Map tlMap(tl);
    return Orvan::GetStreamNumber(deviceMap.Get(), tlMap.Get(), streams);
}

std::string Refusal(const std::string& device, size_t streams, const std::string& tl = "") {
    return Capture([&] { Select(device, streams, tl); }).message;
}

} // namespace

TEST(StreamSelection, TheTcpSwitchAndTheProtocolChooseAmongTheImageStreams) {
    EXPECT_EQ(Select(Value("Width", 1), 3), 0u);
    EXPECT_EQ(Select(Boolean("TCPEnable", true), 2), 1u);
    EXPECT_EQ(Select(Boolean("TCPEnable", true), 1), 0u);
    EXPECT_EQ(Select(Boolean("TCPEnable", false) + Protocol(2), 3), 2u);
    EXPECT_EQ(Select(Boolean("TCPEnable", false) + Protocol(0), 1), 0u);
    EXPECT_EQ(Select(Boolean("TCPEnable", true) + Protocol(0) + Value("TLParamsLocked", 0), 1), 0u);
}

TEST(StreamSelection, TheTcpSwitchRewritesAnUnlockedProtocol) {
    for (int64_t locked : {0, 1}) {
        Map device(Boolean("TCPEnable", true) + Protocol(0) + Value("TLParamsLocked", locked));
        EXPECT_EQ(Orvan::GetStreamNumber(device.Get(), nullptr, 2), 1u);
        GenApi::CEnumerationPtr protocol = device.ref._GetNode("TransportStreamProtocol");
        EXPECT_EQ(protocol->GetCurrentEntry()->GetSymbolic(), locked ? "UDP" : "TCP");
    }
}

TEST(StreamSelection, ProtocolsWithoutTheirStreamAreRefused) {
    EXPECT_EQ(Refusal(Boolean("TCPEnable", false) + Protocol(1), 1),
              "RuntimeException: Unsupported Transport Stream Protocol: TCP (Device, "
              "GetStreamNumber)");
    EXPECT_EQ(Refusal(Boolean("TCPEnable", false) + Protocol(2), 2),
              "RuntimeException: Unsupported Transport Stream Protocol: RDMA (Device, "
              "GetStreamNumber)");
    EXPECT_EQ(Refusal(Boolean("TCPEnable", false) + Protocol(3), 5),
              "RuntimeException: Unsupported Transport Stream Protocol: SCTP (Device, "
              "GetStreamNumber)");
    EXPECT_EQ(Refusal(Boolean("TCPEnable", true) + Protocol(0), 2),
              "LogicalErrorException: NULL pointer dereferenced (Device, GetStreamNumber)");
}

TEST(StreamSelection, EventSensorsComeFirstThenMultipart) {
    const std::string multipart = Boolean("StreamMultipartEnable", true);
    EXPECT_EQ(Select(EventFormat("EVT3_0") + Boolean("TCPEnable", true), 4, multipart), 3u);
    EXPECT_EQ(Refusal(EventFormat("EVT3_0"), 3),
              "RuntimeException: Unsupported Event Format type: EVT3_0 (Device, GetStreamNumber)");
    EXPECT_EQ(Refusal(EventFormat("EVT2_1"), 4),
              "RuntimeException: Unsupported Event Format type: EVT2_1 (Device, GetStreamNumber)");
    EXPECT_EQ(Select(Boolean("TCPEnable", true), 5, multipart), 4u);
    EXPECT_EQ(Refusal(Value("Width", 1), 4, multipart),
              "RuntimeException: Unsupported Camera Detected (Device, GetStreamNumber)");
    EXPECT_EQ(Select(Value("Width", 1), 5, Boolean("StreamMultipartEnable", false)), 0u);
}
