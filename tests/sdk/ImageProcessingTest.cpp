#include "ProcessingTestSupport.h"

#include <random>

using namespace Orvan;

namespace {

struct CompressedDeleter {
    void operator()(ICompressedImage* image) const { ImageFactory::DestroyCompressedImage(image); }
};
using CompressedPtr = std::unique_ptr<ICompressedImage, CompressedDeleter>;

class ImageProcessing : public WithOpenSystem {};

std::vector<uint8_t> Gradient(size_t bytes) {
    std::mt19937 random(4);
    std::vector<uint8_t> pixels(bytes);
    for (size_t i = 0; i < bytes; ++i)
        pixels[i] = uint8_t(i / 7 + (random() % 3 == 0 ? random() : 0));
    return pixels;
}

// A compressed image over test-owned bytes, as a device would deliver them.
class CorruptStream : public ICompressedImage {
public:
    explicit CorruptStream(std::vector<uint8_t> bytes) : m_bytes(std::move(bytes)) {}
    const uint8_t* GetData() override { return m_bytes.data(); }
    size_t GetSizeFilled() override { return m_bytes.size(); }
    size_t GetPayloadSize() override { return m_bytes.size(); }
    size_t GetSizeOfBuffer() override { return m_bytes.size(); }
    uint64_t GetFrameId() override { return 0; }
    size_t GetPayloadType() override { return 1001; }
    bool HasImageData() override { return true; }
    bool HasChunkData() override { return false; }
    bool IsCompressedImage() override { return true; }
    IImage* AsImage() override { return nullptr; }
    IChunkData* AsChunkData() override { return nullptr; }
    ICompressedImage* AsCompressedImage() override { return this; }
    bool IsIncomplete() override { return false; }
    bool DataLargerThanBuffer() override { return false; }
    bool VerifyCRC() override { return false; }
    uint64_t GetPixelFormat() override { return QOI_RGB8; }
    uint64_t GetTimestamp() override { return 0; }
    uint64_t GetTimestampNs() override { return 0; }

private:
    std::vector<uint8_t> m_bytes;
};

FactoryImagePtr Decompressed(ICompressedImage* image) {
    return FactoryImagePtr(ImageFactory::Decompress(image));
}

} // namespace

TEST_F(ImageProcessing, CompressionRoundTripsEveryQoiFormat) {
    const struct {
        uint64_t plain, compressed;
    } rows[] = {
        {Mono8, QOI_Mono8},       {BayerGR8, QOI_BayerGR8}, {BayerRG8, QOI_BayerRG8},
        {BayerGB8, QOI_BayerGB8}, {BayerBG8, QOI_BayerBG8}, {RGB8, QOI_RGB8},
        {BGR8, QOI_BGR8},         {YCbCr8, QOI_YCbCr8},     {YCbCr8_CbYCr, QOI_YCbCr8_CbYCr}};
    for (const auto& row : rows) {
        const std::vector<uint8_t> pixels = Gradient(37 * 11 * GetBitsPerPixel(row.plain) / 8);
        auto image = MakeImage(pixels, 37, 11, row.plain);
        CompressedPtr compressed(ImageFactory::Compress(image.get(), row.compressed));
        EXPECT_EQ(compressed->GetPixelFormat(), row.compressed);
        EXPECT_EQ(compressed->GetPayloadType(), 1001u);
        FactoryImagePtr back = Decompressed(compressed.get());
        EXPECT_EQ(back->GetPixelFormat(), row.plain);
        EXPECT_EQ(back->GetWidth(), 37u);
        EXPECT_EQ(back->GetHeight(), 11u);
        EXPECT_EQ(PixelsOf(back.get()), pixels) << row.compressed;
    }
}

TEST_F(ImageProcessing, CorruptOrTruncatedStreamsAreRefused) {
    auto image = MakeImage(Gradient(64 * 8 * 3), 64, 8, RGB8);
    CompressedPtr compressed(ImageFactory::Compress(image.get(), QOI_RGB8));
    const std::vector<uint8_t> stream(compressed->GetData(),
                                      compressed->GetData() + compressed->GetSizeFilled());
    std::vector<uint8_t> bigger = stream;
    bigger[4] = 0x7F; // the width claims far more pixels than the bytes describe
    for (const std::vector<uint8_t>& bytes :
         {std::vector<uint8_t>(stream.begin(), stream.end() - 9), bigger,
          std::vector<uint8_t>(stream.size(), 0)}) {
        CorruptStream corrupt(bytes);
        ExpectInvalid([&] { Decompressed(&corrupt); },
                      "Compressed data is corrupt or truncated: not a complete QOI_RGB8 stream "
                      "(Decompress)",
                      "Decompress");
    }
    ExpectInvalid([&] { ImageFactory::Compress(image.get(), QOI_BGR8); },
                  "Compression of RGB8 to QOI_BGR8 not supported (Compress)", "Compress");
    ExpectInvalid([] { ImageFactory::Decompress(nullptr); }, "Image is null (Decompress)",
                  "CheckParam");
}

