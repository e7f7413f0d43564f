// An image over test-owned pixels, for exercising the processing routines without a stream.
#ifndef ORVAN_TESTS_SDK_FAKEIMAGE_H
#define ORVAN_TESTS_SDK_FAKEIMAGE_H

#include <Orvan/IImage.h>
#include <Orvan/PixelFormat.h>

#include <vector>

class FakeImage : public Orvan::IImage {
public:
    FakeImage(uint64_t pixelFormat, size_t width, size_t height, std::vector<uint8_t> pixels)
        : m_pixelFormat(pixelFormat), m_width(width), m_height(height),
          m_pixels(std::move(pixels)) {}

    const uint8_t* GetData() override { return m_pixels.data(); }
    size_t GetSizeFilled() override { return m_pixels.size(); }
    size_t GetPayloadSize() override { return m_pixels.size(); }
    size_t GetSizeOfBuffer() override { return m_pixels.size(); }
    uint64_t GetFrameId() override { return 7; }
    size_t GetPayloadType() override { return 1; }
    bool HasImageData() override { return true; }
    bool HasChunkData() override { return false; }
    bool IsCompressedImage() override { return false; }
    Orvan::IImage* AsImage() override { return this; }
    Orvan::IChunkData* AsChunkData() override { return nullptr; }
    Orvan::ICompressedImage* AsCompressedImage() override { return nullptr; }
    bool IsIncomplete() override { return false; }
    bool DataLargerThanBuffer() override { return false; }
    bool VerifyCRC() override { return false; }
    size_t GetWidth() override { return m_width; }
    size_t GetHeight() override { return m_height; }
    size_t GetOffsetX() override { return 3; }
    size_t GetOffsetY() override { return 4; }
    size_t GetPaddingX() override { return 0; }
    size_t GetPaddingY() override { return 0; }
    uint64_t GetPixelFormat() override { return m_pixelFormat; }
    size_t GetBitsPerPixel() override { return Orvan::GetBitsPerPixel(m_pixelFormat); }
    size_t GetPixelEndianness() override { return 0; }
    uint64_t GetTimestamp() override { return 1234; }
    uint64_t GetTimestampNs() override { return 1234; }

private:
    uint64_t m_pixelFormat;
    size_t m_width;
    size_t m_height;
    std::vector<uint8_t> m_pixels;
};

#endif
