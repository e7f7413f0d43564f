#include "FakeDataStream.h"
#include "SpineTestSupport.h"
#include "buffer/ChunkData.h"
#include "buffer/CompressedImageExtendedChunk.h"
#include "buffer/ImageExtendedChunk.h"

#include <Orvan/OrvanApi.h>

#include <gtest/gtest.h>

#include <vector>

using namespace Orvan;

namespace {

void* const kHandle = reinterpret_cast<void*>(0x77);

class BufferFamily : public ::testing::Test {
protected:
    void SetUp() override {
        pixels = std::vector<uint8_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
        stream.values = {
            {GenTL::BUFFER_INFO_BASE, reinterpret_cast<uint64_t>(pixels.data())},
            {GenTL::BUFFER_INFO_SIZE, 12},
            {GenTL::BUFFER_INFO_SIZE_FILLED, 10},
            {GenTL::BUFFER_INFO_DATA_SIZE, 10},
            {GenTL::BUFFER_INFO_IS_INCOMPLETE, 0},
            {GenTL::BUFFER_INFO_FRAMEID, 42},
            {GenTL::BUFFER_INFO_IMAGEPRESENT, 1},
            {GenTL::BUFFER_INFO_PAYLOADTYPE, 1},
            {GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA, 0},
            {GenTL::BUFFER_INFO_DATA_LARGER_THAN_BUFFER, 0},
            {GenTL::BUFFER_INFO_WIDTH, 4},
            {GenTL::BUFFER_INFO_HEIGHT, 2},
            {GenTL::BUFFER_INFO_XOFFSET, 8},
            {GenTL::BUFFER_INFO_YOFFSET, 16},
            {GenTL::BUFFER_INFO_XPADDING, 1},
            {GenTL::BUFFER_INFO_YPADDING, 3},
            {GenTL::BUFFER_INFO_PIXELFORMAT, Mono12Packed},
            {GenTL::BUFFER_INFO_PIXEL_ENDIANNESS, 1},
            {GenTL::BUFFER_INFO_TIMESTAMP_NS, 123456789},
        };
    }

    std::vector<uint8_t> pixels;
    FakeDataStream stream;
};

} // namespace

TEST_F(BufferFamily, PropertiesAreReadOnceThenCached) {
    Image image(&stream, kHandle);
    EXPECT_EQ(image.GetWidth(), 4u);
    EXPECT_EQ(image.GetWidth(), 4u);
    EXPECT_EQ(image.GetData(), pixels.data());
    EXPECT_EQ(image.GetData(), pixels.data());
    EXPECT_EQ(stream.queries, 2);
    EXPECT_EQ(image.GetTimestamp(), 123456789u);
    EXPECT_EQ(image.GetBitsPerPixel(), 12u);
    EXPECT_EQ(image.GetPixelsPerStep(), 2u);
    EXPECT_EQ(image.GetBufferHandle(), kHandle);
}

TEST_F(BufferFamily, FailedReadIsRetriedNextTime) {
    Image image(&stream, kHandle);
    stream.failing = true;
    EXPECT_THROW(image.GetHeight(), GenICam::LogicalErrorException);
    stream.failing = false;
    EXPECT_EQ(image.GetHeight(), 2u);
}

TEST_F(BufferFamily, CompressedIsDecidedByPayloadType) {
    const struct {
        uint64_t payloadType;
        bool compressed;
    } rows[] = {{1, false}, {1000, false}, {1001, true}, {1002, true}, {0x4001, false}};
    for (const auto& row : rows) {
        stream.values[GenTL::BUFFER_INFO_PAYLOADTYPE] = row.payloadType;
        Buffer buffer(&stream, kHandle);
        EXPECT_EQ(buffer.IsCompressedImage(), row.compressed) << row.payloadType;
    }
}

TEST_F(BufferFamily, CastsFollowTheObjectsKind) {
    Buffer buffer(&stream, kHandle);
    Image image(&stream, kHandle);
    ChunkData chunks(&stream, kHandle, nullptr);
    CompressedImage compressed(&stream, kHandle);
    ImageExtendedChunk imageWithChunks(&stream, kHandle, nullptr);
    CompressedImageExtendedChunk compressedWithChunks(&stream, kHandle, nullptr);

    EXPECT_EQ(buffer.AsImage(), nullptr);
    EXPECT_EQ(buffer.AsChunkData(), nullptr);
    EXPECT_EQ(image.AsImage(), static_cast<IImage*>(&image));
    EXPECT_EQ(image.AsChunkData(), nullptr);
    EXPECT_EQ(chunks.AsImage(), nullptr);
    EXPECT_EQ(chunks.AsChunkData(), static_cast<IChunkData*>(&chunks));
    EXPECT_EQ(compressed.AsCompressedImage(), static_cast<ICompressedImage*>(&compressed));
    EXPECT_EQ(compressed.AsImage(), nullptr);
    EXPECT_EQ(imageWithChunks.AsImage(), static_cast<IImage*>(&imageWithChunks));
    EXPECT_EQ(imageWithChunks.AsChunkData(), static_cast<IChunkData*>(&imageWithChunks));
    EXPECT_EQ(imageWithChunks.AsCompressedImage(), nullptr);
    EXPECT_EQ(compressedWithChunks.AsChunkData(), static_cast<IChunkData*>(&compressedWithChunks));
    EXPECT_EQ(compressedWithChunks.AsImage(), nullptr);
    // One shared buffer part: reading through either interface hits the same cache.
    IChunkData* asChunks = imageWithChunks.AsChunkData();
    EXPECT_EQ(asChunks->GetFrameId(), 42u);
    const int queries = stream.queries;
    EXPECT_EQ(imageWithChunks.AsImage()->GetFrameId(), 42u);
    EXPECT_EQ(stream.queries, queries);
}

