#include "FakeImage.h"
#include "ProcessingTestSupport.h"
#include "buffer/PFNCCustom.h"
#include "imageproc/ParallelRows.h"
#include "imageproc/PixelConversion.h"

#include <hwy/targets.h>

#include <algorithm>
#include <random>

using namespace Orvan;

namespace {

class ImageConversion : public WithOpenSystem {
protected:
    void TearDown() override { SetProcessingThreads(0); }
};

const DemosaicMethod kMethods[] = {DemosaicMethod::Bilinear, DemosaicMethod::HighQualityLinear,
                                   DemosaicMethod::AdaptiveHomogeneityDirected};

struct BayerLayout {
    uint64_t format8, format16;
    // Colour (0 red, 1 green, 2 blue) at even/odd row and column.
    int cell[2][2];
};

const BayerLayout kLayouts[] = {
    {BayerRG8, BayerRG16, {{0, 1}, {1, 2}}},
    {BayerGR8, BayerGR16, {{1, 0}, {2, 1}}},
    {BayerGB8, BayerGB16, {{1, 2}, {0, 1}}},
    {BayerBG8, BayerBG16, {{2, 1}, {1, 0}}},
};

template <class T>
std::vector<T> Mosaic(const BayerLayout& layout, size_t width, size_t height, const T rgb[3]) {
    std::vector<T> mosaic(width * height);
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            mosaic[y * width + x] = rgb[layout.cell[y & 1][x & 1]];
    return mosaic;
}

std::vector<uint8_t> Noise(size_t bytes, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<uint8_t> noise(bytes);
    for (uint8_t& b : noise)
        b = uint8_t(random());
    return noise;
}

// A delivered image whose rows each end in padding.
class PaddedImage : public FakeImage {
public:
    PaddedImage(uint64_t format, size_t width, size_t height, size_t paddingX,
                std::vector<uint8_t> pixels)
        : FakeImage(format, width, height, std::move(pixels)), m_paddingX(paddingX) {}
    size_t GetPaddingX() override { return m_paddingX; }

private:
    size_t m_paddingX;
};

// Restores the choice of instruction set to the processor's best, however a test ends.
struct BestInstructionSet {
    ~BestInstructionSet() { hwy::SetSupportedTargetsForTest(0); }
};

std::string FirstDifference(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
    if (a.size() != b.size())
        return "sizes " + std::to_string(a.size()) + " and " + std::to_string(b.size());
    const auto differ = std::mismatch(a.begin(), a.end(), b.begin());
    if (differ.first == a.end())
        return "";
    return "byte " + std::to_string(differ.first - a.begin()) + ": " +
           std::to_string(*differ.first) + " and " + std::to_string(*differ.second);
}

} // namespace

TEST_F(ImageConversion, UniformPatchStaysUniformInEveryLayoutAndMethod) {
    const uint8_t colour8[3] = {200, 90, 30};
    const uint16_t colour16[3] = {51000, 23000, 7000};
    for (const BayerLayout& layout : kLayouts)
        for (DemosaicMethod method : kMethods) {
            SCOPED_TRACE(testing::Message() << layout.format8 << " method " << int(method));
            auto image8 = MakeImage(Mosaic(layout, 12, 10, colour8), 12, 10, layout.format8);
            FactoryImagePtr rgb8(ImageFactory::Convert(image8.get(), RGB8, method));
            const std::vector<uint8_t> pixels = PixelsOf(rgb8.get());
            for (size_t i = 0; i < pixels.size(); ++i)
                ASSERT_EQ(pixels[i], colour8[i % 3]) << "sample " << i;
            auto image16 =
                MakeImage(AsBytes(Mosaic(layout, 12, 10, colour16)), 12, 10, layout.format16);
            FactoryImagePtr bgr16(ImageFactory::Convert(image16.get(), BGR16, method));
            const std::vector<uint16_t> samples = SamplesOf<uint16_t>(bgr16.get());
            for (size_t i = 0; i < samples.size(); ++i)
                ASSERT_EQ(samples[i], colour16[2 - i % 3]) << "sample " << i;
        }
}