TEST_F(ImageProcessing, SelectBitsIsAWindowOfEverySample) {
    const struct {
        uint64_t source;
        std::vector<uint8_t> pixel;
        size_t lowestBit;
        uint64_t target;
        std::vector<uint8_t> expected;
    } rows[] = {
        {Mono12, {0xCD, 0x0A}, 0, Mono8, {0xCD}},
        {Mono12, {0xCD, 0x0A}, 4, Mono8, {0xAC}},
        {BayerGB10, {0xFF, 0x02}, 2, BayerGB8, {0xBF}},
        {Mono12p, {0x21, 0x43, 0x65}, 4, Mono8, {0x32, 0x65}},
        {BGR16, {0x00, 0x12, 0x00, 0x34, 0x00, 0x56}, 8, BGR8, {0x12, 0x34, 0x56}},
    };
    for (const auto& row : rows) {
        const size_t width = row.source == Mono12p ? 2 : 1;
        auto image = MakeImage(row.pixel, width, 1, row.source);
        FactoryImagePtr window(ImageFactory::SelectBits(image.get(), row.lowestBit));
        EXPECT_EQ(window->GetPixelFormat(), row.target);
        EXPECT_EQ(PixelsOf(window.get()), row.expected) << row.source;
    }
    auto mono12 = MakeImage({0, 0}, 1, 1, Mono12);
    ExpectInvalid([&] { ImageFactory::SelectBits(mono12.get(), 5); },
                  "Lowest bit 5 leaves fewer than 8 of the 12 bits of Mono12 (SelectBits)",
                  "SelectBits");
    auto mono8 = MakeImage({0}, 1, 1, Mono8);
    ExpectInvalid([&] { ImageFactory::SelectBits(mono8.get(), 0); },
                  "SelectBits not supported for Mono8 (SelectBits)", "SelectBits");
}

