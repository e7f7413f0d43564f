// Values of every node kind, read from and written to a register space in memory.
#include "GenApiTestSupport.h"

#include <gtest/gtest.h>

using namespace GenApi;
using genapitest::IntReg;
using genapitest::LoadedMap;

TEST(NodeKinds, IntegerTakesItsValueAndLimitsFromItsRegister) {
    LoadedMap map(IntReg("Reg", 0x10) + R"(<Integer Name="Width"><pValue>Reg</pValue>
        <Min>8</Min><Max>64</Max><Inc>8</Inc></Integer>)");
    map.port.Set32(0x10, 24);
    CIntegerPtr width = map.Node("Width");
    EXPECT_EQ(width->GetValue(), 24);
    EXPECT_EQ(width->GetMin(), 8);
    EXPECT_EQ(width->GetMax(), 64);
    EXPECT_EQ(width->GetInc(), 8);
    width->SetValue(40);
    EXPECT_EQ(map.port.bytes[0x10], 40);
    EXPECT_EQ(width->ToString(), "40");
    width->FromString("0x10");
    EXPECT_EQ(CIntegerPtr(map.Node("Reg"))->GetValue(), 16);
}

struct BitFieldCase {
    const char* endianess;
    int lsb;
    int msb;
    const char* sign;
    uint32_t registerValue; // as the device holds it, in the register's byte order
    int64_t expected;
};

class BitFields : public ::testing::TestWithParam<BitFieldCase> {};

// Big-endian descriptions count bit 0 from the most significant end of the register.
TEST_P(BitFields, ReadAndWriteOnlyTheirBits) {
    const BitFieldCase& c = GetParam();
    std::string field = std::string(R"(<MaskedIntReg Name="Field"><Address>0</Address>
        <Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><LSB>)") +
                        std::to_string(c.lsb) + "</LSB><MSB>" + std::to_string(c.msb) +
                        "</MSB><Sign>" + c.sign + "</Sign><Endianess>" + c.endianess +
                        "</Endianess></MaskedIntReg>";
    LoadedMap map(field);
    bool big = std::string(c.endianess) == "BigEndian";
    for (int i = 0; i < 4; ++i)
        map.port.bytes[big ? 3 - i : i] = static_cast<uint8_t>(c.registerValue >> (8 * i));
    CIntegerPtr node = map.Node("Field");
    EXPECT_EQ(node->GetValue(), c.expected);

    node->SetValue(c.expected == 0 ? 1 : 0);
    uint32_t after = 0;
    for (int i = 0; i < 4; ++i)
        after |= static_cast<uint32_t>(map.port.bytes[big ? 3 - i : i]) << (8 * i);
    int low = big ? 31 - std::max(c.lsb, c.msb) : std::min(c.lsb, c.msb);
    int width = std::abs(c.msb - c.lsb) + 1;
    uint32_t mask = (width == 32 ? ~0u : ((1u << width) - 1)) << low;
    EXPECT_EQ(after & ~mask, c.registerValue & ~mask) << "bits outside the field changed";
}

INSTANTIATE_TEST_SUITE_P(
    BothEndiannesses, BitFields,
    ::testing::Values(BitFieldCase{"LittleEndian", 4, 7, "Unsigned", 0x000000A0, 0xA},
                      BitFieldCase{"LittleEndian", 0, 0, "Unsigned", 0x00000001, 1},
                      BitFieldCase{"LittleEndian", 8, 11, "Signed", 0x00000F00, -1},
                      BitFieldCase{"BigEndian", 24, 31, "Unsigned", 0x000000C3, 0xC3},
                      BitFieldCase{"BigEndian", 0, 0, "Unsigned", 0x80000000, 1},
                      BitFieldCase{"BigEndian", 28, 31, "Signed", 0x0000000E, -2}));

TEST(NodeKinds, BitFieldsSharingARegisterKeepEachOthersBits) {
    auto field = [](const char* name, int bit) {
        return std::string("<MaskedIntReg Name=\"") + name +
               "\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
               "<pPort>Device</pPort><Bit>" +
               std::to_string(bit) + "</Bit></MaskedIntReg>";
    };
    LoadedMap map(field("Low", 0) + field("High", 1));
    map.port.Set32(0, 0);
    CIntegerPtr low = map.Node("Low");
    CIntegerPtr high = map.Node("High");
    EXPECT_EQ(low->GetValue(), 0); // both fields now hold a cached copy of the register
    EXPECT_EQ(high->GetValue(), 0);
    low->SetValue(1);
    high->SetValue(1);
    EXPECT_EQ(map.port.bytes[0], 3);
}

