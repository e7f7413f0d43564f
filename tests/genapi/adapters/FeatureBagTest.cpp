// Feature bags: the persistence file format, its reader's errors, selector-aware storing, how
// loading copes with features that depend on each other, and a round trip through a file on
// every description of the corpus.
#include "AdapterTestSupport.h"
#include "MemoryPort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <sstream>

using namespace GenApi;
using namespace AdapterTest;

namespace {

const char kHeader[] = "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n"
                       "# GenApi persistence file (version 3.3.0)\n";

void ConnectAll(INodeMap& map, IPort& port) {
    NodeList_t nodes;
    map.GetNodes(nodes);
    for (INode* node : nodes)
        if (node->GetPrincipalInterfaceType() == intfIPort)
            map.Connect(&port, node->GetName());
}

std::string Text(const CFeatureBag& bag) {
    std::ostringstream out;
    out << bag;
    return out.str();
}

// Gain is selected by GainSelector: each selector value addresses its own register.
const char kSelectorDescription[] = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Bag" VendorName="Test" StandardNameSpace="None"
    SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0"
    MajorVersion="1" MinorVersion="0" SubMinorVersion="0" ToolTip="" ProductGuid="" VersionGuid=""
    xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Category Name="Root"><pFeature>Gain</pFeature><pFeature>GainSelector</pFeature>
    <pFeature>Offset</pFeature><pFeature>Temperature</pFeature></Category>
  <Enumeration Name="GainSelector"><Streamable>Yes</Streamable>
    <EnumEntry Name="Red"><Value>0</Value></EnumEntry>
    <EnumEntry Name="Blue"><Value>1</Value></EnumEntry>
    <pValue>GainSelectorReg</pValue><pSelected>Gain</pSelected></Enumeration>
  <IntReg Name="GainSelectorReg"><Address>0x100</Address><Length>4</Length>
    <AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign>
    <Endianess>LittleEndian</Endianess></IntReg>
  <IntReg Name="Gain"><Streamable>Yes</Streamable><Address>0x200</Address>
    <pIndex Offset="4">GainSelectorReg</pIndex><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <IntReg Name="Offset"><Streamable>Yes</Streamable><Address>0x300</Address><Length>4</Length>
    <AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign>
    <Endianess>LittleEndian</Endianess></IntReg>
  <IntReg Name="Temperature"><Streamable>Yes</Streamable><Address>0x400</Address>
    <Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign>
    <Endianess>LittleEndian</Endianess></IntReg>
  <Port Name="Device"/>
</RegisterDescription>
)";

class SelectorBagTest : public testing::Test {
protected:
    SelectorBagTest() { ConnectAll(*m_map, m_port); }
    void Set(const char* name, const char* value) {
        CValuePtr(m_map->GetNode(name))->FromString(value);
    }
    gcstring Get(const char* name) { return CValuePtr(m_map->GetNode(name))->ToString(); }

    MapPtr m_map = LoadXml(kSelectorDescription);
    MemoryPort m_port{MemoryPort::Fill::Zero};
};

TEST_F(SelectorBagTest, StoresSelectedFeaturesUnderEachSelectorValueInFileFormat) {
    Set("GainSelector", "Blue");
    Set("Gain", "7");
    Set("GainSelector", "Red");
    Set("Gain", "3");
    Set("Offset", "12");

    CFeatureBag bag;
    bag.SetBagName("Settings");
    EXPECT_EQ(bag.StoreToBag(m_map.get()), 6);
    EXPECT_EQ(Text(bag), std::string(kHeader) + "# Settings\n"
                                                "GainSelector\tRed\nGain\t3\n"
                                                "GainSelector\tBlue\nGain\t7\n"
                                                "GainSelector\tRed\n"
                                                "Offset\t12\n");
    EXPECT_EQ(Get("GainSelector"), "Red");

    gcstring_vector only{"Offset"};
    EXPECT_EQ(bag.StoreToBag(m_map.get(), -1, &only), 1);
    EXPECT_EQ(bag.StoreToBag(m_map.get(), 2), 2);
}

TEST_F(SelectorBagTest, LoadingWritesEverySelectorValueAndCollectsErrors) {
    std::istringstream file(std::string(kHeader) +
                            "# comment\n"
                            "GainSelector\tBlue\nGain\t9\nGainSelector\tRed\nGain\t4\n"
                            "Missing\t1\nTemperature\t5\nOffset 8\r\n");
    CFeatureBag bag;
    file >> bag;
    gcstring_vector errors;
    EXPECT_FALSE(bag.LoadFromBag(m_map.get(), true, &errors));
    ASSERT_EQ(errors.size(), 2u) << Text(bag);
    EXPECT_NE(errors[0].find("Missing"), gcstring::npos);
    EXPECT_NE(errors[1].find("Temperature"), gcstring::npos);
    EXPECT_EQ(Get("Offset"), "8");
    EXPECT_EQ(Get("GainSelector"), "Red");
    EXPECT_EQ(Get("Gain"), "4");
    Set("GainSelector", "Blue");
    EXPECT_EQ(Get("Gain"), "9");
}

