// Feature files against a virtual camera: settings saved, the camera reset, the settings loaded
// back; selections refused before anything is written; the three files the reader refuses.
#include "DeviceTestSupport.h"

#include <Orvan/FeatureStream.h>

#include <GenApi/IDestroy.h>
#include <GenApi/IValue.h>
#include <GenApi/NodeMapFactory.h>
#include <GenApi/Persistence.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include <unistd.h>

namespace {

using GenICam::gcstring;
using Orvan::FeatureStream;
using Orvan::GetNodeValue;
using Orvan::SetNodeValue;

const std::string kHeader = "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n"
                            "# GenApi persistence file (version 3.3.0)\n"
                            "# \n";

std::string Refusal(const std::string& name) {
    return "LogicalErrorException: Selected feature " + name +
           " not streamable (FeatureStream, Select)";
}

std::string Contents(const std::string& path) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

class FeatureStreamTest : public DeviceTest::DeviceFixture {
protected:
    void SetUp() override {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "orvan-features-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        scratch = pattern;
    }

    void TearDown() override {
        DeviceFixture::TearDown();
        std::error_code ignored;
        std::filesystem::remove_all(scratch, ignored);
    }

    std::string Path(const char* name) const { return (scratch / name).string(); }

    static void Put(const std::string& path, const std::string& text) {
        std::ofstream(path) << text;
    }

    // A feature's string form, as the file holds it.
    static std::string Text(GenApi::INodeMap* nodeMap, const char* name) {
        return dynamic_cast<GenApi::IValue*>(nodeMap->GetNode(name))->ToString().str();
    }

    static bool ChunkEnabled(GenApi::INodeMap* nodeMap, const char* chunk) {
        SetNodeValue<gcstring>(nodeMap, "ChunkSelector", chunk);
        return GetNodeValue<bool>(nodeMap, "ChunkEnable");
    }

    static void EnableChunk(GenApi::INodeMap* nodeMap, const char* chunk, bool enable) {
        SetNodeValue<gcstring>(nodeMap, "ChunkSelector", chunk);
        SetNodeValue<bool>(nodeMap, "ChunkEnable", enable);
    }

    // Every value the whole-map save would store, selector walks included, in file form.
    static std::string WholeMap(GenApi::INodeMap* nodeMap) {
        GenApi::CFeatureBag bag;
        bag.StoreToBag(nodeMap);
        return bag.ToString().str();
    }

