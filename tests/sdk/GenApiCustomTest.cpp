#include "SpineTestSupport.h"

#include <Orvan/GenApiCustom.h>

#include <GenICam.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

using GenICam::gcstring;
using Orvan::ExecuteNode;
using Orvan::GetNodeInc;
using Orvan::GetNodeMax;
using Orvan::GetNodeMin;
using Orvan::GetNodeValue;
using Orvan::SetNodeValue;
using SpineTest::Capture;
using SpineTest::Outcome;

namespace {

// Every kind of node the helpers dispatch on, and one node for each access-mode check.
const char kDescription[] = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="HelperTest" VendorName="Orvan" StandardNameSpace="None"
    SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0"
    MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
    ProductGuid="6a3e8f00-0000-4000-8000-000000000001"
    VersionGuid="6a3e8f00-0000-4000-8000-000000000002"
    xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Category Name="Root" NameSpace="Standard">
    <pFeature>Width</pFeature>
  </Category>
  <Integer Name="Width"><Value>640</Value><Min>16</Min><Max>4096</Max><Inc>16</Inc></Integer>
  <Float Name="Gain"><Value>1.5</Value><Min>-2.5</Min><Max>24.75</Max></Float>
  <Float Name="Exposure"><Value>100</Value><Min>10</Min><Max>1000</Max><Inc>0.5</Inc></Float>
  <Boolean Name="ReverseX"><pValue>ReverseXValue</pValue><OnValue>1</OnValue><OffValue>0</OffValue></Boolean>
  <Integer Name="ReverseXValue"><Value>0</Value></Integer>
  <StringReg Name="UserName"><Address>0x100</Address><Length>16</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></StringReg>
  <Enumeration Name="PixelFormat">
    <EnumEntry Name="Mono8"><Value>1</Value></EnumEntry>
    <EnumEntry Name="Mono12"><pIsAvailable>Zero</pIsAvailable><Value>2</Value></EnumEntry>
    <EnumEntry Name="RGB8"><Value>3</Value></EnumEntry>
    <pValue>PixelFormatValue</pValue>
  </Enumeration>
  <Integer Name="PixelFormatValue"><Value>1</Value></Integer>
  <Command Name="Start"><pValue>StartValue</pValue><CommandValue>1</CommandValue></Command>
  <Integer Name="StartValue"><Value>0</Value></Integer>
  <Register Name="Lut"><Address>0x200</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>
  <Integer Name="Absent"><pIsImplemented>Zero</pIsImplemented><Value>1</Value></Integer>
  <Integer Name="Locked"><pIsAvailable>Zero</pIsAvailable><Value>1</Value></Integer>
  <Integer Name="ReadOnly"><ImposedAccessMode>RO</ImposedAccessMode><Value>7</Value></Integer>
  <Integer Name="WriteOnly"><ImposedAccessMode>WO</ImposedAccessMode><Value>7</Value></Integer>
  <Integer Name="Zero"><Value>0</Value></Integer>
  <Port Name="Device"/>
</RegisterDescription>
)";

class MemoryPort : public GenApi::IPort {
public:
    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
    void Read(void* buffer, int64_t address, int64_t length) override {
        std::memcpy(buffer, &memory[static_cast<size_t>(address)], static_cast<size_t>(length));
    }
    void Write(const void* buffer, int64_t address, int64_t length) override {
        std::memcpy(&memory[static_cast<size_t>(address)], buffer, static_cast<size_t>(length));
    }
    std::vector<uint8_t> memory = std::vector<uint8_t>(0x400, 0);
};

// The message a helper composes, which also names the class it throws.
std::string Expected(const std::string& className, const std::string& text,
                     const std::string& function) {
    return className + ": " + text + " (GenApiCustom, " + function + ")";
}

class GenApiCustomTest : public ::testing::Test {
protected:
    void SetUp() override {
        GenApi::CNodeMapFactory factory(GenApi::ContentType_Xml, kDescription,
                                        sizeof(kDescription) - 1);
        map = factory.CreateNodeMap();
        ASSERT_TRUE(map->Connect(&port, "Device"));
    }
    void TearDown() override { dynamic_cast<GenApi::IDestroy*>(map)->Destroy(); }

    void ExpectThrows(const std::function<void()>& call, const std::string& className,
                      const std::string& text, const std::string& function) {
        Outcome outcome = Capture(call);
        EXPECT_EQ(outcome.className, className) << outcome.message;
        EXPECT_EQ(outcome.message, Expected(className, text, function));
    }

    MemoryPort port;
    GenApi::INodeMap* map = nullptr;
};