TEST_F(BufferFamily, VerifyCrcRefusalsNameTheirClass) {
    Buffer buffer(&stream, kHandle);
    Image image(&stream, kHandle);
    ChunkData chunks(&stream, kHandle, nullptr);
    CompressedImage compressed(&stream, kHandle);
    const struct {
        IBuffer* object;
        const char* message;
    } rows[] = {
        {&buffer, "LogicalErrorException: CRC not available. (Buffer, VerifyCRC)"},
        {static_cast<IImage*>(&image), "LogicalErrorException: Chunk data was not enabled before "
                                       "grabbing Image (Image, VerifyCRC)"},
        {static_cast<IChunkData*>(&chunks), "LogicalErrorException: Validating CRC for ChunkData "
                                            "is not supported (ChunkData, VerifyCRC)"},
        {static_cast<ICompressedImage*>(&compressed),
         "LogicalErrorException: Chunk data was not enabled before grabbing CompressedImage "
         "(CompressedImage, VerifyCRC)"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(SpineTest::Message([&] { row.object->VerifyCRC(); }), row.message);
}

TEST_F(BufferFamily, IncompleteImageIsRefusedBeforeLookingForTheCrc) {
    stream.values[GenTL::BUFFER_INFO_IS_INCOMPLETE] = 1;
    ImageExtendedChunk image(&stream, kHandle, nullptr);
    EXPECT_EQ(SpineTest::Message([&] { image.VerifyCRC(); }),
              "LogicalErrorException: Data received is incomplete "
              "(ImageExtendedChunk, VerifyCRC)");
}

TEST_F(BufferFamily, CopyOwnsItsBytesAndNeverAsksTheProducer) {
    stream.values[GenTL::BUFFER_INFO_PAYLOADTYPE] = 0x4001;
    auto* source = new ImageExtendedChunk(&stream, kHandle, nullptr);
    ImageExtendedChunk copy(source);
    delete source;
    const int queries = stream.queries;
    stream.failing = true;
    pixels.assign(pixels.size(), 0);

    EXPECT_EQ(copy.GetStream(), nullptr);
    EXPECT_EQ(copy.GetBufferHandle(), nullptr);
    EXPECT_EQ(std::vector<uint8_t>(copy.GetData(), copy.GetData() + copy.GetSizeOfBuffer()),
              (std::vector<uint8_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    EXPECT_EQ(copy.GetSizeFilled(), 10u);
    EXPECT_EQ(copy.GetPayloadType(), 0x4001u);
    EXPECT_EQ(copy.GetWidth(), 4u);
    EXPECT_EQ(copy.GetHeight(), 2u);
    EXPECT_EQ(copy.GetOffsetY(), 16u);
    EXPECT_EQ(copy.GetPaddingY(), 3u);
    EXPECT_EQ(copy.GetPixelFormat(), uint64_t{Mono12Packed});
    EXPECT_EQ(copy.GetPixelEndianness(), 1u);
    EXPECT_EQ(copy.GetTimestampNs(), 123456789u);
    EXPECT_EQ(copy.GetFrameId(), 42u);
    EXPECT_TRUE(copy.HasImageData());
    EXPECT_EQ(stream.queries, queries);
}

TEST_F(BufferFamily, RejectedChunkLayoutYieldsNoChunkAndNoCrc) {
    // The buffer's last eight bytes announce a chunk longer than the buffer.
    ChunkData chunks(&stream, kHandle, nullptr);
    EXPECT_EQ(chunks.GetChunk("ChunkCRC"), nullptr);
    EXPECT_EQ(chunks.GetChunk("ChunkCRC"), nullptr);
    ImageExtendedChunk image(&stream, kHandle, nullptr);
    EXPECT_EQ(SpineTest::Message([&] { image.VerifyCRC(); }),
              "LogicalErrorException: Cannot read 'ChunkCRC' (ImageExtendedChunk, VerifyCRC)");
}