// A description with a port named Device around the given nodes.
std::string Described(const std::string& nodes) {
    return R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Bag" VendorName="Test" StandardNameSpace="None"
    SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0"
    MajorVersion="1" MinorVersion="0" SubMinorVersion="0" ToolTip="" ProductGuid="" VersionGuid=""
    xmlns="http://www.genicam.org/GenApi/Version_1_1">
)" + nodes +
           R"(
  <Port Name="Device"/>
</RegisterDescription>
)";
}

std::string Register(const std::string& kind, const std::string& name, int address,
                     const std::string& extra = "", const char* access = "RW") {
    return "<" + kind + " Name=\"" + name + "\"><Address>" + std::to_string(address) +
           "</Address><Length>4</Length><AccessMode>" + access +
           "</AccessMode><pPort>Device</pPort>" + extra +
           "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></" + kind + ">";
}

CFeatureBag BagOf(const std::string& entries) {
    std::istringstream file(std::string(kHeader) + "# \n" + entries);
    CFeatureBag bag;
    file >> bag;
    return bag;
}

// A map over a zeroed memory port, and what loading a bag into it reports.
class BagLoad {
public:
    explicit BagLoad(const std::string& nodes) : m_map(LoadXml(Described(nodes))) {
        ConnectAll(*m_map, m_port);
    }
    bool Load(const std::string& entries) {
        m_errors.clear();
        return BagOf(entries).LoadFromBag(m_map.get(), true, &m_errors);
    }
    void Set(const char* name, const char* value) {
        CValuePtr(m_map->GetNode(name))->FromString(value);
    }
    std::string Get(const char* name) {
        return CValuePtr(m_map->GetNode(name))->ToString().c_str();
    }
    std::string Errors() const {
        std::string text;
        for (const gcstring& error : m_errors)
            text += std::string(error.c_str()) + "\n";
        return text;
    }
    INodeMap& Map() { return *m_map; }

private:
    MapPtr m_map;
    MemoryPort m_port{MemoryPort::Fill::Zero};
    gcstring_vector m_errors;
};

// Exposure is locked and the entry Line1 unavailable until Mode, which the bag lists last, is On.
TEST(FeatureBagLoadTest, RepeatsPassesUntilLockedAndUnavailableFeaturesTakeTheirValues) {
    BagLoad map(R"(
  <Integer Name="Exposure"><Streamable>Yes</Streamable><pIsLocked>ModeOff</pIsLocked>
    <pValue>ExposureReg</pValue></Integer>
  <Enumeration Name="TriggerSource"><Streamable>Yes</Streamable>
    <EnumEntry Name="Software"><Value>0</Value></EnumEntry>
    <EnumEntry Name="Line1"><pIsAvailable>ModeOn</pIsAvailable><Value>1</Value></EnumEntry>
    <pValue>TriggerSourceReg</pValue></Enumeration>
  <Enumeration Name="Mode"><Streamable>Yes</Streamable>
    <EnumEntry Name="Off"><Value>0</Value></EnumEntry>
    <EnumEntry Name="On"><Value>1</Value></EnumEntry>
    <pValue>ModeReg</pValue></Enumeration>
  <IntSwissKnife Name="ModeOff"><pVariable Name="M">ModeReg</pVariable><Formula>M = 0</Formula>
  </IntSwissKnife>
  <IntSwissKnife Name="ModeOn"><pVariable Name="M">ModeReg</pVariable><Formula>M = 1</Formula>
  </IntSwissKnife>)" +
                Register("IntReg", "ExposureReg", 0x10) +
                Register("IntReg", "TriggerSourceReg", 0x14) + Register("IntReg", "ModeReg", 0x18));
    EXPECT_TRUE(map.Load("Exposure\t500\nTriggerSource\tLine1\nMode\tOn\n")) << map.Errors();
    EXPECT_EQ(map.Get("Exposure"), "500");
    EXPECT_EQ(map.Get("TriggerSource"), "Line1");
    EXPECT_EQ(map.Get("Mode"), "On");
}

