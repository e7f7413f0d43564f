// Loading descriptions: plain and zipped, damaged ones, and what the factory does with them.
#include "GenApiTestSupport.h"

#include <gtest/gtest.h>
#include <zip.h>

#include <memory>

using namespace GenApi;
using genapitest::Describe;
using genapitest::IntReg;

namespace {

std::string LoadError(const std::string& xml) {
    try {
        CNodeMapFactory factory(ContentType_Auto, xml.data(), xml.size());
        std::unique_ptr<INodeMap, void (*)(INodeMap*)> map(
            factory.CreateNodeMap(), [](INodeMap* m) { dynamic_cast<IDestroy*>(m)->Destroy(); });
    } catch (const GenICam::RuntimeException& e) {
        return e.GetDescription();
    }
    return "loaded";
}

// A zip archive in memory holding the given files.
std::string Zip(const std::vector<std::pair<std::string, std::string>>& files) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* buffer = zip_source_buffer_create(nullptr, 0, 0, &error);
    zip_t* archive = zip_open_from_source(buffer, ZIP_TRUNCATE, &error);
    zip_source_keep(buffer);
    for (const auto& file : files) {
        zip_source_t* content =
            zip_source_buffer(archive, file.second.data(), file.second.size(), 0);
        zip_file_add(archive, file.first.c_str(), content, ZIP_FL_OVERWRITE);
    }
    zip_close(archive);
    zip_source_open(buffer);
    zip_source_seek(buffer, 0, SEEK_END);
    zip_int64_t size = zip_source_tell(buffer);
    zip_source_seek(buffer, 0, SEEK_SET);
    std::string bytes(static_cast<size_t>(size), '\0');
    zip_source_read(buffer, bytes.data(), static_cast<zip_uint64_t>(size));
    zip_source_close(buffer);
    zip_source_free(buffer);
    zip_error_fini(&error);
    return bytes;
}

} // namespace

struct DamagedCase {
    const char* name;
    std::string xml;
    const char* mentions;
};

class DamagedDescriptions : public ::testing::TestWithParam<DamagedCase> {};

TEST_P(DamagedDescriptions, FailWithAnExceptionNamingTheProblemAndLine) {
    std::string error = LoadError(GetParam().xml);
    EXPECT_NE(error.find(GetParam().mentions), std::string::npos) << error;
}

INSTANTIATE_TEST_SUITE_P(
    Loader, DamagedDescriptions,
    ::testing::Values(
        DamagedCase{"Truncated", Describe(IntReg("Reg", 0)).substr(0, 200), "line 2"},
        DamagedCase{"TextInFront", "camera 12\n" + Describe(""), "line 1"},
        DamagedCase{"DeclarationNotFirst", "<!-- c -->\n" + Describe(""), "declaration"},
        DamagedCase{"UnknownReference",
                    Describe("<Integer Name=\"A\">\n<pValue>Nowhere</pValue></Integer>"),
                    "'Nowhere'"},
        DamagedCase{"DuplicateName", Describe(IntReg("A", 0) + "\n" + IntReg("A", 4)),
                    "defined twice"},
        DamagedCase{"BadFormula",
                    Describe("<IntSwissKnife Name=\"K\">\n<Formula>1 +</Formula>"
                             "</IntSwissKnife>"),
                    "line 5"},
        DamagedCase{"UnknownKind", Describe("<Gizmo Name=\"G\"/>"), "<Gizmo>"},
        DamagedCase{"WrongRoot", "<?xml version=\"1.0\"?><Other/>", "RegisterDescription"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Loader, ZippedDescriptionsIgnoreResourceForks) {
    std::string zip = Zip(
        {{"camera.xml", Describe(IntReg("Reg", 0))}, {"__MACOSX/._camera.xml", "not xml at all"}});
    CNodeMapRef ref;
    ref._LoadXMLFromZIPData(zip.data(), zip.size());
    EXPECT_NE(ref._GetNode("Reg"), nullptr);

    CNodeMapFactory automatic(ContentType_Auto, zip.data(), zip.size());
    INodeMap* map = automatic.CreateNodeMap();
    EXPECT_EQ(map->GetDeviceName(), "Device");
    dynamic_cast<IDestroy*>(map)->Destroy();

    std::string two = Zip({{"a.xml", Describe("")}, {"b.xml", Describe("")}});
    EXPECT_NE(LoadError(two).find("more than one"), std::string::npos);
    EXPECT_NE(LoadError(std::string("PK\x03\x04garbage", 11)).find("zip"), std::string::npos);
}

TEST(Loader, NodeMapRefLoadsOnceAndSharesItsMap) {
    CNodeMapRef ref;
    EXPECT_THROW(ref._GetNode("Reg"), GenICam::AccessException);
    ref._LoadXMLFromString(Describe(IntReg("Reg", 0)).c_str());
    EXPECT_THROW(ref._LoadXMLFromString(Describe("").c_str()), GenICam::RuntimeException);
    CNodeMapRef copy = ref;
    ref._Destroy();
    EXPECT_NE(copy._GetNode("Reg"), nullptr);
    NodeList_t nodes;
    copy._GetNodes(nodes);
    EXPECT_EQ(nodes.size(), 2u); // the port and the register
}

TEST(Factory, ExtractsSubtreesAndWritesXmlBack) {
    std::string xml = Describe(IntReg("Reg", 0) + R"(
        <Category Name="ChunkDataControl"><pFeature>ChunkValue</pFeature></Category>
        <Integer Name="ChunkValue"><pValue>Reg</pValue></Integer>
        <Integer Name="Unrelated"><Value>1</Value></Integer>)");
    CNodeMapFactory factory(ContentType_Xml, xml.data(), xml.size());
    EXPECT_FALSE(factory.IsPreprocessed());
    factory.Preprocess();
    EXPECT_TRUE(factory.IsPreprocessed());

    CNodeMapFactory chunk = factory.ExtractSubtree("ChunkDataControl");
    INodeMap* map = chunk.CreateNodeMap("Chunk");
    EXPECT_NE(map->GetNode("ChunkValue"), nullptr);
    EXPECT_NE(map->GetNode("Device"), nullptr);
    EXPECT_EQ(map->GetNode("Unrelated"), nullptr);
    dynamic_cast<IDestroy*>(map)->Destroy();
    EXPECT_THROW(factory.ExtractSubtree("Missing"), GenICam::RuntimeException);

    factory.ReleaseCameraDescriptionFileData();
    gcstring text = factory.ToXml();
    CNodeMapRef again;
    again._LoadXMLFromString(text);
    EXPECT_NE(again._GetNode("Unrelated"), nullptr);
}