struct Helper {
    const char* function;
    bool reads;
    std::function<void(GenApi::INodeMap*, const gcstring&)> call;
};

std::vector<Helper> AllHelpers() {
    return {
        {"GetNodeValue", true,
         [](GenApi::INodeMap* m, const gcstring& n) { GetNodeValue<int64_t>(m, n); }},
        {"GetNodeValue", true,
         [](GenApi::INodeMap* m, const gcstring& n) {
             int64_t length = 0;
             GetNodeValue(m, n, nullptr, length);
         }},
        {"SetNodeValue", false,
         [](GenApi::INodeMap* m, const gcstring& n) { SetNodeValue<int64_t>(m, n, 1); }},
        {"SetNodeValue", false,
         [](GenApi::INodeMap* m, const gcstring& n) {
             int64_t length = 0;
             SetNodeValue(m, n, nullptr, length);
         }},
        {"ExecuteNode", false, [](GenApi::INodeMap* m, const gcstring& n) { ExecuteNode(m, n); }},
        {"GetNodeMin", true,
         [](GenApi::INodeMap* m, const gcstring& n) { GetNodeMin<double>(m, n); }},
        {"GetNodeMax", true,
         [](GenApi::INodeMap* m, const gcstring& n) { GetNodeMax<int64_t>(m, n); }},
        {"GetNodeInc", true,
         [](GenApi::INodeMap* m, const gcstring& n) { GetNodeInc<int64_t>(m, n); }},
    };
}

} // namespace

TEST_F(GenApiCustomTest, EveryHelperChecksMapNameAndAccessInOrder) {
    for (const Helper& helper : AllHelpers()) {
        SCOPED_TRACE(helper.function);
        ExpectThrows([&] { helper.call(nullptr, ""); }, "InvalidArgumentException",
                     "Node map is null", helper.function);
        ExpectThrows([&] { helper.call(map, ""); }, "InvalidArgumentException", "Node name invalid",
                     helper.function);
        ExpectThrows([&] { helper.call(map, "Nowhere"); }, "RuntimeException",
                     "Node Nowhere not implemented", helper.function);
        ExpectThrows([&] { helper.call(map, "Absent"); }, "RuntimeException",
                     "Node Absent not implemented", helper.function);
        ExpectThrows([&] { helper.call(map, "Locked"); }, "RuntimeException",
                     "Node Locked not available", helper.function);
        if (helper.reads)
            ExpectThrows([&] { helper.call(map, "WriteOnly"); }, "RuntimeException",
                         "Node WriteOnly not readable", helper.function);
        else
            ExpectThrows([&] { helper.call(map, "ReadOnly"); }, "RuntimeException",
                         "Node ReadOnly not writable", helper.function);
    }
}

TEST_F(GenApiCustomTest, ValuesAreReadOnlyInTheNodesOwnType) {
    EXPECT_EQ(GetNodeValue<int64_t>(map, "Width"), 640);
    EXPECT_DOUBLE_EQ(GetNodeValue<double>(map, "Gain"), 1.5);
    EXPECT_FALSE(GetNodeValue<bool>(map, "ReverseX"));
    EXPECT_EQ(GetNodeValue<gcstring>(map, "PixelFormat"), "Mono8");
    std::memcpy(&port.memory[0x100], "cam-7", 6);
    EXPECT_EQ(GetNodeValue<gcstring>(map, "UserName"), "cam-7");

    struct Row {
        std::function<void()> call;
        const char* node;
        const char* nodeType;
        const char* valueType;
    };
    const Row mismatches[] = {
        {[&] { GetNodeValue<double>(map, "Width"); }, "Width", "GenApi::IInteger", "int64_t"},
        {[&] { GetNodeValue<gcstring>(map, "Width"); }, "Width", "GenApi::IInteger", "int64_t"},
        {[&] { GetNodeValue<int64_t>(map, "Gain"); }, "Gain", "GenApi::IFloat", "double"},
        {[&] { GetNodeValue<int64_t>(map, "ReverseX"); }, "ReverseX", "GenApi::IBoolean", "bool"},
        {[&] { GetNodeValue<bool>(map, "UserName"); }, "UserName", "GenApi::IString",
         "GenICam::gcstring"},
        {[&] { GetNodeValue<double>(map, "PixelFormat"); }, "PixelFormat", "GenApi::IEnumeration",
         "GenICam::gcstring"},
    };
    for (const Row& row : mismatches)
        ExpectThrows(row.call, "InvalidArgumentException",
                     std::string("Node ") + row.node + " of type " + row.nodeType +
                         " must return type " + row.valueType,
                     "GetNodeValue");

    // An enumeration read as an integer fails in the value carrier, not in the type check.
    EXPECT_EQ(Capture([&] { GetNodeValue<int64_t>(map, "PixelFormat"); }).message,
              "boost::bad_any_cast: failed conversion using boost::any_cast");

    ExpectThrows([&] { GetNodeValue<int64_t>(map, "Lut"); }, "LogicalErrorException",
                 "Node Lut unsupported node type", "GetNodeValue");
}