// A 4x4 RGGB mosaic; the expected pixels are the means of the nearest measured samples, with
// the image mirrored about its first and last rows and columns.
TEST_F(ImageConversion, BilinearGivesTheMeansOfTheNearestSamples) {
    const std::vector<uint8_t> mosaic = {
        10,  20,  30,  40,  //
        50,  60,  70,  80,  //
        90,  100, 110, 120, //
        130, 140, 150, 160,
    };
    auto image = MakeImage(mosaic, 4, 4, BayerRG8);
    FactoryImagePtr rgb(ImageFactory::Convert(image.get(), RGB8, DemosaicMethod::Bilinear));
    const std::vector<uint8_t> p = PixelsOf(rgb.get());
    const auto pixel = [&](size_t y, size_t x) {
        return std::vector<uint8_t>(p.begin() + (y * 4 + x) * 3, p.begin() + (y * 4 + x) * 3 + 3);
    };
    // (1,1) blue: red from the diagonals, green from the cross.
    EXPECT_EQ(pixel(1, 1), (std::vector<uint8_t>{60, 60, 60}));
    // (1,2) green on a blue row: red above and below, blue left and right.
    EXPECT_EQ(pixel(1, 2), (std::vector<uint8_t>{70, 70, 70}));
    // (2,2) red: green from the cross (70, 100, 120, 150), blue from the diagonals.
    EXPECT_EQ(pixel(2, 2), (std::vector<uint8_t>{110, 110, 110}));
    // (0,0) red at the corner: the mirror gives each neighbour twice.
    EXPECT_EQ(pixel(0, 0), (std::vector<uint8_t>{10, 35, 60}));
    // (2,1) green on a red row: red left and right (90, 110), blue above and below (60, 140).
    EXPECT_EQ(pixel(2, 1), (std::vector<uint8_t>{100, 100, 100}));
}

// Every source layout to every target through the factory, on every instruction set this
// processor has, against the plain loops that define the arithmetic: random images whose rows
// end in partial vectors (and, in one size, in padding), every method for the mosaics.
TEST_F(ImageConversion, EveryPairConvertsAsTheReferenceLoopsOnEveryInstructionSet) {
    const struct { size_t width, height, paddingX; } sizes[] = {{135, 7, 0}, {70, 5, 3}};
    const std::vector<uint64_t> sources = SourceFormats();
    EXPECT_EQ(sources.size(), 9u + 32u + 24u + 10u);
    const BestInstructionSet restore;
    for (const int64_t instructions : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(instructions);
        for (const uint64_t code : sources) {
            const ConversionFormat& source = *FindSourceFormat(code);
            const std::vector<uint64_t> targets = ImageFactory::GetConvertibleFormats(code);
            ASSERT_EQ(targets.size(), 12u) << code;
            for (const auto& size : sizes) {
                const size_t width = size.width - size.width % source.yuv.pixels;
                SourceBlock block{nullptr, 0, width, size.height, size.paddingX};
                const std::vector<uint8_t> pixels =
                    Noise(SourceBytes(source, block), unsigned(code + width));
                block.data = pixels.data();
                block.bytes = pixels.size();
                PaddedImage image(code, width, size.height, size.paddingX, pixels);
                for (const uint64_t target : targets) {
                    EXPECT_TRUE(ImageFactory::IsConvertible(code, target));
                    for (DemosaicMethod method : kMethods) {
                        FactoryImagePtr fast(ImageFactory::Convert(&image, target, method));
                        std::vector<uint8_t> reference(fast->GetSizeFilled());
                        ConvertPixels(block, source, reference.data(), *FindTargetFormat(target),
                                      method, Kernels::Reference);
                        ASSERT_EQ(fast->GetPixelFormat(), target);
                        ASSERT_EQ(FirstDifference(PixelsOf(fast.get()), reference), "")
                            << hwy::TargetName(instructions) << ", "
                            << GetPixelFormatName(static_cast<PfncFormat>(code)) << " to "
                            << GetPixelFormatName(static_cast<PfncFormat>(target)) << ", method "
                            << int(method) << ", width " << width;
                        if (source.family != ColourFamily::Bayer)
                            break;
                    }
                }
            }
        }
    }
}

