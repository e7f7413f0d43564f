#include "FactorySystem.h"
#include "FakeDataStream.h"
#include "SpineTestSupport.h"
#include "buffer/CompressedImageExtendedChunk.h"
#include "buffer/ImageExtendedChunk.h"

#include <Orvan/ImageFactory.h>
#include <Orvan/OrvanApi.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

using namespace Orvan;
using SpineTest::Message;

namespace {

std::string Invalid(const std::string& description, const char* function) {
    return "InvalidArgumentException: " + description + " (ImageFactory, " + function + ")";
}

class ImageFactoryTest : public ::testing::Test {
protected:
    void SetUp() override { system = OpenSystem(); }
    void TearDown() override { CloseSystem(system); }

    ISystem* system = nullptr;
    std::vector<uint8_t> pixels = std::vector<uint8_t>(100, 0x3C);
};

} // namespace

TEST_F(ImageFactoryTest, CreateChecksInOrder) {
    const uint8_t* data = pixels.data();
    const struct {
        const uint8_t* data;
        size_t size, width, height;
        uint64_t format;
        std::string message;
    } rows[] = {
        {nullptr, 0, 0, 0, Mono8, Invalid("Data is null (Create)", "CheckParam")},
        {data, 0, 0, 10, Mono8, Invalid("Param is 0 (Create)", "CheckParam")},
        {data, 100, 0, 0, Mono8, Invalid("Param is 0 (Create)", "CheckParam")},
        {data, 100, 10, 0, Mono8, Invalid("Param is 0 (Create)", "CheckParam")},
        {data, 99, 10, 10, Mono8,
         Invalid("Buffer length 99 does not match expected 100 (Create)", "CheckLen")},
        {data, 100, 10, 10, 0,
         Invalid("Buffer length 100 does not match expected 0 (Create)", "CheckLen")},
        // Packed 12-bit rows of odd width round the expected size down.
        {data, 14, 3, 3, Mono12p,
         Invalid("Buffer length 14 does not match expected 13 (Create)", "CheckLen")},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Message([&] {
                      ImageFactory::Create(row.data, row.size, row.width, row.height, row.format);
                  }),
                  row.message);
    IImage* packed = ImageFactory::Create(data, 13, 3, 3, Mono12p);
    EXPECT_EQ(packed->GetSizeFilled(), 13u);
    ImageFactory::Destroy(packed);
}

TEST_F(ImageFactoryTest, CreateOwnsACopyWithFactoryProperties) {
    IImage* image = ImageFactory::Create(pixels.data(), 100, 10, 10, Mono8);
    pixels.assign(100, 0);
    EXPECT_EQ(std::vector<uint8_t>(image->GetData(), image->GetData() + 100),
              std::vector<uint8_t>(100, 0x3C));
    EXPECT_EQ(image->GetWidth(), 10u);
    EXPECT_EQ(image->GetPixelFormat(), uint64_t{Mono8});
    EXPECT_EQ(image->GetPayloadType(), 1u);
    EXPECT_EQ(image->GetPayloadSize(), 100u);
    EXPECT_EQ(image->GetSizeOfBuffer(), 100u);
    EXPECT_TRUE(image->HasImageData());
    EXPECT_FALSE(image->HasChunkData());
    EXPECT_FALSE(image->IsIncomplete());
    EXPECT_EQ(image->GetTimestamp(), 0u);
    ImageFactory::Destroy(image);
}

TEST_F(ImageFactoryTest, CreateEmptyIsZeroed) {
    IImage* image = ImageFactory::CreateEmpty(8, 2, 2, Mono16);
    EXPECT_EQ(std::vector<uint8_t>(image->GetData(), image->GetData() + 8),
              std::vector<uint8_t>(8, 0));
    EXPECT_EQ(image->GetSizeFilled(), 8u);
    ImageFactory::Destroy(image);
    EXPECT_EQ(Message([] { ImageFactory::CreateEmpty(7, 2, 2, Mono16); }),
              Invalid("Buffer length 7 does not match expected 8 (CreateEmpty)", "CheckLen"));
}

TEST_F(ImageFactoryTest, ShallowLeavesTheCallersMemoryAlone) {
    IImage* view = ImageFactory::Shallow(pixels.data(), 100, 10, 10, Mono8);
    EXPECT_EQ(view->GetData(), pixels.data());
    ImageFactory::Destroy(view);
    EXPECT_EQ(pixels, std::vector<uint8_t>(100, 0x3C));
    EXPECT_EQ(Message([&] { ImageFactory::Shallow(pixels.data(), 100, 10, 0, Mono8); }),
              Invalid("Param is 0 (Shallow)", "CheckParam"));
}

TEST_F(ImageFactoryTest, CopiesOutliveTheirSource) {
    IImage* source = ImageFactory::Create(pixels.data(), 100, 20, 5, Mono8);
    IImage* copy = ImageFactory::Copy(source);
    ImageFactory::Destroy(source);
    EXPECT_EQ(copy->GetWidth(), 20u);
    EXPECT_EQ(copy->GetHeight(), 5u);
    EXPECT_EQ(std::vector<uint8_t>(copy->GetData(), copy->GetData() + 100), pixels);
    ImageFactory::Destroy(copy);
}