TEST_F(GenApiCustomTest, ValuesAreWrittenOnlyInTheNodesOwnType) {
    SetNodeValue<int64_t>(map, "Width", 1024);
    SetNodeValue<double>(map, "Gain", 3.25);
    SetNodeValue<bool>(map, "ReverseX", true);
    SetNodeValue<gcstring>(map, "UserName", "left");
    SetNodeValue<gcstring>(map, "PixelFormat", "RGB8");
    EXPECT_EQ(GetNodeValue<int64_t>(map, "Width"), 1024);
    EXPECT_DOUBLE_EQ(GetNodeValue<double>(map, "Gain"), 3.25);
    EXPECT_TRUE(GetNodeValue<bool>(map, "ReverseX"));
    EXPECT_EQ(GetNodeValue<gcstring>(map, "UserName"), "left");
    EXPECT_EQ(GetNodeValue<int64_t>(map, "PixelFormatValue"), 3);

    ExpectThrows([&] { SetNodeValue<double>(map, "Width", 2.0); }, "InvalidArgumentException",
                 "Node Width of type GenApi::IInteger must set type int64_t", "SetNodeValue");
    ExpectThrows([&] { SetNodeValue<int64_t>(map, "PixelFormat", 1); }, "InvalidArgumentException",
                 "Node PixelFormat of type GenApi::IEnumeration must set type GenICam::gcstring",
                 "SetNodeValue");
    ExpectThrows([&] { SetNodeValue<bool>(map, "Start", true); }, "LogicalErrorException",
                 "Node Start unsupported node type", "SetNodeValue");
    // The unknown entry is refused before anything is written.
    ExpectThrows(
        [&] { SetNodeValue<gcstring>(map, "PixelFormat", "Mono16"); }, "LogicalErrorException",
        "'Mono16' is invalid EnumEntry. PixelFormat valid EnumEntries are:\nMono8\nMono12\n"
        "RGB8\n",
        "_throwLogicExceptionIfNotValidEnumEntry");
    EXPECT_EQ(GetNodeValue<int64_t>(map, "PixelFormatValue"), 3);
}

TEST_F(GenApiCustomTest, EntryCheckAcceptsEntriesThatAreNotAvailable) {
    GenApi::CEnumerationPtr pixelFormat = map->GetNode("PixelFormat");
    EXPECT_NO_THROW(Orvan::_throwLogicExceptionIfNotValidEnumEntry(pixelFormat, "Mono12"));
    EXPECT_THROW(Orvan::_throwLogicExceptionIfNotValidEnumEntry(pixelFormat, "mono8"),
                 GenICam::LogicalErrorException);
}

TEST_F(GenApiCustomTest, RegistersAreSizedClampedOrRefused) {
    for (int i = 0; i < 8; ++i)
        port.memory[0x200 + i] = static_cast<uint8_t>(i + 1);
    int64_t length = 99;
    GetNodeValue(map, "Lut", nullptr, length);
    EXPECT_EQ(length, 8);
    length = 99;
    SetNodeValue(map, "Lut", nullptr, length);
    EXPECT_EQ(length, 8);

    uint8_t bytes[16] = {};
    length = 16;
    GetNodeValue(map, "Lut", bytes, length);
    EXPECT_EQ(length, 8);
    EXPECT_EQ(bytes[0], 1);
    EXPECT_EQ(bytes[7], 8);

    length = 0;
    ExpectThrows([&] { GetNodeValue(map, "Lut", bytes, length); }, "InvalidArgumentException",
                 "Buffer length cannot be zero. Lut length = 8", "GetNodeValue");
    length = 9;
    ExpectThrows([&] { SetNodeValue(map, "Lut", bytes, length); }, "InvalidArgumentException",
                 "Buffer length is greater than the length of the destination node, Lut; 9 > 8",
                 "SetNodeValue");
    EXPECT_EQ(port.memory[0x200], 1) << "a refused write reached the device";
    ExpectThrows([&] { GetNodeValue(map, "Width", bytes, length); }, "InvalidArgumentException",
                 "Unsupported node type: this overload is for GenApi::intfIRegister",
                 "GetNodeValue");
    ExpectThrows([&] { SetNodeValue(map, "Width", bytes, length); }, "InvalidArgumentException",
                 "Unsupported node type this overload is for GenApi::intfIRegister",
                 "SetNodeValue");

    const uint8_t pattern[8] = {0xA1, 0xB2, 0xC3, 0xD4};
    length = 8;
    SetNodeValue(map, "Lut", pattern, length);
    EXPECT_EQ(port.memory[0x203], 0xD4);
}