TEST(NodeKinds, FloatRegistersHoldIeeeNumbersInTheirByteOrder) {
    LoadedMap map(R"(<FloatReg Name="Gain"><Address>0</Address><Length>4</Length>
        <AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>BigEndian</Endianess>
        </FloatReg>)");
    CFloatPtr gain = map.Node("Gain");
    gain->SetValue(1.5);
    EXPECT_EQ(map.port.bytes[0], 0x3F); // 1.5f is 0x3FC00000, most significant byte first
    EXPECT_EQ(map.port.bytes[1], 0xC0);
    EXPECT_DOUBLE_EQ(gain->GetValue(), 1.5);
    EXPECT_FLOAT_EQ(static_cast<float>(gain->GetMax()), std::numeric_limits<float>::max());
}

TEST(NodeKinds, ConvertersUseFloatOrIntegerArithmetic) {
    LoadedMap map(IntReg("Raw", 0) + R"(
        <Converter Name="Seconds"><FormulaTo>FROM * 1000</FormulaTo>
          <FormulaFrom>TO / 1000</FormulaFrom><pValue>Raw</pValue><Slope>Increasing</Slope>
        </Converter>
        <IntConverter Name="Kilo"><FormulaTo>FROM * 1000</FormulaTo>
          <FormulaFrom>TO / 1000</FormulaFrom><pValue>Raw</pValue></IntConverter>)");
    map.port.Set32(0, 2500);
    EXPECT_DOUBLE_EQ(CFloatPtr(map.Node("Seconds"))->GetValue(), 2.5);
    EXPECT_EQ(CIntegerPtr(map.Node("Kilo"))->GetValue(), 2);
    CFloatPtr(map.Node("Seconds"))->SetValue(0.75);
    EXPECT_EQ(CIntegerPtr(map.Node("Raw"))->GetValue(), 750);
    EXPECT_DOUBLE_EQ(CFloatPtr(map.Node("Seconds"))->GetMax(), 4294967.295);
}

TEST(NodeKinds, SwissKnivesComputeFromVariablesConstantsAndExpressions) {
    LoadedMap map(IntReg("A", 0) + IntReg("B", 4) + R"(
        <SwissKnife Name="Ratio"><pVariable Name="A">A</pVariable><pVariable Name="B">B</pVariable>
          <Formula>A / B</Formula></SwissKnife>
        <IntSwissKnife Name="Sum"><pVariable Name="A">A</pVariable><Constant Name="K">10</Constant>
          <Expression Name="DOUBLE">A * 2</Expression><Formula>DOUBLE + K</Formula></IntSwissKnife>)");
    map.port.Set32(0, 7);
    map.port.Set32(4, 2);
    EXPECT_DOUBLE_EQ(CFloatPtr(map.Node("Ratio"))->GetValue(), 3.5);
    EXPECT_EQ(CIntegerPtr(map.Node("Sum"))->GetValue(), 24);
    EXPECT_EQ(map.Node("Sum")->GetAccessMode(), RO);
    EXPECT_THROW(CIntegerPtr(map.Node("Sum"))->SetValue(1), GenICam::AccessException);
}