TEST_F(ImageFactoryTest, CopyAndDestroyFollowThePayloadType) {
    FakeDataStream stream;
    stream.values = {{GenTL::BUFFER_INFO_BASE, reinterpret_cast<uint64_t>(pixels.data())},
                     {GenTL::BUFFER_INFO_SIZE, 100},
                     {GenTL::BUFFER_INFO_PAYLOADTYPE, 0x4001}};
    for (int32_t cmd = GenTL::BUFFER_INFO_IS_INCOMPLETE;
         cmd <= GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA; ++cmd)
        stream.values.emplace(cmd, 0);
    ImageExtendedChunk delivered(&stream, reinterpret_cast<void*>(0x9), nullptr);
    IImage* copy = ImageFactory::Copy(&delivered);
    EXPECT_NE(dynamic_cast<ImageExtendedChunk*>(copy), nullptr);
    EXPECT_NE(copy->GetData(), pixels.data());
    ImageFactory::Destroy(copy);

    stream.values[GenTL::BUFFER_INFO_PAYLOADTYPE] = 1002;
    CompressedImageExtendedChunk compressed(&stream, reinterpret_cast<void*>(0x9), nullptr);
    ICompressedImage* compressedCopy = ImageFactory::CopyCompressedImage(&compressed);
    EXPECT_NE(dynamic_cast<CompressedImageExtendedChunk*>(compressedCopy), nullptr);
    ImageFactory::DestroyCompressedImage(compressedCopy);

    // Chunk-only buffers cannot be copied.
    stream.values[GenTL::BUFFER_INFO_PAYLOADTYPE] = 4;
    Image chunkOnly(&stream, reinterpret_cast<void*>(0x9));
    EXPECT_EQ(Message([&] { ImageFactory::Copy(&chunkOnly); }),
              Invalid("Unknown payload type", "Copy"));
}

TEST_F(ImageFactoryTest, CopyFailingPartWayLeavesNothingAllocated) {
    // Every buffer property reads, so each copy holds its pixel block by the time it asks for
    // the pixel format, which does not.
    FakeDataStream stream;
    stream.values = {{GenTL::BUFFER_INFO_BASE, reinterpret_cast<uint64_t>(pixels.data())},
                     {GenTL::BUFFER_INFO_SIZE, 100}};
    for (int32_t cmd = GenTL::BUFFER_INFO_IS_INCOMPLETE;
         cmd <= GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA; ++cmd)
        stream.values.emplace(cmd, 0);
    stream.values.erase(GenTL::BUFFER_INFO_PIXELFORMAT);
    void* const handle = reinterpret_cast<void*>(0x9);
    stream.values[GenTL::BUFFER_INFO_PAYLOADTYPE] = 1;
    Image image(&stream, handle);
    EXPECT_THROW(ImageFactory::Copy(&image), GenICam::LogicalErrorException);
    stream.values[GenTL::BUFFER_INFO_PAYLOADTYPE] = 1001;
    CompressedImage compressed(&stream, handle);
    EXPECT_THROW(ImageFactory::CopyCompressedImage(&compressed), GenICam::LogicalErrorException);
}

TEST_F(ImageFactoryTest, DeviceImagesAreRefusedAndStayUsable) {
    FakeDataStream stream;
    stream.values = {{GenTL::BUFFER_INFO_WIDTH, 640}};
    Image delivered(&stream, reinterpret_cast<void*>(0x9));
    EXPECT_EQ(
        Message([&] { ImageFactory::Destroy(&delivered); }),
        Invalid("Failure destroying image because image not from factory (probably due to image "
                "being from device)",
                "Destroy"));
    EXPECT_EQ(delivered.GetWidth(), 640u);
    CompressedImage compressed(&stream, reinterpret_cast<void*>(0x9));
    EXPECT_EQ(
        Message([&] { ImageFactory::DestroyCompressedImage(&compressed); }),
        Invalid("Failure destroying compressed image because compressed image not from factory "
                "(probably due to compressed image being from device)",
                "DestroyCompressedImage"));
    EXPECT_EQ(Message([] { ImageFactory::Destroy(nullptr); }), Invalid("Image is null", "Destroy"));
    EXPECT_EQ(Message([] { ImageFactory::Copy(nullptr); }),
              Invalid("Image is null (Copy)", "CheckParam"));
}

TEST(ImageFactoryClosed, EveryOperationNeedsAnOpenSystem) {
    const std::string never = "RuntimeException: Orvan SDK never initialized, open system "
                              "(Orvan::OpenSystem) to initialize";
    const uint8_t byte = 1;
    const struct {
        std::function<void()> operation;
        std::string message;
    } rows[] = {
        {[&] { ImageFactory::Create(&byte, 1, 1, 1, Mono8); },
         never + " (Create) (ImageFactory, CheckInit)"},
        {[] { ImageFactory::CreateEmpty(1, 1, 1, Mono8); },
         never + " (CreateEmpty) (ImageFactory, CheckInit)"},
        {[&] { ImageFactory::Shallow(&byte, 1, 1, 1, Mono8); },
         never + " (Shallow) (ImageFactory, CheckInit)"},
        {[] { ImageFactory::Copy(nullptr); }, never + " (Copy) (ImageFactory, CheckInit)"},
        {[] { ImageFactory::CopyCompressedImage(nullptr); },
         never + " (CopyCompressedImage) (ImageFactory, CheckInit)"},
        {[] { ImageFactory::Destroy(nullptr); }, never + " (ImageFactory, Destroy)"},
        {[] { ImageFactory::DestroyCompressedImage(nullptr); },
         never + " (ImageFactory, DestroyCompressedImage)"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Message(row.operation), row.message);
}