TEST_F(GenApiCustomTest, CommandsExecuteAndOtherNodesDoNot) {
    ExecuteNode(map, "Start");
    EXPECT_EQ(GetNodeValue<int64_t>(map, "StartValue"), 1);
    ExpectThrows([&] { ExecuteNode(map, "Width"); }, "LogicalErrorException",
                 "Node Width unsupported node type", "ExecuteNode");
}

TEST_F(GenApiCustomTest, LimitsConvertToTheRequestedType) {
    EXPECT_EQ(GetNodeMin<int64_t>(map, "Width"), 16);
    EXPECT_DOUBLE_EQ(GetNodeMax<double>(map, "Width"), 4096.0);
    EXPECT_EQ(GetNodeInc<int64_t>(map, "Width"), 16);
    EXPECT_DOUBLE_EQ(GetNodeMin<double>(map, "Gain"), -2.5);
    EXPECT_EQ(GetNodeMin<int64_t>(map, "Gain"), -2);
    EXPECT_EQ(GetNodeMax<int64_t>(map, "Gain"), 24);
    EXPECT_DOUBLE_EQ(GetNodeInc<double>(map, "Exposure"), 0.5);

    ExpectThrows([&] { GetNodeInc<double>(map, "Gain"); }, "LogicalErrorException",
                 "Node Gain unsupported increment", "GetNodeInc");
    ExpectThrows([&] { GetNodeMin<double>(map, "ReverseX"); }, "LogicalErrorException",
                 "Node ReverseX unsupported node type", "GetNodeMin");
    ExpectThrows([&] { GetNodeMax<double>(map, "PixelFormat"); }, "LogicalErrorException",
                 "Node PixelFormat unsupported node type", "GetNodeMax");
    ExpectThrows([&] { GetNodeInc<int64_t>(map, "UserName"); }, "LogicalErrorException",
                 "Node UserName unsupported node type", "GetNodeInc");
}

TEST(EnumClasses, NamesRoundTripAndUnknownsAreRefused) {
    for (int value = GenApi::intfIValue; value <= GenApi::intfIPort; ++value) {
        auto type = static_cast<GenApi::EInterfaceType>(value);
        GenApi::EInterfaceType parsed = GenApi::intfIValue;
        gcstring text;
        Orvan::EInterfaceTypeClass::ToString(text, type);
        EXPECT_EQ(text, Orvan::EInterfaceTypeClass::ToString(type));
        ASSERT_TRUE(Orvan::EInterfaceTypeClass::FromString(text, &parsed)) << text;
        EXPECT_EQ(parsed, type);
    }
    for (int value = GenApi::noIncrement; value <= GenApi::listIncrement; ++value) {
        auto mode = static_cast<GenApi::EIncMode>(value);
        GenApi::EIncMode parsed = GenApi::noIncrement;
        ASSERT_TRUE(
            Orvan::EIncModeClass::FromString(Orvan::EIncModeClass::ToString(mode), &parsed));
        EXPECT_EQ(parsed, mode);
    }
    EXPECT_EQ(Orvan::EInterfaceTypeClass::ToString(GenApi::intfIFloat), "intfIFloat");
    EXPECT_EQ(Orvan::EIncModeClass::ToString(GenApi::listIncrement), "listIncrement");
    EXPECT_EQ(Orvan::EInterfaceTypeClass::ToString(static_cast<GenApi::EInterfaceType>(12)),
              "intfIUnknown");
    EXPECT_EQ(Orvan::EIncModeClass::ToString(static_cast<GenApi::EIncMode>(3)), "unknownIncrement");

    GenApi::EInterfaceType untouched = GenApi::intfIPort;
    EXPECT_FALSE(Orvan::EInterfaceTypeClass::FromString("intfiinteger", &untouched));
    EXPECT_EQ(untouched, GenApi::intfIPort);
    EXPECT_FALSE(Orvan::EInterfaceTypeClass::FromString("intfIInteger", nullptr));
    GenApi::EIncMode mode = GenApi::fixedIncrement;
    EXPECT_FALSE(Orvan::EIncModeClass::FromString("none", &mode));
    EXPECT_EQ(mode, GenApi::fixedIncrement);
}
