// Rules that real descriptions rely on: register layouts, derived limits, caching modes,
// enumeration and category availability, formulas over other nodes, polling.
#include "GenApiTestSupport.h"

#include <gtest/gtest.h>

#include <limits>

using namespace GenApi;
using genapitest::IntReg;
using genapitest::LoadedMap;

struct RangeCase {
    int length;
    const char* sign;
    int64_t min;
    int64_t max;
};

class RegisterRanges : public ::testing::TestWithParam<RangeCase> {};

TEST_P(RegisterRanges, FollowLengthAndSign) {
    const RangeCase& c = GetParam();
    LoadedMap map("<IntReg Name=\"R\"><Address>0</Address><Length>" + std::to_string(c.length) +
                  "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>" + c.sign +
                  "</Sign></IntReg>");
    CIntegerPtr reg = map.Node("R");
    EXPECT_EQ(reg->GetMin(), c.min);
    EXPECT_EQ(reg->GetMax(), c.max);
    reg->SetValue(c.min, false);
    EXPECT_EQ(reg->GetValue(), c.min);
}

INSTANTIATE_TEST_SUITE_P(
    IntReg, RegisterRanges,
    ::testing::Values(RangeCase{1, "Unsigned", 0, 255}, RangeCase{2, "Signed", -32768, 32767},
                      RangeCase{4, "Unsigned", 0, 4294967295},
                      RangeCase{4, "Signed", -2147483648LL, 2147483647},
                      RangeCase{8, "Unsigned", 0, std::numeric_limits<int64_t>::max()},
                      RangeCase{8, "Signed", std::numeric_limits<int64_t>::min(),
                                std::numeric_limits<int64_t>::max()}));

TEST(Registers, AddressesAddConstantsNodesIndicesAndNestedFormulas) {
    LoadedMap map(R"(<Integer Name="Index"><Value>2</Value></Integer>
        <Integer Name="Base"><Value>0x100</Value></Integer>
        <IntReg Name="R"><Address>0x10</Address><pAddress>Base</pAddress>
          <pIndex Offset="4">Index</pIndex>
          <IntSwissKnife Name="Extra"><Formula>0x1000</Formula></IntSwissKnife>
          <Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>
        <Register Name="Block"><Address>0x10</Address><pAddress>Base</pAddress>
          <pIndex Offset="4">Index</pIndex><Length>4</Length><AccessMode>RO</AccessMode>
          <pPort>Device</pPort></Register>)");
    EXPECT_EQ(CRegisterPtr(map.Node("Block"))->GetAddress(), 0x118);
    CIntegerPtr(map.Node("R"))->SetValue(0x55);
    EXPECT_EQ(map.port.bytes[0x1118], 0x55);
    // A formula nested in a single register is that register's helper, not a feature.
    EXPECT_EQ(map.Node("Extra"), nullptr);
    EXPECT_NE(map.Node("_Extra"), nullptr);
}

TEST(Registers, StructEntriesShareTheirRegister) {
    LoadedMap map(R"(<StructReg Comment="Flags"><Address>0</Address><Length>4</Length>
        <AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess>
        <StructEntry Name="Low"><LSB>0</LSB><MSB>3</MSB></StructEntry>
        <StructEntry Name="High"><LSB>4</LSB><MSB>7</MSB><AccessMode>RO</AccessMode></StructEntry>
        </StructReg>)");
    map.port.Set32(0, 0x5A);
    EXPECT_EQ(CIntegerPtr(map.Node("Low"))->GetValue(), 0xA);
    EXPECT_EQ(CIntegerPtr(map.Node("High"))->GetValue(), 0x5);
    EXPECT_EQ(map.Node("High")->GetAccessMode(), RO);
    CIntegerPtr(map.Node("Low"))->SetValue(3);
    EXPECT_EQ(map.port.bytes[0], 0x53);
    EXPECT_EQ(CIntegerPtr(map.Node("High"))->GetValue(), 0x5)
        << "writing one entry invalidates and keeps the other";
}

struct CachingRuleCase {
    const char* name;
    std::string nodes;
    ECachingMode expected;
};

class DerivedCaching : public ::testing::TestWithParam<CachingRuleCase> {};