// Gain is converted with a scale that the bag sets after it: written first, it holds the raw
// value of the old scale, and has to be written again.
TEST(FeatureBagLoadTest, WritesValuesComputedFromLaterFeaturesAgain) {
    BagLoad map(R"(
  <Converter Name="Gain"><Streamable>Yes</Streamable><pVariable Name="S">GainScaleReg</pVariable>
    <FormulaTo>FROM * (S + 1)</FormulaTo><FormulaFrom>TO / (S + 1)</FormulaFrom>
    <pValue>GainRaw</pValue><Slope>Increasing</Slope></Converter>
  <Integer Name="GainScale"><Streamable>Yes</Streamable><pValue>GainScaleReg</pValue></Integer>
)" + Register("IntReg", "GainRaw", 0x20) +
                Register("IntReg", "GainScaleReg", 0x24));
    EXPECT_TRUE(map.Load("Gain\t3\nGainScale\t4\n")) << map.Errors();
    EXPECT_EQ(map.Get("Gain"), "3");
    EXPECT_EQ(map.Get("GainRaw"), "15");
}

const char kBlueUnavailable[] = R"(
  <Enumeration Name="GainSelector"><Streamable>Yes</Streamable>
    <EnumEntry Name="Red"><Value>0</Value></EnumEntry>
    <EnumEntry Name="Blue"><pIsAvailable>BlueInquiry</pIsAvailable><Value>1</Value></EnumEntry>
    <pValue>GainSelectorReg</pValue><pSelected>Gain</pSelected></Enumeration>
  <IntReg Name="Gain"><Streamable>Yes</Streamable><Address>0x200</Address>
    <pIndex Offset="4">GainSelectorReg</pIndex><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
)";

// The map refuses the selector value Blue: Blue's gain must not land in Red's register.
TEST(FeatureBagLoadTest, LeavesFeaturesOfARefusedSelectorValueAlone) {
    BagLoad map(kBlueUnavailable + Register("IntReg", "GainSelectorReg", 0x100) +
                Register("IntReg", "BlueInquiry", 0x104, "", "RO"));
    EXPECT_FALSE(map.Load("GainSelector\tRed\nGain\t3\nGainSelector\tBlue\nGain\t7\n"
                          "GainSelector\tRed\n"));
    EXPECT_EQ(map.Get("GainSelector"), "Red");
    EXPECT_EQ(map.Get("Gain"), "3");
    std::string errors = map.Errors();
    EXPECT_NE(errors.find("Feature 'GainSelector': "), std::string::npos) << errors;
    EXPECT_NE(errors.find("Feature 'Gain': not written, since its selector 'GainSelector' could "
                          "not be set to 'Blue'"),
              std::string::npos)
        << errors;
}

// A selector the map does not implement offers no choice: its features have one instance, which
// takes the values stored under the selector value the bag leaves it at.
TEST(FeatureBagLoadTest, GivesFeaturesOfAMissingSelectorTheValuesOfItsFinalValue) {
    BagLoad map(R"(
  <Enumeration Name="TriggerSelector"><Streamable>Yes</Streamable>
    <pIsImplemented>SelectorInquiry</pIsImplemented>
    <EnumEntry Name="FrameStart"><Value>0</Value></EnumEntry>
    <EnumEntry Name="LineStart"><Value>1</Value></EnumEntry>
    <pValue>TriggerSelectorValue</pValue><pSelected>TriggerMode</pSelected></Enumeration>
  <Integer Name="TriggerSelectorValue"><Value>0</Value></Integer>
  <IntReg Name="TriggerMode"><Streamable>Yes</Streamable><Address>0x300</Address>
    <pIndex Offset="4">TriggerSelectorValue</pIndex><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
)" + Register("IntReg", "SelectorInquiry", 0x104, "", "RO"));
    EXPECT_FALSE(map.Load("TriggerSelector\tFrameStart\nTriggerMode\t1\n"
                          "TriggerSelector\tLineStart\nTriggerMode\t0\n"
                          "TriggerSelector\tFrameStart\n"));
    EXPECT_EQ(map.Get("TriggerMode"), "1") << map.Errors();
}

// Two streamable bits of one register, and a node that reads the whole register: loading the
// bits must not leave the whole register's cached copy behind.
TEST(FeatureBagLoadTest, RegistersSharingBytesReadWhatTheBagWroteThroughTheOthers) {
    BagLoad map(Register("MaskedIntReg", "LineInverter0", 0x40,
                         "<Streamable>Yes</Streamable><Bit>0</Bit>") +
                Register("MaskedIntReg", "LineInverter1", 0x40,
                         "<Streamable>Yes</Streamable><Bit>1</Bit>") +
                Register("IntReg", "LineInverterAll", 0x40));
    EXPECT_EQ(map.Get("LineInverterAll"), "0");
    EXPECT_TRUE(map.Load("LineInverter0\t1\nLineInverter1\t1\n")) << map.Errors();
    EXPECT_EQ(map.Get("LineInverterAll"), "3");
    map.Set("LineInverterAll", "2");
    EXPECT_EQ(map.Get("LineInverter0"), "0");
    EXPECT_EQ(map.Get("LineInverter1"), "1");
}

