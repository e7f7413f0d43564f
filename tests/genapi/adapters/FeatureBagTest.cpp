// Feature bags: the persistence file format, its reader's errors, selector-aware storing and a
// round trip through a file on real camera descriptions.
#include "AdapterTestSupport.h"
#include "MemoryPort.h"

#include <gtest/gtest.h>

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

// Remembers which register bytes were written through it.
class RecordingPort : public MemoryPort {
public:
    using MemoryPort::MemoryPort;
    void Write(const void* buffer, int64_t address, int64_t length) override {
        for (int64_t i = 0; i < length; ++i)
            m_written.insert(address + i);
        MemoryPort::Write(buffer, address, length);
    }
    const std::set<int64_t>& Written() const { return m_written; }

private:
    std::set<int64_t> m_written;
};

// Stores every streamable feature of a map over the corpus pattern and loads the file into a
// map whose feature registers hold zeros. Only those are zeroed: the registers that make a
// feature available or writable keep the pattern, or the two maps would not offer the same
// features. Which registers hold features is learnt by loading the bag once into a scratch map.
// Storing the loaded map again must give the same bag: every streamable feature, under every
// selector value walked, reads the same.
class FeatureBagRoundTripTest : public testing::TestWithParam<const char*> {};

TEST_P(FeatureBagRoundTripTest, ZeroedFeaturesReadWhatThePatternMapStored) {
    MapPtr source = LoadCorpus(GetParam());
    MemoryPort pattern(MemoryPort::Fill::Pattern);
    ConnectAll(*source, pattern);
    CFeatureBag stored;
    ASSERT_GT(stored.StoreToBag(source.get()), 0);
    std::stringstream file;
    file << stored;

    MapPtr scratch = LoadCorpus(GetParam());
    RecordingPort recorder(MemoryPort::Fill::Pattern);
    ConnectAll(*scratch, recorder);
    stored.LoadFromBag(scratch.get(), false);
    MapPtr target = LoadCorpus(GetParam());
    MemoryPort zeroed(MemoryPort::Fill::Pattern);
    for (int64_t address : recorder.Written()) {
        const uint8_t zero = 0;
        zeroed.Write(&zero, address, 1);
    }
    ConnectAll(*target, zeroed);
    CFeatureBag before;
    before.StoreToBag(target.get());
    ASSERT_NE(Text(before), Text(stored)) << "zeroing changed no feature";

    CFeatureBag loaded;
    file >> loaded;
    EXPECT_TRUE(loaded == stored);
    gcstring_vector errors;
    loaded.LoadFromBag(target.get(), false, &errors);
    for (const gcstring& error : errors)
        ADD_FAILURE() << error;
    CFeatureBag reread;
    reread.StoreToBag(target.get());
    EXPECT_EQ(Text(reread), Text(stored));
}

INSTANTIATE_TEST_SUITE_P(Corpus, FeatureBagRoundTripTest,
                         testing::Values("basler_aca1920-40gm_ace_gige.xml",
                                         "basler_a2a2600-20gmbas_ace2_gige.xml",
                                         "basler_pia640-210gm_pilot_gige.xml",
                                         "flir_blackflys_bfs-pge-23s6c_gige.xml",
                                         "stemmerimaging_fgi_sony-cvc-eh6300.xml"));

} // namespace
