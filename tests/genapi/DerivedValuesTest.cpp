// What a node derives from the nodes it is built on, in the shapes real descriptions from
// several makers use: access modes of unimplemented chains and their categories, limits of
// values written to several registers, increments of linear converters, register blocks named
// as addresses, entries sharing a value, and float masks wider than 32 bits.
#include "GenApiTestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

using namespace GenApi;
using genapitest::IntReg;
using genapitest::LoadedMap;

namespace {

std::string AccessModeOf(INode* node) {
    return EAccessModeClass::ToString(node->GetAccessMode()).c_str();
}

std::string IntegerLimits(INode* node) {
    CIntegerPtr integer(node);
    return std::to_string(integer->GetMin()) + ".." + std::to_string(integer->GetMax());
}

std::string IntegerValue(INode* node) {
    return std::to_string(CIntegerPtr(node)->GetValue());
}

std::string FloatIncrement(INode* node) {
    CFloatPtr real(node);
    if (!real->HasInc())
        return "none";
    char text[32];
    std::snprintf(text, sizeof text, "%.10g", real->GetInc());
    return text;
}

std::string EntryName(INode* node) {
    return CEnumerationPtr(node)->ToString().c_str();
}

struct DerivedCase {
    const char* name;
    std::string nodes;
    const char* node;
    std::string (*probe)(INode*);
    const char* expected;
};

// Zero is 0, Wide needs more than 32 bits; registers at 0x10 (unsigned, 4 bytes) and 0x20.
const std::string kCommon = IntReg("Zero", 0) + IntReg("Reg", 0x10) +
                            R"(<Integer Name="Wide"><Value>4294967296</Value></Integer>
       <Integer Name="Missing"><pIsImplemented>Zero</pIsImplemented><Value>1</Value></Integer>
       <Integer Name="BuiltOnMissing"><pIsAvailable>Zero</pIsAvailable><pValue>Missing</pValue>
       </Integer>
       <Integer Name="Away"><pIsAvailable>Zero</pIsAvailable><Value>1</Value></Integer>)";

class DerivedValues : public ::testing::TestWithParam<DerivedCase> {};

TEST_P(DerivedValues, FollowTheNodesTheyAreBuiltOn) {
    LoadedMap map(kCommon + GetParam().nodes);
    map.port.Set32(0x24, 77);
    EXPECT_EQ(GetParam().probe(map.Node(GetParam().node)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, DerivedValues,
    ::testing::Values(
        // Implemented is settled before available, also for what a node is built on.
        DerivedCase{"UnimplementedChainBeforeOwnAvailability", "", "BuiltOnMissing", &AccessModeOf,
                    "NI"},
        DerivedCase{"UnreadableLockLeavesUnavailable",
                    "<Integer Name=\"N\"><pIsLocked>Away</pIsLocked><Value>1</Value></Integer>",
                    "N", &AccessModeOf, "NA"},
        DerivedCase{"CategoryOfUnimplementedFeatures",
                    R"(<Category Name="N"><pFeature>Missing</pFeature>
                       <pFeature>BuiltOnMissing</pFeature></Category>)",
                    "N", &AccessModeOf, "NI"},
        // A value written to a register and a copy must fit both.
        DerivedCase{"LimitsOfEveryValueNode",
                    R"(<Integer Name="Shadow"><Value>0</Value></Integer>
                       <Integer Name="N"><pValue>Reg</pValue><pValueCopy>Shadow</pValueCopy>
                       </Integer>)",
                    "N", &IntegerLimits, "0..4294967295"},
        // A 20-bit fixed-point number steps by 2**-20.
        DerivedCase{"LinearConverterStepsLikeItsRegister",
                    R"(<Converter Name="N"><FormulaTo>FROM * 1048576</FormulaTo>
                       <FormulaFrom>TO / 1048576</FormulaFrom><pValue>Reg</pValue>
                       <IsLinear>Yes</IsLinear></Converter>)",
                    "N", &FloatIncrement, "9.536743164e-07"},
        DerivedCase{"RegisterBlockLendsItsAddress",
                    R"(<Register Name="Block"><Address>0x20</Address><Length>16</Length>
                       <AccessMode>RO</AccessMode><pPort>Device</pPort></Register>)" +
                        IntReg("N", 4, "<pAddress>Block</pAddress>"),
                    "N", &IntegerValue, "77"},
        DerivedCase{"SharedValueMeansTheAvailableEntry",
                    R"(<Enumeration Name="N"><pValue>Zero</pValue>
                       <EnumEntry Name="Old"><pIsAvailable>Zero</pIsAvailable><Value>0</Value>
                       </EnumEntry><EnumEntry Name="New"><Value>0</Value></EnumEntry>
                       </Enumeration>)",
                    "N", &EntryName, "New"},
        // A float mask keeps the low 32 bits of a value that outgrew them.
        DerivedCase{"FloatMaskWrapsWideValues",
                    R"(<SwissKnife Name="Limit"><pVariable Name="W">Wide</pVariable>
                       <Formula>(W + 21) &amp; 0xFFFFFFFC</Formula></SwissKnife>
                       <Integer Name="N"><Value>0</Value><pMax>Limit</pMax></Integer>)",
                    "N", &IntegerLimits, "-9223372036854775808..20"}),
    [](const auto& info) { return std::string(info.param.name); });