// A register space where the device switches the register at 0x200 by the selector value at
// 0x100, as cameras do for features that one register serves for every selector value.
class BankedPort : public MemoryPort {
public:
    BankedPort() : MemoryPort(MemoryPort::Fill::Zero) {}
    void Read(void* buffer, int64_t address, int64_t length) override {
        MemoryPort::Read(buffer, Bank(address), length);
    }
    void Write(const void* buffer, int64_t address, int64_t length) override {
        MemoryPort::Write(buffer, Bank(address), length);
    }

private:
    int64_t Bank(int64_t address) {
        if (address != 0x200)
            return address;
        uint8_t selector = 0;
        MemoryPort::Read(&selector, 0x100, 1);
        return 0x1000 + 4 * selector;
    }
};

// Storing reads Gain under each selector value: the value cached under the previous one is no
// longer Gain's value.
TEST(FeatureBagLoadTest, StoresAndLoadsFeaturesThatTheDeviceSwitchesBySelector) {
    const std::string nodes = R"(
  <Enumeration Name="GainSelector"><Streamable>Yes</Streamable>
    <EnumEntry Name="Red"><Value>0</Value></EnumEntry>
    <EnumEntry Name="Blue"><Value>1</Value></EnumEntry>
    <pValue>GainSelectorReg</pValue><pSelected>Gain</pSelected></Enumeration>
)" + Register("IntReg", "Gain", 0x200, "<Streamable>Yes</Streamable>") +
                              Register("IntReg", "GainSelectorReg", 0x100);
    MapPtr source = LoadXml(Described(nodes));
    BankedPort sourcePort;
    ConnectAll(*source, sourcePort);
    auto set = [](INodeMap& map, const char* name, const char* value) {
        CValuePtr(map.GetNode(name))->FromString(value);
    };
    auto get = [](INodeMap& map, const char* name) -> std::string {
        return CValuePtr(map.GetNode(name))->ToString().c_str();
    };
    set(*source, "GainSelector", "Blue");
    set(*source, "Gain", "7");
    set(*source, "GainSelector", "Red");
    set(*source, "Gain", "3");
    CFeatureBag bag;
    bag.StoreToBag(source.get());
    EXPECT_EQ(Text(bag), std::string(kHeader) + "# \nGainSelector\tRed\nGain\t3\n"
                                                "GainSelector\tBlue\nGain\t7\nGainSelector\tRed\n");

    MapPtr target = LoadXml(Described(nodes));
    BankedPort targetPort;
    ConnectAll(*target, targetPort);
    EXPECT_EQ(get(*target, "Gain"), "0");
    gcstring_vector errors;
    EXPECT_TRUE(bag.LoadFromBag(target.get(), true, &errors));
    EXPECT_EQ(get(*target, "Gain"), "3");
    set(*target, "GainSelector", "Blue");
    EXPECT_EQ(get(*target, "Gain"), "7");
}

// The display form of a float rounds to its precision; the bag keeps the value itself.
TEST(FeatureBagLoadTest, KeepsEveryDigitOfAFloatThatItsDisplayFormRounds) {
    const std::string nodes = R"(
  <FloatReg Name="ExposureTime"><Streamable>Yes</Streamable><Address>0x50</Address>
    <Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Endianess>LittleEndian</Endianess><DisplayPrecision>2</DisplayPrecision></FloatReg>
  <Float Name="Gamma"><Streamable>Yes</Streamable><Value>1</Value></Float>)";
    BagLoad source(nodes);
    source.Set("ExposureTime", "1234.5678");
    source.Set("Gamma", "0.5");
    EXPECT_EQ(source.Get("ExposureTime"), "1.2e+03");
    CFeatureBag bag;
    bag.StoreToBag(&source.Map());
    EXPECT_EQ(Text(bag), std::string(kHeader) + "# \nExposureTime\t1234.5678\nGamma\t0.5\n");
    BagLoad target(nodes);
    EXPECT_TRUE(target.Load(bag.ToString().c_str())) << target.Errors();
    EXPECT_EQ(CFloatPtr(target.Map().GetNode("ExposureTime"))->GetValue(), 1234.5678);
}

// Hand-written files spell values in other ways than the features read them back.
TEST(FeatureBagLoadTest, VerifiesValuesNotTheirSpelling) {
    BagLoad map(R"(
  <Boolean Name="ReverseX"><Streamable>Yes</Streamable><pValue>ReverseXReg</pValue></Boolean>
  <Integer Name="Offset"><Streamable>Yes</Streamable><pValue>OffsetReg</pValue></Integer>
  <Float Name="Rate"><Streamable>Yes</Streamable><Value>0</Value></Float>)" +
                Register("IntReg", "ReverseXReg", 0x60) + Register("IntReg", "OffsetReg", 0x64));
    EXPECT_TRUE(map.Load("ReverseX\ttrue\nOffset\t0x10\nRate\t1e3\n")) << map.Errors();
    EXPECT_EQ(map.Get("ReverseX"), "1");
    EXPECT_EQ(map.Get("Offset"), "16");
    EXPECT_EQ(map.Get("Rate"), "1000");
}