TEST_P(DerivedCaching, FollowsWhatTheValueIsMadeOf) {
    LoadedMap map(GetParam().nodes);
    EXPECT_EQ(map.Node("N")->GetCachingMode(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, DerivedCaching,
    ::testing::Values(
        CachingRuleCase{"IntegerOverWriteAround",
                        IntReg("R", 0, "<Cachable>WriteAround</Cachable>") +
                            "<Integer Name=\"N\"><pValue>R</pValue></Integer>",
                        WriteAround},
        CachingRuleCase{"LimitsDoNotCount",
                        IntReg("R", 0) + IntReg("M", 4, "<Cachable>NoCache</Cachable>") +
                            "<Integer Name=\"N\"><pValue>R</pValue><pMax>M</pMax></Integer>",
                        WriteThrough},
        CachingRuleCase{"SwissKnifeOverNoCache",
                        IntReg("R", 0, "<Cachable>NoCache</Cachable>") +
                            "<IntSwissKnife Name=\"N\"><pVariable Name=\"R\">R</pVariable>"
                            "<Formula>R</Formula></IntSwissKnife>",
                        NoCache},
        CachingRuleCase{"IntSwissKnifeKeepsWriteThrough",
                        IntReg("R", 0, "<Cachable>WriteAround</Cachable>") +
                            "<IntSwissKnife Name=\"N\"><pVariable Name=\"R\">R</pVariable>"
                            "<Formula>R</Formula></IntSwissKnife>",
                        WriteThrough},
        CachingRuleCase{"FloatRegDefault",
                        "<FloatReg Name=\"N\"><Address>0</Address><Length>8</Length>"
                        "<AccessMode>RO</AccessMode><pPort>Device</pPort></FloatReg>",
                        WriteAround},
        CachingRuleCase{"Explicit", IntReg("N", 0, "<Cachable>NoCache</Cachable>"), NoCache}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Enumerations, EntriesDecideAvailabilityAndValidity) {
    LoadedMap map(IntReg("R", 0) + R"(<Integer Name="No"><Value>0</Value></Integer>
        <Enumeration Name="E"><pValue>R</pValue>
          <EnumEntry Name="A"><Value>1</Value></EnumEntry>
          <EnumEntry Name="B"><pIsAvailable>No</pIsAvailable><Value>2</Value></EnumEntry>
        </Enumeration>
        <Enumeration Name="Hidden"><pValue>R</pValue>
          <EnumEntry Name="A"><pIsImplemented>No</pIsImplemented><Value>1</Value></EnumEntry>
        </Enumeration>
        <IntSwissKnife Name="UsesE"><pVariable Name="E">E</pVariable><Formula>E * 10</Formula>
        </IntSwissKnife>)");
    CEnumerationPtr e = map.Node("E");
    StringList_t symbolics;
    e->GetSymbolics(symbolics);
    ASSERT_EQ(symbolics.size(), 1u);
    EXPECT_EQ(symbolics[0], "A");
    EXPECT_THROW(e->SetIntValue(2), GenICam::OutOfRangeException);
    e->SetIntValue(2, false);
    EXPECT_EQ(e->GetCurrentEntry()->GetSymbolic(), "B");
    map.port.Set32(0, 7);
    e->GetNode()->InvalidateNode();
    EXPECT_THROW(e->ToString(), GenICam::InvalidArgumentException);
    EXPECT_THROW(CIntegerPtr(map.Node("UsesE"))->GetValue(), GenICam::LogicalErrorException);
    EXPECT_EQ(map.Node("Hidden")->GetAccessMode(), NI);
}

TEST(Categories, TakeVisibilityAndImplementationFromTheirFeatures) {
    LoadedMap map(R"(<Integer Name="No"><Value>0</Value></Integer>
        <Integer Name="Expert"><Visibility>Expert</Visibility><Value>1</Value></Integer>
        <Integer Name="Gone"><pIsImplemented>No</pIsImplemented><Value>1</Value></Integer>
        <Integer Name="Away"><pIsAvailable>No</pIsAvailable><Value>1</Value></Integer>
        <Category Name="Shown"><Visibility>Guru</Visibility><pFeature>Expert</pFeature></Category>
        <Category Name="Unimplemented"><pFeature>Gone</pFeature></Category>
        <Category Name="Unavailable"><pFeature>Away</pFeature></Category>
        <Category Name="Empty"/>)");
    EXPECT_EQ(map.Node("Shown")->GetVisibility(), Expert);
    EXPECT_EQ(map.Node("Unimplemented")->GetAccessMode(), NI);
    EXPECT_EQ(map.Node("Unavailable")->GetAccessMode(), RO);
    EXPECT_EQ(map.Node("Empty")->GetAccessMode(), NI);
    EXPECT_EQ(map.Node("Empty")->GetVisibility(), Invisible);
    EXPECT_TRUE(map.Node("Expert")->IsFeature());
    EXPECT_FALSE(map.Node("No")->IsFeature());
}

struct SlopeCase {
    const char* slope;
    double min;
    double max;
};

class ConverterLimits : public ::testing::TestWithParam<SlopeCase> {};

TEST_P(ConverterLimits, FollowTheSlope) {
    LoadedMap map(R"(<Integer Name="Raw"><Value>5</Value><Min>0</Min><Max>10</Max></Integer>
        <Converter Name="N"><FormulaTo>10 - FROM</FormulaTo><FormulaFrom>10 - TO</FormulaFrom>
        <pValue>Raw</pValue><Slope>)" +
                  std::string(GetParam().slope) + "</Slope></Converter>");
    CFloatPtr n = map.Node("N");
    EXPECT_DOUBLE_EQ(n->GetMin(), GetParam().min);
    EXPECT_DOUBLE_EQ(n->GetMax(), GetParam().max);
}

INSTANTIATE_TEST_SUITE_P(Slopes, ConverterLimits,
                         ::testing::Values(SlopeCase{"Decreasing", 0, 10},
                                           SlopeCase{"Automatic", 0, 10},
                                           SlopeCase{"Increasing", 10, 0},
                                           SlopeCase{"Varying", -std::numeric_limits<double>::max(),
                                                     std::numeric_limits<double>::max()}));

struct ArithmeticCase {
    const char* formula;
    int64_t integer;
    double floating;
};

class FormulaArithmetic : public ::testing::TestWithParam<ArithmeticCase> {};

TEST_P(FormulaArithmetic, IntegerKnivesTruncateFloatKnivesDoNot) {
    std::string formula = GetParam().formula;
    LoadedMap map(IntReg("Seven", 0) + R"(<Integer Name="Two"><Value>2</Value><Min>-5</Min>
        <Max>9</Max></Integer>
        <IntSwissKnife Name="I"><pVariable Name="A">Seven</pVariable>
          <pVariable Name="B">Two</pVariable><Formula>)" +
                  formula + R"(</Formula></IntSwissKnife>
        <SwissKnife Name="F"><pVariable Name="A">Seven</pVariable>
          <pVariable Name="B">Two</pVariable><Formula>)" +
                  formula + "</Formula></SwissKnife>");
    map.port.Set32(0, 7);
    EXPECT_EQ(CIntegerPtr(map.Node("I"))->GetValue(), GetParam().integer);
    EXPECT_DOUBLE_EQ(CFloatPtr(map.Node("F"))->GetValue(), GetParam().floating);
}