TEST_F(ImageConversion, LosslessPairsRoundTrip) {
    std::vector<uint16_t> mono16(16 * 6);
    for (size_t i = 0; i < mono16.size(); ++i) {
        const uint16_t v12 = uint16_t(i * 4093 % 4096);
        mono16[i] = uint16_t(v12 << 4 | v12 >> 8); // a 12-bit value at full 16-bit range
    }
    auto source16 = MakeImage(AsBytes(mono16), 16, 6, Mono16);
    for (const uint64_t packed : {Mono12p, Mono12Packed}) {
        FactoryImagePtr narrow(ImageFactory::Convert(source16.get(), packed));
        FactoryImagePtr back(ImageFactory::Convert(narrow.get(), Mono16));
        EXPECT_EQ(SamplesOf<uint16_t>(back.get()), mono16) << packed;
    }
    const std::vector<uint8_t> rgb = Noise(16 * 6 * 3, 5);
    auto sourceRgb = MakeImage(rgb, 16, 6, RGB8);
    FactoryImagePtr bgr(ImageFactory::Convert(sourceRgb.get(), BGR8));
    EXPECT_EQ(PixelsOf(bgr.get())[0], rgb[2]);
    FactoryImagePtr back(ImageFactory::Convert(bgr.get(), RGB8));
    EXPECT_EQ(PixelsOf(back.get()), rgb);
}

TEST_F(ImageConversion, DepthAndColourRules) {
    const struct {
        uint64_t source;
        std::vector<uint8_t> pixel;
        uint64_t target;
        std::vector<uint8_t> expected;
        size_t width = 1, height = 1, paddingX = 0;
    } rows[] = {
        // Shallower to deeper fills the full range; deeper to shallower keeps the top bits.
        {Mono8, {0xAB}, Mono16, {0xAB, 0xAB}},
        {Mono12, {0xFF, 0x0F}, Mono8, {0xFF}},
        {Mono10, {0x01, 0x02}, Mono8, {0x80}},
        // BT.601 luma of pure red, green and blue.
        {RGB8, {255, 0, 0}, Mono8, {76}},
        {RGB8, {0, 255, 0}, Mono8, {150}},
        {BGR8, {255, 0, 0}, Mono8, {29}},
        {Mono8, {77}, RGBa8, {77, 77, 77, 255}},
        {RGBa8, {1, 2, 3, 4}, BGRa8, {3, 2, 1, 255}},
        // Full-range YCbCr: grey stays grey, Cr raises red.
        {YCbCr8, {100, 128, 128}, RGB8, {100, 100, 100}},
        {YCbCr8, {100, 128, 228}, RGB8, {240, 29, 100}},
        {YUV8_UYV, {128, 100, 228}, BGR8, {100, 29, 240}},
        // Rows of a delivered image end in padding, which is skipped.
        {RGB8, {1, 2, 3, 9, 9, 4, 5, 6}, BGR8, {3, 2, 1, 6, 5, 4}, 1, 2, 2},
        {Mono12p, {0x21, 0x0F, 9, 0x54, 0x06}, Mono8, {0xF2, 0x65}, 1, 2, 1},
    };
    for (const auto& row : rows) {
        PaddedImage image(row.source, row.width, row.height, row.paddingX, row.pixel);
        FactoryImagePtr out(ImageFactory::Convert(&image, row.target));
        EXPECT_EQ(PixelsOf(out.get()), row.expected) << row.source << " to " << row.target;
    }
}