TEST(NodeKinds, BooleansEnumerationsCommandsStringsAndRegisters) {
    LoadedMap map(IntReg("Reg", 0) + R"(
        <Boolean Name="Enable"><pValue>Reg</pValue><OnValue>5</OnValue><OffValue>3</OffValue></Boolean>
        <Enumeration Name="Mode"><EnumEntry Name="Off"><Value>3</Value></EnumEntry>
          <EnumEntry Name="On"><Value>5</Value></EnumEntry><pValue>Reg</pValue></Enumeration>
        <Command Name="Start"><pValue>Reg</pValue><CommandValue>9</CommandValue></Command>
        <StringReg Name="Text"><Address>8</Address><Length>8</Length><AccessMode>RW</AccessMode>
          <pPort>Device</pPort></StringReg>
        <Register Name="Block"><Address>8</Address><Length>8</Length><AccessMode>RO</AccessMode>
          <pPort>Device</pPort></Register>
        <Category Name="Root"><pFeature>Enable</pFeature><pFeature>Mode</pFeature></Category>)");
    map.port.Set32(0, 5);
    EXPECT_TRUE(CBooleanPtr(map.Node("Enable"))->GetValue());
    CEnumerationPtr mode = map.Node("Mode");
    EXPECT_EQ(mode->ToString(), "On");
    mode->FromString("Off");
    EXPECT_FALSE(CBooleanPtr(map.Node("Enable"))->GetValue());
    EXPECT_EQ(map.Node("EnumEntry_Mode_On")->GetPrincipalInterfaceType(), intfIEnumEntry);
    EXPECT_THROW(mode->FromString("Sideways"), GenICam::InvalidArgumentException);

    CCommandPtr start = map.Node("Start");
    start->Execute();
    EXPECT_EQ(map.port.bytes[0], 9);
    EXPECT_FALSE(start->IsDone());
    map.port.Set32(0, 0);
    EXPECT_TRUE(start->IsDone());

    CStringPtr(map.Node("Text"))->SetValue("abc");
    EXPECT_EQ(CStringPtr(map.Node("Text"))->GetValue(), "abc");
    EXPECT_THROW(CStringPtr(map.Node("Text"))->SetValue("far too long"),
                 GenICam::OutOfRangeException);
    uint8_t block[8] = {};
    CRegisterPtr(map.Node("Block"))->Get(block, 8);
    EXPECT_EQ(block[0], 'a');
    EXPECT_EQ(CRegisterPtr(map.Node("Block"))->GetLength(), 8);

    FeatureList_t features;
    CCategoryPtr(map.Node("Root"))->GetFeatures(features);
    ASSERT_EQ(features.size(), 2u);
    EXPECT_EQ(features[1]->GetNode()->GetName(), "Mode");
}

enum ModeEnums { Mode_Off, Mode_On, Mode_Turbo };

// Turbo is declared by the application but missing from the description.
TEST(NodeKinds, TypedEnumerationsTranslateEnumeratorsToEntries) {
    LoadedMap map(IntReg("Reg", 0) + R"(<Enumeration Name="Mode"><pValue>Reg</pValue>
        <EnumEntry Name="Off"><Value>3</Value></EnumEntry>
        <EnumEntry Name="On"><Value>5</Value></EnumEntry></Enumeration>)");
    map.port.Set32(0, 5);
    CEnumerationTRef<ModeEnums> mode;
    mode.SetReference(map.Node("Mode"));
    mode.SetNumEnums(3);
    mode.SetEnumReference(Mode_Off, "Off");
    mode.SetEnumReference(Mode_On, "On");
    mode.SetEnumReference(Mode_Turbo, "Turbo");
    CEnumerationTPtr<ModeEnums> typed(&mode);
    EXPECT_EQ(typed->GetValue(), Mode_On);
    *typed = Mode_Off;
    EXPECT_EQ(map.port.bytes[0], 3);
    EXPECT_EQ((*typed)(), Mode_Off);
    EXPECT_EQ(typed->GetEntry(Mode_On)->GetValue(), 5);
    EXPECT_THROW(typed->SetValue(Mode_Turbo), GenICam::AccessException);
}

TEST(NodeKinds, IndexedValuesFollowTheirIndex) {
    LoadedMap map(R"(<Integer Name="Selector"><Value>0</Value></Integer>
        <Integer Name="Gain"><pIndex>Selector</pIndex><ValueIndexed Index="0">10</ValueIndexed>
          <ValueIndexed Index="1">20</ValueIndexed><ValueDefault>99</ValueDefault></Integer>)");
    CIntegerPtr selector = map.Node("Selector");
    CIntegerPtr gain = map.Node("Gain");
    EXPECT_EQ(gain->GetValue(), 10);
    selector->SetValue(1);
    EXPECT_EQ(gain->GetValue(), 20);
    gain->SetValue(21);
    selector->SetValue(7);
    EXPECT_EQ(gain->GetValue(), 99);
    selector->SetValue(1);
    EXPECT_EQ(gain->GetValue(), 21);
}
