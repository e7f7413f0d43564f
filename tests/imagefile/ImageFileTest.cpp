// Images written by OrvanImageFile and read back: PNG through libpng, PGM and raw byte by byte.
#include "PngDecoder.h"

#include <Orvan/OrvanApi.h>
#include <OrvanImageFile/ImageFile.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <vector>

namespace fs = std::filesystem;
using ImageFileTest::DecodePng;
using Orvan::ImageFile::Format;

namespace {

// The SDK's image factory works only while a system is open.
class ImageFile : public ::testing::Test {
protected:
    static void SetUpTestSuite() { system = Orvan::OpenSystem(); }
    static void TearDownTestSuite() { Orvan::CloseSystem(system); }

    void SetUp() override {
        dir = fs::temp_directory_path() /
              ("orvan-imagefile-" + std::to_string(getpid()) + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(dir);
    }
    void TearDown() override {
        for (Orvan::IImage* image : images)
            Orvan::ImageFactory::Destroy(image);
        fs::remove_all(dir);
    }

    Orvan::IImage* Make(const std::vector<uint8_t>& bytes, size_t width, size_t height,
                        uint64_t format) {
        images.push_back(
            Orvan::ImageFactory::Create(bytes.data(), bytes.size(), width, height, format));
        return images.back();
    }

    std::string Path(const char* name) const { return (dir / name).string(); }

    static std::string ReadFile(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    // Little-endian 16-bit containers, as cameras deliver them.
    static std::vector<uint8_t> Words(const std::vector<uint16_t>& values) {
        std::vector<uint8_t> bytes;
        for (uint16_t v : values) {
            bytes.push_back(uint8_t(v));
            bytes.push_back(uint8_t(v >> 8));
        }
        return bytes;
    }

    static Orvan::ISystem* system;
    fs::path dir;
    std::vector<Orvan::IImage*> images;
};

Orvan::ISystem* ImageFile::system = nullptr;

std::vector<uint8_t> Ramp(size_t count, unsigned step) {
    std::vector<uint8_t> bytes(count);
    for (size_t i = 0; i < count; ++i)
        bytes[i] = uint8_t(i * step);
    return bytes;
}

} // namespace

TEST_F(ImageFile, FormatNamesAndExtensions) {
    EXPECT_EQ(Orvan::ImageFile::ParseFormat("PNG"), Format::Png);
    EXPECT_EQ(Orvan::ImageFile::ParseFormat("pgm"), Format::Pgm);
    EXPECT_EQ(Orvan::ImageFile::ParseFormat("raw"), Format::Raw);
    EXPECT_FALSE(Orvan::ImageFile::ParseFormat("jpeg").has_value());
    EXPECT_STREQ(Orvan::ImageFile::Extension(Format::Pgm), ".pgm");
}

TEST_F(ImageFile, Mono8KeepsEveryPixelInPngPgmAndRaw) {
    const std::vector<uint8_t> pixels = Ramp(7 * 5, 7);
    Orvan::IImage* image = Make(pixels, 7, 5, Orvan::Mono8);
    Orvan::ImageFile::Save(*image, Path("a.png"), Format::Png);
    Orvan::ImageFile::Save(*image, Path("a.pgm"), Format::Pgm);
    Orvan::ImageFile::Save(*image, Path("a.raw"), Format::Raw);

    const ImageFileTest::DecodedPng png = DecodePng(Path("a.png"));
    EXPECT_EQ(png.width, 7u);
    EXPECT_EQ(png.height, 5u);
    EXPECT_EQ(png.bitDepth, 8u);
    EXPECT_EQ(png.channels, 1u);
    EXPECT_EQ(png.samples, std::vector<uint16_t>(pixels.begin(), pixels.end()));
    EXPECT_EQ(ReadFile(Path("a.pgm")),
              "P5\n7 5\n255\n" + std::string(pixels.begin(), pixels.end()));
    EXPECT_EQ(ReadFile(Path("a.raw")), std::string(pixels.begin(), pixels.end()));
}

TEST_F(ImageFile, NarrowMonoSamplesKeepTheirSignificantBits) {
    const std::vector<uint16_t> values = {0, 1, 0x7FF, 0xABC, 0xFFF, 0x123};
    Orvan::IImage* image = Make(Words(values), 3, 2, Orvan::Mono12);
    Orvan::ImageFile::Save(*image, Path("m12.png"), Format::Png);
    Orvan::ImageFile::Save(*image, Path("m12.pgm"), Format::Pgm);

    const ImageFileTest::DecodedPng png = DecodePng(Path("m12.png"));
    EXPECT_EQ(png.bitDepth, 16u);
    EXPECT_EQ(png.significantBits, 12u);
    ASSERT_EQ(png.samples.size(), values.size());
    // Scaled up to 16 bits: the top bits are the sample, and full scale stays full scale.
    for (size_t i = 0; i < values.size(); ++i)
        EXPECT_EQ(png.samples[i] >> 4, values[i]) << i;
    EXPECT_EQ(png.samples[4], 0xFFFF);
    std::string expected = "P5\n3 2\n4095\n";
    for (uint16_t v : values)
        expected += {char(v >> 8), char(v & 0xFF)};
    EXPECT_EQ(ReadFile(Path("m12.pgm")), expected);
}

TEST_F(ImageFile, PackedMonoIsUnpackedBeforeWriting) {
    // Mono10p: samples follow each other in one little-endian bit stream.
    const std::vector<uint16_t> values = {0x3FF, 0x001, 0x2AA, 0x155, 0x000, 0x200, 0x0F0, 0x10F};
    std::vector<uint8_t> packed(values.size() * 10 / 8);
    for (size_t i = 0; i < values.size(); ++i)
        for (size_t bit = 0; bit < 10; ++bit)
            if (values[i] >> bit & 1)
                packed[(i * 10 + bit) / 8] |= uint8_t(1u << ((i * 10 + bit) % 8));
    Orvan::IImage* image = Make(packed, 4, 2, Orvan::Mono10p);
    Orvan::ImageFile::Save(*image, Path("p.png"), Format::Png);

    const ImageFileTest::DecodedPng png = DecodePng(Path("p.png"));
    EXPECT_EQ(png.significantBits, 10u);
    ASSERT_EQ(png.samples.size(), values.size());
    for (size_t i = 0; i < values.size(); ++i)
        EXPECT_EQ(png.samples[i] >> 6, values[i]) << i;
}

TEST_F(ImageFile, ColourChannelsComeOutInRgbOrder) {
    const std::vector<uint8_t> bgr = {1, 2, 3, 4, 5, 6};
    Orvan::ImageFile::Save(*Make(bgr, 2, 1, Orvan::BGR8), Path("bgr.png"), Format::Png);
    EXPECT_EQ(DecodePng(Path("bgr.png")).samples, (std::vector<uint16_t>{3, 2, 1, 6, 5, 4}));

    const std::vector<uint8_t> rgba = {10, 20, 30, 255, 40, 50, 60, 128};
    Orvan::ImageFile::Save(*Make(rgba, 1, 2, Orvan::RGBa8), Path("rgba.png"), Format::Png);
    const ImageFileTest::DecodedPng png = DecodePng(Path("rgba.png"));
    EXPECT_EQ(png.channels, 4u);
    EXPECT_EQ(png.samples, std::vector<uint16_t>(rgba.begin(), rgba.end()));
}

TEST_F(ImageFile, RefusalsNameThePathAndLeaveNoFile) {
    auto message = [](const std::function<void()>& save) {
        try {
            save();
        } catch (const std::runtime_error& e) {
            return std::string(e.what());
        }
        return std::string("no exception");
    };
    Orvan::IImage* bayer = Make(Ramp(16, 1), 4, 4, Orvan::BayerRG8);
    const std::string png = Path("bayer.png");
    EXPECT_EQ(message([&] { Orvan::ImageFile::Save(*bayer, png, Format::Png); }),
              "cannot write " + png +
                  ": pixel format BayerRG8 has no PNG or PGM form; save it as raw");
    EXPECT_FALSE(fs::exists(png));

    Orvan::IImage* rgb = Make(Ramp(12, 1), 2, 2, Orvan::RGB8);
    EXPECT_NE(message([&] {
                  Orvan::ImageFile::Save(*rgb, Path("rgb.pgm"), Format::Pgm);
              }).find("PGM holds only grey images"),
              std::string::npos);
    EXPECT_FALSE(fs::exists(Path("rgb.pgm")));

    const std::string missing = Path("no/such/dir/x.raw");
    EXPECT_EQ(message([&] { Orvan::ImageFile::Save(*rgb, missing, Format::Raw); }),
              "cannot write " + missing + ": No such file or directory");
}