TEST(FeatureBagReaderTest, RejectsStreamsThatAreNoFeatureBags) {
    auto errorOf = [](const std::string& text) -> std::string {
        std::istringstream in(text);
        CFeatureBag bag;
        try {
            in >> bag;
        } catch (const GenICam::RuntimeException& e) {
            return e.GetDescription();
        }
        return "no error";
    };
    EXPECT_EQ(errorOf(""), "The stream is eof");
    EXPECT_EQ(errorOf("# GenApi persistence file (version 3.3.0)\nGain\t1\n"),
              "The stream is not a GenApi feature stream since it is missing the magic GUID in "
              "the first line");
    EXPECT_EQ(errorOf("# {4709CB3C-7322-4460-84C3-DA11DDA09939}\n"),
              "The stream has been created using the CFeatureBagger class thus must be restored "
              "using the CFeatureBagger class as well");
}

// ---------------------------------------------------------------------------------------------
// The persistence round trip over every description of the corpus.
//
// A source map over a port filled with the corpus pattern stores every streamable feature; the
// bag goes through the file format and is loaded, once with validation and once without, into a
// second map over a port whose every byte is zero. Then every streamable value feature that the
// source can read must read the same in that map. The zeroed port also zeroes what no bag
// carries (inquiry, lock and limit registers, read-only values), so a feature may read
// differently for two reasons only, both decided by rules over the description's links and the
// maps, never by names:
//  - invalid in the source: the source's own value fails the description's validation in the
//    source map (outside its limits, off its increment, an entry that is not available), so a
//    load with validation must refuse it. A load without validation writes it as it is, unless a
//    formula it is written through reads the limits of what it writes and fits the value to them;
//  - unrestored input: the feature's value, access mode or limits are computed, through the
//    description's links, from a register that reads differently in the two maps and that no
//    entry of the bag writes (or only entries excused themselves). The rule is checked against a
//    counterfactual: a third map, loaded from the same bag over a port that holds the pattern
//    except in the bytes the bag's loads write, which start zeroed. There every register the bag
//    does not restore has the source's contents, so the feature must read the same; only bits
//    of written bytes that no entry sets (another register's, or those a formula carries over
//    from the register it rewrites) may still differ there.
// The errors each load reports must concern features these rules cover; with validation every
// feature the source holds an invalid value of must be among them.