TEST_F(ImageProcessing, DeinterleaveSplitsEachFamilyInChannelOrder) {
    const struct {
        uint64_t source;
        size_t width;
        std::vector<uint8_t> pixels;
        uint64_t channelFormat;
        size_t channelWidth;
        std::vector<std::vector<uint8_t>> channels;
    } rows[] = {
        {PolarizedAngles_0d_45d_90d_135d_Mono8,
         2,
         {1, 2, 3, 4, 5, 6, 7, 8},
         Mono8,
         2,
         {{1, 5}, {2, 6}, {3, 7}, {4, 8}}},
        {PolarizedAngles_0d_45d_90d_135d_BayerRG8,
         1,
         {9, 8, 7, 6},
         BayerRG8,
         1,
         {{9}, {8}, {7}, {6}}},
        // Samples 0x001 to 0x004 and 0x101 to 0x104, packed two to three bytes.
        {PolarizedAngles_0d_45d_90d_135d_Mono12p,
         2,
         {0x01, 0x20, 0x00, 0x03, 0x40, 0x00, 0x01, 0x21, 0x10, 0x03, 0x41, 0x10},
         Mono12p,
         2,
         {{0x01, 0x10, 0x10}, {0x02, 0x20, 0x10}, {0x03, 0x30, 0x10}, {0x04, 0x40, 0x10}}},
        {DualMono8, 4, {1, 2, 3, 4}, Mono8, 2, {{1, 3}, {2, 4}}},
        {QuadBayerRG16,
         4,
         {1, 0, 2, 0, 3, 0, 4, 0},
         BayerRG16,
         1,
         {{1, 0}, {2, 0}, {3, 0}, {4, 0}}},
        {DualMono8_2ch, 2, {1, 2, 3, 4}, Mono8, 2, {{1, 3}, {2, 4}}},
        {PolarizedDolpAolp_Mono8, 2, {10, 20, 30, 40}, 0, 2, {{10, 30}, {20, 40}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.source);
        auto image = MakeImage(row.pixels, row.width, 1, row.source);
        std::vector<IImage*> channels = ImageFactory::Deinterleave(image.get());
        ASSERT_EQ(channels.size(), row.channels.size());
        for (size_t c = 0; c < channels.size(); ++c) {
            FactoryImagePtr channel(channels[c]);
            if (row.channelFormat != 0) {
                EXPECT_EQ(channel->GetPixelFormat(), row.channelFormat);
            }
            EXPECT_EQ(channel->GetWidth(), row.channelWidth);
            EXPECT_EQ(PixelsOf(channel.get()), row.channels[c]) << "channel " << c;
        }
    }
    auto dual = MakeImage({1, 2, 3}, 3, 1, DualMono8);
    ExpectInvalid([&] { ImageFactory::Deinterleave(dual.get()); },
                  "Width 3 is not a multiple of the 2 taps of DualMono8 (Deinterleave)",
                  "Deinterleave");
}

TEST_F(ImageProcessing, PublicLutAndScaleFormsDispatchByFormat) {
    auto image = MakeImage({0x10, 0x80, 0xF0}, 3, 1, Mono8);
    std::vector<uint8_t> lut(256);
    for (size_t i = 0; i < lut.size(); ++i)
        lut[i] = uint8_t(255 - i);
    FactoryImagePtr inverted(ImageFactory::ProcessSoftwareLUT(image.get(), lut.data(), lut.size()));
    EXPECT_EQ(PixelsOf(inverted.get()), (std::vector<uint8_t>{0xEF, 0x7F, 0x0F}));
    FactoryImagePtr scaled(ImageFactory::SelectBitsAndScale(image.get(), 4, 2.0));
    EXPECT_EQ(PixelsOf(scaled.get()), (std::vector<uint8_t>{0x20, 0xF0, 0xF0}));
    auto mono14 = MakeImage({0, 0}, 1, 1, Mono14);
    ExpectInvalid([&] { ImageFactory::SelectBitsAndScale(mono14.get(), 8, 1.0); },
                  "pixel format 17825829, Mono14 not implemented (SelectBitsAndScale)",
                  "SelectBitsAndScale");
    ExpectInvalid([&] { ImageFactory::ProcessSoftwareLUT(image.get(), nullptr, 256); },
                  "Data is null (ProcessSoftwareLUT)", "CheckParam");
}

// Every processing operation runs the factory's checks first, under its own name.
TEST(ImageProcessingClosed, EveryOperationNeedsAnOpenSystem) {
    const std::string prefix = "RuntimeException: Orvan SDK never initialized, open system "
                               "(Orvan::OpenSystem) to initialize (";
    const std::pair<const char*, std::function<void()>> operations[] = {
        {"Convert", [] { ImageFactory::Convert(nullptr, RGB8); }},
        {"ConvertInto", [] { ImageFactory::ConvertInto(nullptr, nullptr); }},
        {"Compress", [] { ImageFactory::Compress(nullptr, QOI_Mono8); }},
        {"Decompress", [] { ImageFactory::Decompress(nullptr); }},
        {"SelectBits", [] { ImageFactory::SelectBits(nullptr, 0); }},
        {"Deinterleave", [] { ImageFactory::Deinterleave(nullptr); }},
        {"SelectBitsAndScale", [] { ImageFactory::SelectBitsAndScale(nullptr, 8, 1.0); }},
        {"ProcessSoftwareLUT", [] { ImageFactory::ProcessSoftwareLUT(nullptr, nullptr, 0); }},
    };
    for (const auto& [name, operation] : operations) {
        try {
            operation();
            ADD_FAILURE() << name << " ran without a system";
        } catch (const GenICam::RuntimeException& e) {
            EXPECT_EQ(std::string(e.what()), prefix + name + ") (ImageFactory, CheckInit)");
        }
    }
}

TEST_F(ImageProcessing, NullSourcesAreNamedByEveryOperation) {
    for (const auto& [name, operation] : std::vector<std::pair<std::string, std::function<void()>>>{
             {"Convert", [] { ImageFactory::Convert(nullptr, RGB8); }},
             {"Compress", [] { ImageFactory::Compress(nullptr, QOI_Mono8); }},
             {"SelectBits", [] { ImageFactory::SelectBits(nullptr, 0); }},
             {"Deinterleave", [] { ImageFactory::Deinterleave(nullptr); }},
             {"SelectBitsAndScale", [] { ImageFactory::SelectBitsAndScale(nullptr, 8, 1.0); }},
             {"ProcessSoftwareLUT", [] { ImageFactory::ProcessSoftwareLUT(nullptr, nullptr, 0); }},
         })
        ExpectInvalid(operation, "Image is null (" + name + ")", "CheckParam");
}
