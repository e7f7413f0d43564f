#include "FactorySystem.h"
#include "FakeImage.h"
#include "imageproc/ProcessSoftwareLUTImpl.h"
#include "imageproc/SelectBitsAndScaleImpl.h"

#include <Orvan/OrvanApi.h>

#include <gtest/gtest.h>

#include <memory>

using namespace Orvan;

namespace {

using ImagePtr = FactoryImagePtr;

std::vector<uint16_t> Words(IImage& image) {
    std::vector<uint16_t> words(image.GetSizeFilled() / 2);
    for (size_t i = 0; i < words.size(); ++i)
        words[i] = uint16_t(image.GetData()[2 * i] | image.GetData()[2 * i + 1] << 8);
    return words;
}

FakeImage Mono12Image(std::vector<uint16_t> words) {
    std::vector<uint8_t> bytes;
    for (uint16_t w : words) {
        bytes.push_back(uint8_t(w));
        bytes.push_back(uint8_t(w >> 8));
    }
    return FakeImage(Mono12, words.size(), 1, bytes);
}

} // namespace

class ProcessingRoutines : public WithOpenSystem {};

TEST_F(ProcessingRoutines, SelectBitsScalesSaturatesAndKeepsTopBits) {
    // Bits above the depth are not part of a sample.
    FakeImage source = Mono12Image({0x000, 0x123, 0x7FF, 0xFFF, 0xF801});
    const struct {
        size_t bits;
        double scale;
        std::vector<uint16_t> expected;
    } rows[] = {
        {12, 1.0, {0x000, 0x123, 0x7FF, 0xFFF, 0x801}},
        {8, 1.0, {0x000, 0x120, 0x7F0, 0xFF0, 0x800}},
        {12, 2.0, {0x000, 0x246, 0xFFE, 0xFFF, 0xFFF}},
        {12, 0.5, {0x000, 0x092, 0x400, 0x800, 0x401}},
        {1, 3.0, {0x000, 0x000, 0x800, 0x800, 0x800}},
        {12, 0.0, {0, 0, 0, 0, 0}},
    };
    for (const auto& row : rows) {
        ImagePtr result(SelectBitsAndScaleImpl::SelectBitsAndScale_12Bits(&source, Mono12, row.bits,
                                                                          row.scale));
        EXPECT_EQ(Words(*result), row.expected) << row.bits << " bits, scale " << row.scale;
    }
}

TEST_F(ProcessingRoutines, SelectBitsRefusesBadArguments) {
    FakeImage source = Mono12Image({1, 2});
    FakeImage shortImage(Mono12, 4, 1, std::vector<uint8_t>(7));
    const struct {
        IImage* image;
        size_t bits;
        double scale;
        const char* description;
    } rows[] = {
        {nullptr, 8, 1.0, "Image is null"},
        {&source, 0, 1.0, "Bits to keep must be between 1 and 12"},
        {&source, 13, 1.0, "Bits to keep must be between 1 and 12"},
        {&source, 8, -1.0, "Scale must be finite and not negative"},
        {&source, 8, 1.0 / 0.0, "Scale must be finite and not negative"},
        {&shortImage, 8, 1.0, "Image data is shorter than its geometry"},
    };
    for (const auto& row : rows) {
        try {
            ImagePtr(SelectBitsAndScaleImpl::SelectBitsAndScale_12Bits(row.image, Mono12, row.bits,
                                                                       row.scale));
            ADD_FAILURE() << row.description;
        } catch (const GenICam::InvalidArgumentException& e) {
            EXPECT_EQ(std::string(e.what()),
                      std::string("InvalidArgumentException: ") + row.description +
                          " (SelectBitsAndScaleImpl, SelectBitsAndScale_12Bits)");
        }
    }
}

TEST_F(ProcessingRoutines, LutMapsEverySampleThroughItsEntry) {
    std::vector<uint8_t> lut(ProcessSoftwareLUTImpl::LutSize(12));
    ASSERT_EQ(lut.size(), 8192u);
    for (size_t v = 0; v < 4096; ++v) {
        const uint16_t mapped = uint16_t(4095 - v);
        lut[2 * v] = uint8_t(mapped);
        lut[2 * v + 1] = uint8_t(mapped >> 8);
    }
    FakeImage source = Mono12Image({0x000, 0x123, 0xFFF});
    ImagePtr result(
        ProcessSoftwareLUTImpl::ProcessSoftwareLUT_12Bits(&source, lut.data(), lut.size()));
    EXPECT_EQ(Words(*result), (std::vector<uint16_t>{0xFFF, 0xEDC, 0x000}));
    // The source is untouched.
    EXPECT_EQ(Words(source), (std::vector<uint16_t>{0x000, 0x123, 0xFFF}));
}

TEST_F(ProcessingRoutines, LutOfTheWrongSizeIsRefused) {
    FakeImage source = Mono12Image({1});
    std::vector<uint8_t> lut(4096);
    EXPECT_THROW(ImagePtr(ProcessSoftwareLUTImpl::ProcessSoftwareLUT_12Bits(&source, lut.data(),
                                                                            lut.size())),
                 GenICam::InvalidArgumentException);
    EXPECT_THROW(
        ImagePtr(ProcessSoftwareLUTImpl::ProcessSoftwareLUT_12Bits(&source, nullptr, 8192)),
        GenICam::InvalidArgumentException);
}