    std::filesystem::path scratch;
};

// Whole-map save: settings across categories, the chunk switches under ChunkSelector and the
// trigger settings under TriggerSelector come back after DeviceReset has restored the defaults.
TEST_F(FeatureStreamTest, WholeMapComesBackAfterDeviceReset) {
    Open({"Mono"});
    GenApi::INodeMap* nodeMap = Create()->GetNodeMap();
    SetNodeValue<int64_t>(nodeMap, "OffsetX", 16);
    SetNodeValue<gcstring>(nodeMap, "PixelFormat", "Mono12");
    SetNodeValue<bool>(nodeMap, "ReverseY", true);
    SetNodeValue<gcstring>(nodeMap, "TestPattern", "ColorBar");
    SetNodeValue<gcstring>(nodeMap, "AcquisitionMode", "MultiFrame");
    SetNodeValue<int64_t>(nodeMap, "AcquisitionFrameCount", 7);
    SetNodeValue<double>(nodeMap, "Gain", 6.5);
    SetNodeValue<double>(nodeMap, "Gamma", 0.5);
    SetNodeValue<gcstring>(nodeMap, "TriggerSelector", "FrameStart");
    SetNodeValue<gcstring>(nodeMap, "TriggerMode", "On");
    SetNodeValue<gcstring>(nodeMap, "TriggerSource", "Line0");
    SetNodeValue<bool>(nodeMap, "ChunkModeActive", true);
    EnableChunk(nodeMap, "Timestamp", false);
    EnableChunk(nodeMap, "FrameID", false);
    SetNodeValue<gcstring>(nodeMap, "ChunkSelector", "Gain");
    const std::string saved = WholeMap(nodeMap);

    FeatureStream(nodeMap).Write(Path("camera.txt"));

    const std::string file = Contents(Path("camera.txt"));
    ASSERT_EQ(file.compare(0, kHeader.size(), kHeader), 0) << file;
    EXPECT_EQ(file.substr(kHeader.size()), saved.substr(kHeader.size()));
    for (const char* line :
         {"\nWidth\t64\n", "\nGain\t6.5\n", "\nTriggerMode\tOn\n",
          "\nChunkSelector\tTimestamp\nChunkEnable\t0\n",
          "\nChunkSelector\tFrameID\nChunkEnable\t0\n", "\nChunkSelector\tImage\nChunkEnable\t1\n"})
        EXPECT_NE(file.find(line), std::string::npos) << line;
    // Commands, read-only and non-streamable features have no line.
    for (const char* absent : {"\nDeviceReset\t", "\nAcquisitionStart\t", "\nPayloadSize\t",
                               "\nDeviceTemperature\t", "\nChunkEnableMask\t"})
        EXPECT_EQ(file.find(absent), std::string::npos) << absent;

    Orvan::ExecuteNode(nodeMap, "DeviceReset");
    SetNodeValue<gcstring>(nodeMap, "ChunkSelector", "Image");
    ASSERT_EQ(GetNodeValue<int64_t>(nodeMap, "Width"), 1280);
    ASSERT_EQ(GetNodeValue<double>(nodeMap, "Gain"), 0.0);
    ASSERT_EQ(GetNodeValue<gcstring>(nodeMap, "TriggerMode"), "Off");
    ASSERT_TRUE(ChunkEnabled(nodeMap, "Timestamp"));
    ASSERT_NE(WholeMap(nodeMap), saved);

    FeatureStream(nodeMap).Read(Path("camera.txt"));

    // The selector is left where it was saved.
    EXPECT_EQ(GetNodeValue<gcstring>(nodeMap, "ChunkSelector"), "Gain");
    // Every feature of the whole-map save, under every selector value, has its value back.
    EXPECT_EQ(WholeMap(nodeMap), saved);
}

// A selection saves exactly the selected features, in selection order, with the values they
// had when selected; they come back after the default user set has been loaded.
TEST_F(FeatureStreamTest, SelectedFeaturesComeBackAfterUserSetLoad) {
    Open({"Mono"});
    GenApi::INodeMap* nodeMap = Create()->GetNodeMap();
    SetNodeValue<double>(nodeMap, "Gain", 12.25);
    SetNodeValue<gcstring>(nodeMap, "TriggerMode", "On");
    EnableChunk(nodeMap, "Timestamp", false);

    FeatureStream stream(nodeMap);
    stream << "Gain"
           << "TriggerMode";
    stream.Select("ChunkSelector");
    stream.Select("ChunkEnable");
    stream << "Width";
    const std::string expected = kHeader + "Gain\t" + Text(nodeMap, "Gain") +
                                 "\nTriggerMode\tOn\nChunkSelector\tTimestamp\nChunkEnable\t" +
                                 Text(nodeMap, "ChunkEnable") + "\nWidth\t64\n";
    // Changes after the selection are not saved.
    SetNodeValue<double>(nodeMap, "Gain", 3.0);
    SetNodeValue<int64_t>(nodeMap, "Width", 128);
    stream.Write(Path("selected.txt"));
    EXPECT_EQ(Contents(Path("selected.txt")), expected);
    // Writing again gives the same file: the whole map is not gathered.
    stream.Write(Path("selected.txt"));
    EXPECT_EQ(Contents(Path("selected.txt")), expected);
    // A file that cannot be created is passed over.
    EXPECT_NO_THROW(stream.Write(Path("no-such-directory/selected.txt")));
    EXPECT_FALSE(std::filesystem::exists(Path("no-such-directory")));

    SetNodeValue<gcstring>(nodeMap, "UserSetSelector", "Default");
    Orvan::ExecuteNode(nodeMap, "UserSetLoad");
    SetNodeValue<gcstring>(nodeMap, "ChunkSelector", "CRC");
    ASSERT_EQ(GetNodeValue<double>(nodeMap, "Gain"), 0.0);
    ASSERT_EQ(GetNodeValue<gcstring>(nodeMap, "TriggerMode"), "Off");
    ASSERT_TRUE(ChunkEnabled(nodeMap, "Timestamp"));
    ASSERT_EQ(GetNodeValue<int64_t>(nodeMap, "Width"), 1280);

    // Any stream reads a file, whatever it selected.
    FeatureStream(nodeMap).Read(Path("selected.txt"));

    EXPECT_EQ(GetNodeValue<double>(nodeMap, "Gain"), 12.25);
    EXPECT_EQ(GetNodeValue<gcstring>(nodeMap, "TriggerMode"), "On");
    EXPECT_EQ(GetNodeValue<gcstring>(nodeMap, "ChunkSelector"), "Timestamp");
    EXPECT_FALSE(GetNodeValue<bool>(nodeMap, "ChunkEnable"));
    EXPECT_EQ(GetNodeValue<int64_t>(nodeMap, "Width"), 64);
    // Unselected features keep the user set's values.
    EXPECT_TRUE(ChunkEnabled(nodeMap, "FrameID"));
    EXPECT_EQ(GetNodeValue<int64_t>(nodeMap, "Height"), 960);
}

// Commands, unknown names, categories and features that are not streamable are refused with one
// message before anything reaches the bag or a file.
TEST_F(FeatureStreamTest, SelectRefusesWhatIsNotAStreamableValue) {
    Open({"Mono"});
    GenApi::INodeMap* nodeMap = Create()->GetNodeMap();
    for (const char* name :
         {"DeviceReset", "UserSetLoad", "NoSuchFeature", "", "AcquisitionControl", "PayloadSize",
          "DeviceTemperature", "DeviceUserID"}) {
        FeatureStream stream(nodeMap);
        EXPECT_EQ(SpineTest::Message([&] { stream.Select(name); }), Refusal(name));
    }
    // The command was not executed: the camera keeps its settings.
    EXPECT_EQ(GetNodeValue<int64_t>(nodeMap, "Width"), 64);

    // A chained selection stops at the refused name; nothing is written.
    FeatureStream chained(nodeMap);
    EXPECT_THROW(
        {
            chained << "Gain"
                    << "DeviceReset"
                    << "Width";
            chained.Write(Path("chained.txt"));
        },
        GenICam::LogicalErrorException);
    EXPECT_FALSE(std::filesystem::exists(Path("chained.txt")));
    EXPECT_THROW(chained << "NoSuchFeature", GenICam::LogicalErrorException);
    // What was selected before the refusals is all the stream holds.
    chained.Write(Path("chained.txt"));
    EXPECT_EQ(Contents(Path("chained.txt")), kHeader + "Gain\t" + Text(nodeMap, "Gain") + "\n");

    // A refused first selection leaves the stream saving the whole map.
    FeatureStream whole(nodeMap);
    EXPECT_THROW(whole.Select("TriggerSoftware"), GenICam::LogicalErrorException);
    whole.Write(Path("whole.txt"));
    EXPECT_EQ(Contents(Path("whole.txt")), WholeMap(nodeMap));
}

// A description may mark a command streamable; it is refused all the same, and a category too.
TEST(FeatureStreamDescription, SelectRefusesCommandsMarkedStreamable) {
    const std::string xml = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Streams" VendorName="Test" StandardNameSpace="None"
    SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0"
    MajorVersion="1" MinorVersion="0" SubMinorVersion="0" ToolTip="" ProductGuid="" VersionGuid=""
    xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Category Name="Root"><Streamable>Yes</Streamable><pFeature>Go</pFeature>
    <pFeature>Level</pFeature></Category>
  <Command Name="Go"><Streamable>Yes</Streamable><Value>0</Value><CommandValue>1</CommandValue>
    </Command>
  <Integer Name="Level"><Streamable>Yes</Streamable><Value>5</Value></Integer>
</RegisterDescription>
)";
    GenApi::CNodeMapFactory factory(GenApi::ContentType_Xml, xml.data(), xml.size());
    std::unique_ptr<GenApi::INodeMap, void (*)(GenApi::INodeMap*)> nodeMap(
        factory.CreateNodeMap("Device"),
        [](GenApi::INodeMap* map) { dynamic_cast<GenApi::IDestroy*>(map)->Destroy(); });
    ASSERT_TRUE(nodeMap->GetNode("Go")->IsStreamable());
    FeatureStream stream(nodeMap.get());
    for (const char* name : {"Go", "Root"})
        EXPECT_EQ(SpineTest::Message([&] { stream.Select(name); }), Refusal(name));
    stream.Select("Level");
    const std::string path = testing::TempDir() + "orvan-streams-" + std::to_string(getpid());
    stream.Write(path);
    EXPECT_EQ(Contents(path), kHeader + "Level\t5\n");
    std::filesystem::remove(path);
}