// Bands on several threads must meet without seams: their output equals one thread's.
TEST_F(ImageConversion, ThreadsGiveTheSameResultAsOne) {
    const size_t width = 640, height = 482;
    auto image = MakeImage(Noise(width * height, 9), width, height, BayerGB8);
    for (DemosaicMethod method : kMethods) {
        SetProcessingThreads(1);
        FactoryImagePtr single(ImageFactory::Convert(image.get(), BGRa8, method));
        SetProcessingThreads(3);
        FactoryImagePtr multi(ImageFactory::Convert(image.get(), BGRa8, method));
        const std::vector<uint8_t> a = PixelsOf(single.get()), b = PixelsOf(multi.get());
        const auto differ = std::mismatch(a.begin(), a.end(), b.begin());
        EXPECT_TRUE(differ.first == a.end())
            << "method " << int(method) << ", first difference at row "
            << (differ.first - a.begin()) / (width * 4);
    }
}

TEST_F(ImageConversion, ConvertIntoReusesTheCallersImage) {
    auto source = MakeImage(Noise(64 * 8, 3), 64, 8, BayerBG8);
    FactoryImagePtr expected(ImageFactory::Convert(source.get(), RGB8));
    FactoryImagePtr target(ImageFactory::CreateEmpty(64 * 8 * 3, 64, 8, RGB8));
    const uint8_t* block = target->GetData();
    ImageFactory::ConvertInto(source.get(), target.get());
    EXPECT_EQ(target->GetData(), block);
    EXPECT_EQ(PixelsOf(target.get()), PixelsOf(expected.get()));
}

TEST_F(ImageConversion, ChecksNameTheOperationAndTheFormats) {
    auto mono = MakeImage(std::vector<uint8_t>(12), 4, 3, Mono8);
    auto yuv = MakeImage(std::vector<uint8_t>(30), 5, 3, YUV422_8);
    FactoryImagePtr small(ImageFactory::CreateEmpty(6, 3, 2, Mono8));
    std::vector<uint8_t> caller(12);
    FactoryImagePtr shallow(ImageFactory::Shallow(caller.data(), 12, 4, 3, Mono8));
    ExpectInvalid([] { ImageFactory::Convert(nullptr, RGB8); }, "Image is null (Convert)",
                  "CheckParam");
    ExpectInvalid([&] { ImageFactory::Convert(mono.get(), Mono12); },
                  "Conversion from Mono8 to Mono12 not supported (Convert)", "CheckFormats");
    ExpectInvalid([&] { ImageFactory::Convert(yuv.get(), RGB8); },
                  "Width 5 is not a multiple of the 2 pixels of a YUV422_8 group (Convert)",
                  "CheckFormats");
    ExpectInvalid([&] { ImageFactory::ConvertInto(mono.get(), nullptr); },
                  "Image is null (ConvertInto)", "CheckParam");
    FakeImage noData(RGB8, 4, 3, {});
    ExpectInvalid([&] { ImageFactory::ConvertInto(mono.get(), &noData); },
                  "Ddata is null (ConvertInto)", "CheckParam");
    ExpectInvalid([&] { ImageFactory::ConvertInto(mono.get(), small.get()); },
                  "Target size 3x2 does not match source size 4x3 (ConvertInto)", "CheckLen");
    PaddedImage padded(Mono8, 4, 3, 2, std::vector<uint8_t>(12));
    ExpectInvalid([&] { ImageFactory::Convert(&padded, RGB8); },
                  "Buffer length 12 does not match expected 16 (Convert)", "CheckLen");
    EXPECT_FALSE(ImageFactory::IsConvertible(Mono8, Coord3D_C16));
    EXPECT_FALSE(ImageFactory::IsConvertible(Coord3D_C16, Mono8));
    EXPECT_TRUE(ImageFactory::GetConvertibleFormats(Coord3D_C16).empty());
}
