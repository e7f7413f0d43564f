// Demosaicing quality on natural photographs: each is mosaiced into every Bayer layout,
// demosaiced by each method and compared with the original. The floors catch a broken method
// (a layout mix-up costs more than 10 dB; without its median step the adaptive method falls within
// 1 dB of the linear one); the table printed is the measurement.
#include "ProcessingTestSupport.h"
#include "buffer/PFNCCustom.h"

#include <png.h>

#include <cmath>
#include <cstdio>
#include <map>

using namespace Orvan;

namespace {

struct Photo {
    std::vector<uint8_t> rgb;
    size_t width = 0, height = 0;
};

Photo ReadPng(const std::string& path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    Photo photo;
    if (!png_image_begin_read_from_file(&image, path.c_str()))
        return photo;
    image.format = PNG_FORMAT_RGB;
    photo.rgb.resize(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, photo.rgb.data(), 0, nullptr))
        return {};
    photo.width = image.width;
    photo.height = image.height;
    return photo;
}

struct Layout {
    uint64_t format;
    int cell[2][2]; // colour at even/odd row and column
};

const Layout kLayouts[] = {{BayerRG8, {{0, 1}, {1, 2}}},
                           {BayerGR8, {{1, 0}, {2, 1}}},
                           {BayerGB8, {{1, 2}, {0, 1}}},
                           {BayerBG8, {{2, 1}, {1, 0}}}};

std::vector<uint8_t> Mosaic(const Photo& photo, const Layout& layout) {
    std::vector<uint8_t> mosaic(photo.width * photo.height);
    for (size_t y = 0; y < photo.height; ++y)
        for (size_t x = 0; x < photo.width; ++x)
            mosaic[y * photo.width + x] =
                photo.rgb[(y * photo.width + x) * 3 + layout.cell[y & 1][x & 1]];
    return mosaic;
}

double Psnr(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
    double squares = 0;
    for (size_t i = 0; i < a.size(); ++i)
        squares += double(a[i] - b[i]) * (a[i] - b[i]);
    return 10 * std::log10(255.0 * 255.0 * a.size() / std::max(squares, 1.0));
}

const std::pair<DemosaicMethod, const char*> kMethods[] = {
    {DemosaicMethod::Bilinear, "Bilinear"},
    {DemosaicMethod::HighQualityLinear, "HighQualityLinear"},
    {DemosaicMethod::AdaptiveHomogeneityDirected, "AdaptiveHomogeneityDirected"}};

class DemosaicQuality : public WithOpenSystem {};

} // namespace

TEST_F(DemosaicQuality, MethodsRankAndStayAboveTheirFloors) {
    const std::string dir = ORVAN_TEST_IMAGES_DIR;
    for (const char* name : {"astronaut.png", "chelsea.png", "coffee.png"}) {
        const Photo photo = ReadPng(dir + "/" + name);
        if (photo.rgb.empty())
            GTEST_SKIP() << "no test image " << dir << "/" << name;
        std::map<DemosaicMethod, double> worst;
        for (const Layout& layout : kLayouts) {
            auto raw = MakeImage(Mosaic(photo, layout), photo.width, photo.height, layout.format);
            for (const auto& [method, label] : kMethods) {
                FactoryImagePtr rgb(ImageFactory::Convert(raw.get(), RGB8, method));
                const double psnr = Psnr(PixelsOf(rgb.get()), photo.rgb);
                std::printf("%-14s %-9s %-28s %6.2f dB\n", name,
                            GetPixelFormatName(static_cast<PfncFormat>(layout.format)), label,
                            psnr);
                worst[method] = worst.count(method) ? std::min(worst[method], psnr) : psnr;
            }
        }
        const double bilinear = worst[DemosaicMethod::Bilinear];
        EXPECT_GT(bilinear, 24.0) << name;
        const double high = worst[DemosaicMethod::HighQualityLinear];
        EXPECT_GT(high, bilinear + 2.5) << name;
        EXPECT_GT(worst[DemosaicMethod::AdaptiveHomogeneityDirected], high + 1.0) << name;
    }
}