// Empty, foreign and bagger files are refused with the reader's messages, and nothing of them
// reaches the camera.
TEST_F(FeatureStreamTest, ReaderRefusesEmptyForeignAndBaggerFiles) {
    Open({"Mono"});
    GenApi::INodeMap* nodeMap = Create()->GetNodeMap();
    Put(Path("empty.txt"), "");
    Put(Path("foreign.txt"), "# GenApi persistence file (version 3.3.0)\nWidth\t128\n");
    Put(Path("bagger.txt"), "# {4709CB3C-7322-4460-84C3-DA11DDA09939}\nWidth\t128\n");
    struct Case {
        std::string file;
        const char* message;
    };
    const Case cases[] = {
        {Path("empty.txt"), "The stream is eof"},
        // A file that cannot be opened reads as an empty one.
        {Path("missing.txt"), "The stream is eof"},
        {Path("foreign.txt"), "The stream is not a GenApi feature stream since it is missing the "
                              "magic GUID in the first line"},
        {Path("bagger.txt"), "The stream has been created using the CFeatureBagger class thus "
                             "must be restored using the CFeatureBagger class as well"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(SpineTest::Message([&] { FeatureStream(nodeMap).Read(c.file); }), c.message);
    EXPECT_EQ(GetNodeValue<int64_t>(nodeMap, "Width"), 64);

    // Comments after the first line are skipped; a feature that cannot be set is passed over
    // and the ones after it are still loaded.
    Put(Path("hand.txt"), kHeader + "# a comment\nNoSuchFeature\t1\nPayloadSize\t5\nWidth\t96\n"
                                    "TestPattern\tNoSuchPattern\nGain\t2\n");
    EXPECT_NO_THROW(FeatureStream(nodeMap).Read(Path("hand.txt")));
    EXPECT_EQ(GetNodeValue<int64_t>(nodeMap, "Width"), 96);
    EXPECT_EQ(GetNodeValue<double>(nodeMap, "Gain"), 2.0);
    EXPECT_EQ(GetNodeValue<gcstring>(nodeMap, "TestPattern"), "Off");
}

} // namespace