// Bad is an enumeration whose value no entry stands for, so a condition reading it fails.
const std::string kFailingCondition = IntReg("Raw", 0x30) + R"(
    <Enumeration Name="Bad"><pValue>Raw</pValue><EnumEntry Name="A"><Value>1</Value></EnumEntry>
    </Enumeration>
    <IntSwissKnife Name="Check"><pVariable Name="B">Bad</pVariable><Formula>B = 1</Formula>
    </IntSwissKnife>
    <Integer Name="N"><pIsAvailable>Check</pIsAvailable><Value>5</Value></Integer>
    <Category Name="Group"><pIsImplemented>Zero</pIsImplemented><pFeature>N</pFeature></Category>)";

// The failure is reported once; until something it depends on changes the node counts as RW.
TEST(FailingConditions, AreReportedOnceThenTheNodeCountsAsReadable) {
    LoadedMap map(kCommon + kFailingCondition);
    map.port.Set32(0x30, 7);
    EXPECT_THROW(map.Node("N")->GetAccessMode(), GenICam::LogicalErrorException);
    EXPECT_EQ(map.Node("N")->GetAccessMode(), RW);
    EXPECT_EQ(CIntegerPtr(map.Node("N"))->GetValue(), 5);
    CIntegerPtr(map.Node("Raw"))->SetValue(1);
    EXPECT_EQ(map.Node("N")->GetAccessMode(), RW);
    CIntegerPtr(map.Node("Raw"))->SetValue(2);
    EXPECT_THROW(map.Node("N")->GetAccessMode(), GenICam::LogicalErrorException);
}

// A category asks its features before its own conditions.
TEST(FailingConditions, FailTheCategoryOfTheirFeature) {
    LoadedMap map(kCommon + kFailingCondition);
    map.port.Set32(0x30, 7);
    EXPECT_THROW(map.Node("Group")->GetAccessMode(), GenICam::LogicalErrorException);
}

// X and W limit each other; X is unavailable through its lock. Whichever is asked first decides
// the answers inside the loop, and they are kept until something changes.
TEST(LimitLoops, KeepTheAnswersOfTheNodeAskedFirst) {
    LoadedMap map(kCommon + IntReg("RegX", 0x40) + IntReg("RegW", 0x44) + R"(
        <Integer Name="X"><pIsLocked>Away</pIsLocked><pValue>RegX</pValue><pMax>XMax</pMax>
        </Integer>
        <IntSwissKnife Name="XMax"><pVariable Name="W">W</pVariable><Formula>100 - W</Formula>
        </IntSwissKnife>
        <Integer Name="W"><pValue>RegW</pValue><pMax>WMax</pMax></Integer>
        <IntSwissKnife Name="WMax"><pVariable Name="X">X</pVariable><Formula>100 - X</Formula>
        </IntSwissKnife>)");
    EXPECT_EQ(map.Node("W")->GetAccessMode(), NA);
    EXPECT_EQ(map.Node("XMax")->GetAccessMode(), RO);
    CIntegerPtr(map.Node("RegW"))->SetValue(3);
    EXPECT_EQ(map.Node("XMax")->GetAccessMode(), NA);
}

} // namespace