std::vector<std::string> CorpusDescriptions() {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(ORVAN_GENICAM_XML_DIR)) {
        std::string extension = entry.path().extension().string();
        if (entry.is_regular_file() && (extension == ".xml" || extension == ".zip"))
            files.push_back(entry.path().filename().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string ParameterName(const testing::TestParamInfo<std::string>& info) {
    std::string name;
    for (char c : info.param)
        name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    return name;
}

// The reference implementation could not load the description: its expectation says so.
bool ReferenceFailsToLoad(const std::string& file) {
    std::ifstream expectation(CorpusPath(file) + ".pattern.tsv");
    std::string line;
    while (std::getline(expectation, line))
        if (!line.empty() && line[0] != '#')
            return line.rfind("LOAD_FAILED", 0) == 0;
    return false;
}

const char kException[] = "exception: ";

// A node's value in string form, or the exception reading it throws.
std::string ValueText(INode* node, bool verify = false) {
    try {
        return CValuePtr(node)->ToString(verify).c_str();
    } catch (const GenICam::GenericException& e) {
        return kException + std::string(e.GetDescription());
    }
}

bool IsException(const std::string& text) {
    return text.rfind(kException, 0) == 0;
}

// Streamable value features; commands and categories have no value to store.
bool IsStreamableValue(INode* node) {
    EInterfaceType type = node->GetPrincipalInterfaceType();
    return node->IsStreamable() && dynamic_cast<IValue*>(node) && type != intfICommand &&
           type != intfICategory && type != intfIEnumEntry;
}

// A node that reads a port itself: IntReg, MaskedIntReg, FloatReg, StringReg, Register, ...
bool IsRegister(INode* node) {
    NodeList_t children;
    node->GetChildren(children, ctReadingChildren);
    return std::any_of(children.begin(), children.end(), [](INode* child) {
        return child->GetPrincipalInterfaceType() == intfIPort;
    });
}

// The links of a map as the node map records them: a node depends on another when it has to be
// invalidated as that one changes (its value, address, length, limits, the conditions of its
// implementation, availability and locking, formula variables, entries, selectors).
// Invalidators are left out: they drop a cache but provide no value.
class LinkGraph {
public:
    explicit LinkGraph(INodeMap& map) {
        NodeList_t nodes;
        map.GetNodes(nodes);
        for (INode* node : nodes) {
            NodeList_t dependents;
            node->GetChildren(dependents, ctDependingNodes);
            for (INode* dependent : dependents)
                m_inputs[dependent].insert(node);
        }
        for (INode* node : nodes) {
            NodeList_t invalidators, reading;
            node->GetChildren(invalidators, ctInvalidators);
            node->GetChildren(reading, ctReadingChildren);
            for (INode* invalidator : invalidators)
                if (std::find(reading.begin(), reading.end(), invalidator) == reading.end())
                    m_inputs[node].erase(invalidator);
        }
    }

    // The node and everything it is computed from, nearest first.
    std::vector<INode*> Inputs(INode* node) const {
        std::vector<INode*> order{node};
        std::set<INode*> seen{node};
        for (size_t i = 0; i < order.size(); ++i) {
            auto found = m_inputs.find(order[i]);
            if (found == m_inputs.end())
                continue;
            for (INode* input : found->second)
                if (seen.insert(input).second)
                    order.push_back(input);
        }
        return order;
    }

    // The node and everything writing it writes through (pValue, pValueCopy, ...).
    static std::set<INode*> WrittenThrough(INode* node) {
        std::set<INode*> seen;
        std::vector<INode*> todo{node};
        while (!todo.empty()) {
            INode* current = todo.back();
            todo.pop_back();
            if (!seen.insert(current).second)
                continue;
            NodeList_t children;
            current->GetChildren(children, ctWritingChildren);
            todo.insert(todo.end(), children.begin(), children.end());
        }
        return seen;
    }

private:
    std::map<INode*, std::set<INode*>> m_inputs;
};

std::vector<std::string> EntryNames(const CFeatureBag& bag) {
    std::istringstream text(bag.ToString().c_str());
    std::vector<std::string> names;
    std::string line;
    while (std::getline(text, line))
        if (!line.empty() && line[0] != '#')
            names.push_back(line.substr(0, line.find('\t')));
    return names;
}

// Why the source's own value cannot pass a validated write, or empty when it can.
std::string InvalidInSource(INode* node) {
    std::string verified = ValueText(node, true);
    if (IsException(verified))
        return verified.substr(std::strlen(kException));
    if (node->GetPrincipalInterfaceType() == intfIEnumeration) {
        IEnumEntry* entry = CEnumerationPtr(node)->GetCurrentEntry();
        if (!IsAvailable(entry))
            return "its entry " + std::string(entry->GetSymbolic().c_str()) + " is not available";
    }
    return "";
}

// The nodes one of a node's properties names.
std::set<std::string> Named(INode* node, const char* property) {
    gcstring value, attribute;
    std::set<std::string> names;
    if (node->GetProperty(property, value, attribute)) {
        std::istringstream list(value.c_str());
        for (std::string name; std::getline(list, name, '\t');)
            names.insert(name);
    }
    return names;
}

// A converter on the value's way whose formula reads a limit of a node further on (to round onto
// its increment, say) fits the value to the limits whether or not the write is validated.
bool FittedByFormula(INode* node) {
    std::set<std::string> limits, variables;
    for (INode* written : LinkGraph::WrittenThrough(node)) {
        for (const char* limit : {"pMin", "pMax", "pInc"})
            limits.merge(Named(written, limit));
        if (!Named(written, "FormulaTo").empty())
            variables.merge(Named(written, "pVariable"));
    }
    return std::any_of(variables.begin(), variables.end(),
                       [&](const std::string& variable) { return limits.count(variable); });
}

// Remembers which register bytes were written through it.
class RecordingPort : public MemoryPort {
public:
    using MemoryPort::MemoryPort;
    void Write(const void* buffer, int64_t address, int64_t length) override {
        for (int64_t i = 0; i < length; ++i)
            m_written.insert(
                static_cast<int64_t>(static_cast<uint64_t>(address) + static_cast<uint64_t>(i)));
        MemoryPort::Write(buffer, address, length);
    }
    const std::set<int64_t>& Written() const { return m_written; }

private:
    std::set<int64_t> m_written;
};

// A map of the description over its own port, loaded from the bag.
struct LoadedTarget {
    LoadedTarget(const std::string& file, CFeatureBag& bag, std::unique_ptr<MemoryPort> p,
                 bool verify)
        : map(LoadCorpus(file)), port(std::move(p)) {
        ConnectAll(*map, *port);
        succeeded = bag.LoadFromBag(map.get(), verify, &errors);
    }
    MapPtr map;
    std::unique_ptr<MemoryPort> port;
    gcstring_vector errors;
    bool succeeded = false;
};

// What the compared features read in one target, and which differences the rules excuse.
class Judgement {
public:
    struct Reading {
        std::string actual;
        std::string excuse; // empty: not excused
    };

    // zeroed, for a counterfactual target: the map loaded over zeroed registers.
    Judgement(INodeMap& source, INodeMap& target, const std::vector<std::string>& entries,
              const std::map<std::string, std::string>& expected, bool verify,
              INodeMap* zeroed = nullptr)
        : m_source(source), m_target(target), m_zeroed(zeroed), m_links(target),
          m_expected(expected), m_verify(verify) {
        for (const std::string& entry : entries)
            for (INode* written : LinkGraph::WrittenThrough(target.GetNode(entry.c_str())))
                m_writers[written].insert(entry);
        for (const auto& [name, value] : expected) {
            Reading& reading = m_readings[name];
            reading.actual = ValueText(target.GetNode(name.c_str()));
            std::string why = reading.actual == value ? "" : Invalid(name);
            if (!why.empty())
                reading.excuse = "invalid in the source: " + why;
        }
        // An excused feature leaves the registers it writes unrestored for the features
        // computed from them: repeat until no further excuse follows.
        for (bool changed = true; changed;) {
            changed = false;
            for (auto& [name, reading] : m_readings)
                if (Differs(name) && reading.excuse.empty()) {
                    std::string input = UnrestoredInput(m_target.GetNode(name.c_str()));
                    if (!input.empty()) {
                        reading.excuse = "computed from unrestored " + input;
                        changed = true;
                    }
                }
        }
    }

    bool Differs(const std::string& name) const {
        return m_readings.at(name).actual != m_expected.at(name);
    }
    const Reading& At(const std::string& name) const { return m_readings.at(name); }

    // An error of the load is about a feature that the rules cover, or one whose selector
    // they cover (its entries could not be set under the selector values they were stored
    // with).
    bool Explains(const std::string& name) {
        std::set<INode*> visited;
        return Explains(m_target.GetNode(name.c_str()), visited);
    }

private:
    bool Excused(const std::string& name) const {
        auto found = m_readings.find(name);
        return found != m_readings.end() && !found->second.excuse.empty();
    }

    // Why the source's value cannot be loaded as it is: without validation only a formula on the
    // way refuses it.
    std::string Invalid(const std::string& name) const {
        INode* node = m_source.GetNode(name.c_str());
        return m_verify || FittedByFormula(node) ? InvalidInSource(node) : "";
    }

    // A register the bag does not bring back to the source's contents. In the counterfactual,
    // also a value computed from bits of written registers that their writers carry over
    // (formulas that read the register they write): those bits start zeroed there as in the
    // zeroed map, so such a value, reading as in the zeroed map, is restored in neither.
    bool Unrestored(INode* node) {
        std::string here = ValueText(node);
        if (here == ValueText(m_source.GetNode(node->GetName())))
            return false;
        if (!IsRegister(node) &&
            (!m_zeroed || here != ValueText(m_zeroed->GetNode(node->GetName()))))
            return false;
        const std::set<std::string>& writers = m_writers[node];
        return std::all_of(writers.begin(), writers.end(),
                           [this](const std::string& writer) { return Excused(writer); });
    }

    std::string UnrestoredInput(INode* node) {
        for (INode* input : m_links.Inputs(node))
            if (Unrestored(input))
                return input->GetName().c_str();
        return "";
    }

    bool Explains(INode* node, std::set<INode*>& visited) {
        if (!node || !visited.insert(node).second)
            return false;
        std::string name = node->GetName().c_str();
        if (Excused(name) || !UnrestoredInput(node).empty())
            return true;
        if (m_expected.count(name) && !Invalid(name).empty())
            return true;
        FeatureList_t selecting;
        CSelectorPtr(node)->GetSelectingFeatures(selecting);
        return std::any_of(selecting.begin(), selecting.end(), [&](IValue* selector) {
            return Explains(selector->GetNode(), visited);
        });
    }

    INodeMap& m_source;
    INodeMap& m_target;
    INodeMap* m_zeroed;
    LinkGraph m_links;
    const std::map<std::string, std::string>& m_expected;
    bool m_verify;
    std::map<INode*, std::set<std::string>> m_writers;
    std::map<std::string, Reading> m_readings;
};

std::string ErrorFeature(const gcstring& error) {
    std::string text = error.c_str();
    const std::string prefix = "Feature '";
    if (text.rfind(prefix, 0) != 0)
        return "";
    return text.substr(prefix.size(), text.find('\'', prefix.size()) - prefix.size());
}

// The source map over the pattern, the bag it stores (read back from its file form), and every
// streamable feature the source can read, with its value.
struct StoredSource {
    explicit StoredSource(const std::string& file) : map(LoadCorpus(file)) {
        ConnectAll(*map, port);
        stored.StoreToBag(map.get());
        std::stringstream stream;
        stream << stored;
        stream >> bag;
        entries = EntryNames(bag);
        NodeList_t nodes;
        map->GetNodes(nodes);
        for (INode* node : nodes)
            if (IsStreamableValue(node) && IsReadable(node)) {
                std::string value = ValueText(node);
                if (!IsException(value))
                    expected[node->GetName().c_str()] = value;
            }
    }
    MemoryPort port{MemoryPort::Fill::Pattern};
    MapPtr map;
    CFeatureBag stored, bag;
    std::vector<std::string> entries;
    std::map<std::string, std::string> expected;
};

void RoundTrip(const std::string& file, bool verify) {
    if (ReferenceFailsToLoad(file)) {
        // Nothing to round trip: the description does not load, here as for the reference.
        EXPECT_THROW(LoadCorpus(file), GenICam::GenericException);
        return;
    }
    StoredSource source(file);
    ASSERT_TRUE(source.bag == source.stored);
    CFeatureBag& bag = source.bag;
    const std::vector<std::string>& entries = source.entries;
    const std::map<std::string, std::string>& expected = source.expected;

    LoadedTarget zeroed(file, bag, std::make_unique<RecordingPort>(MemoryPort::Fill::Zero), verify);
    EXPECT_EQ(zeroed.succeeded, zeroed.errors.empty());
    // The counterfactual: the source's register contents, except where the bag's loads write.
    std::set<int64_t> written = static_cast<RecordingPort&>(*zeroed.port).Written();
    {
        MapPtr scratch = LoadCorpus(file);
        RecordingPort recorder(MemoryPort::Fill::Pattern);
        ConnectAll(*scratch, recorder);
        bag.LoadFromBag(scratch.get(), verify);
        written.insert(recorder.Written().begin(), recorder.Written().end());
    }
    auto counterfactualPort = std::make_unique<MemoryPort>(MemoryPort::Fill::Pattern);
    const uint8_t zero = 0;
    for (int64_t address : written)
        counterfactualPort->Write(&zero, address, 1);
    LoadedTarget counterfactual(file, bag, std::move(counterfactualPort), verify);

    Judgement inZeroed(*source.map, *zeroed.map, entries, expected, verify);
    Judgement inCounterfactual(*source.map, *counterfactual.map, entries, expected, verify,
                               zeroed.map.get());
    for (const auto& [name, value] : expected) {
        const Judgement::Reading& z = inZeroed.At(name);
        const Judgement::Reading& c = inCounterfactual.At(name);
        bool zDiffers = inZeroed.Differs(name), cDiffers = inCounterfactual.Differs(name);
        if (zDiffers && z.excuse.empty())
            ADD_FAILURE() << name << " reads '" << z.actual << "' instead of '" << value << "'";
        else if (cDiffers && c.excuse.empty())
            ADD_FAILURE() << name << " reads '" << c.actual << "' instead of '" << value
                          << "' in the counterfactual map (zeroed map: " << z.excuse << ")";
    }

    for (LoadedTarget* target : {&zeroed, &counterfactual}) {
        Judgement& judgement = target == &zeroed ? inZeroed : inCounterfactual;
        std::set<std::string> named;
        for (const gcstring& error : target->errors) {
            std::string feature = ErrorFeature(error);
            named.insert(feature);
            EXPECT_TRUE(judgement.Explains(feature))
                << (target == &zeroed ? "" : "counterfactual map: ") << "load error " << error;
        }
        for (const auto& [name, value] : expected) {
            bool invalid = judgement.At(name).excuse.rfind("invalid", 0) == 0;
            bool inBag = std::find(entries.begin(), entries.end(), name) != entries.end();
            if (verify && judgement.Differs(name) && invalid && inBag) {
                EXPECT_TRUE(named.count(name)) << "no load error for " << name;
            }
        }
    }
}

class FeatureBagRoundTripTest : public testing::TestWithParam<std::string> {};

TEST_P(FeatureBagRoundTripTest, ZeroedMapReadsWhatThePatternMapStored) {
    RoundTrip(GetParam(), true);
}

// Out-of-limit values are written as stored: only the description (an unrestored input, a
// formula fitting the value) may still change what a feature reads.
TEST_P(FeatureBagRoundTripTest, ZeroedMapReadsWhatThePatternMapStoredWithoutValidation) {
    RoundTrip(GetParam(), false);
}

INSTANTIATE_TEST_SUITE_P(Corpus, FeatureBagRoundTripTest, testing::ValuesIn(CorpusDescriptions()),
                         ParameterName);

} // namespace