INSTANTIATE_TEST_SUITE_P(Variables, FormulaArithmetic,
                         ::testing::Values(ArithmeticCase{"A / B", 3, 3.5},
                                           ArithmeticCase{"A % B + B.Max", 10, 10},
                                           ArithmeticCase{"B.Min * A", -35, -35},
                                           ArithmeticCase{"(A &gt; B) ? A : B", 7, 7}));

TEST(Polling, InvalidatesAfterThePollingTimeUnlessBlocked) {
    LoadedMap map(
        R"(<Integer Name="Block"><Value>0</Value></Integer>)" +
        IntReg("R", 0, "<PollingTime>100</PollingTime><pBlockPolling>Block</pBlockPolling>"));
    CIntegerPtr reg = map.Node("R");
    map.port.Set32(0, 1);
    EXPECT_EQ(reg->GetValue(), 1);
    map.port.Set32(0, 2);
    map.ref._Poll(50);
    EXPECT_EQ(reg->GetValue(), 1);
    map.ref._Poll(60);
    EXPECT_EQ(reg->GetValue(), 2);
    CIntegerPtr(map.Node("Block"))->SetValue(1);
    map.port.Set32(0, 3);
    map.ref._Poll(200);
    EXPECT_EQ(reg->GetValue(), 2);
}
