#include "FrameComposer.h"

#include "CameraFeatures.h"
#include "ChunkTrailer.h"
#include "Crc32.h"
#include "QoiCodec.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace Orvan {
namespace Producer {

namespace {

constexpr int32_t kPayloadImage = 1;
constexpr int32_t kPayloadChunkOnly = 4;
constexpr int32_t kPayloadCompressed = 1001;
constexpr int32_t kPayloadCompressedWithChunks = 1002;
constexpr int32_t kPayloadImageWithChunks = 0x4001;
constexpr size_t kChunkTagBytes = 8;

size_t Pad4(size_t bytes) {
    return (bytes + 3) & ~size_t(3);
}

bool Enabled(uint32_t mask, Chunk chunk) {
    return (mask >> uint32_t(chunk)) & 1u;
}

bool IsCompressed(const VirtualPixelFormat& format) {
    return format.packing == PixelPacking::Qoi;
}

// QOI payloads are encoded from the uncompressed picture of the same colour layout.
const VirtualPixelFormat& RenderFormatOf(const VirtualPixelFormat& format) {
    if (!IsCompressed(format))
        return format;
    return *FindVirtualPixelFormat(std::string(format.channels == 1 ? "Mono8" : "RGB8"));
}

void PutBigEndian(uint8_t* p, size_t size, uint64_t value) {
    for (size_t i = size; i-- > 0; value >>= 8)
        p[i] = uint8_t(value);
}

void MirrorRows(uint8_t* data, size_t rowBytes, uint32_t height) {
    std::vector<uint8_t> row(rowBytes);
    for (uint32_t top = 0, bottom = height - 1; top < bottom; ++top, --bottom) {
        std::memcpy(row.data(), data + top * rowBytes, rowBytes);
        std::memcpy(data + top * rowBytes, data + bottom * rowBytes, rowBytes);
        std::memcpy(data + bottom * rowBytes, row.data(), rowBytes);
    }
}

void MirrorColumns(uint8_t* data, size_t pixelBytes, uint32_t width, uint32_t height) {
    const size_t rowBytes = pixelBytes * width;
    for (uint32_t y = 0; y < height; ++y) {
        uint8_t* row = data + y * rowBytes;
        for (uint32_t left = 0, right = width - 1; left < right; ++left, --right)
            std::swap_ranges(row + left * pixelBytes, row + (left + 1) * pixelBytes,
                             row + right * pixelBytes);
    }
}

FrameInfo DescribeImage(const FrameSettings& settings, uint64_t frameId, uint64_t timestampNs) {
    FrameInfo info;
    info.frameId = frameId;
    info.timestampTicks = timestampNs;
    info.timestampNs = timestampNs;
    info.pixelFormat = settings.geometry.pixelFormat;
    info.width = settings.geometry.width;
    info.height = settings.geometry.height;
    info.offsetX = settings.geometry.offsetX;
    info.offsetY = settings.geometry.offsetY;
    return info;
}

void MarkTruncated(FrameInfo& info, size_t filled) {
    info.incomplete = true;
    info.dataLargerThanBuffer = true;
    info.sizeFilled = info.dataSize = filled;
}

} // namespace

bool CanMirrorHorizontally(uint32_t pixelFormat) {
    const VirtualPixelFormat* format = FindVirtualPixelFormat(pixelFormat);
    return format && format->packing != PixelPacking::GigEPacked &&
           format->packing != PixelPacking::LsbFirst && format->layout != PixelLayout::YCbCr422;
}

size_t PayloadBytes(const FrameSettings& settings) {
    const size_t image = settings.geometry.ImageBytes();
    if (!settings.chunkMode)
        return image;
    const bool withImage = Enabled(settings.chunkMask, Chunk::Image);
    size_t total = withImage ? Pad4(image) + kChunkTagBytes : 0;
    for (int c = 1; c < int(Chunk::Count); ++c) {
        const Chunk chunk = Chunk(c);
        if (Enabled(settings.chunkMask, chunk) && (chunk != Chunk::CRC || withImage))
            total += ChunkInfoOf(chunk).length + kChunkTagBytes;
    }
    return total;
}

const TestPattern& FrameComposer::Pattern(uint32_t format, uint32_t width, uint32_t height,
                                          PatternKind kind) {
    if (!m_pattern || m_patternFormat != format || m_patternWidth != width ||
        m_patternHeight != height || m_patternKind != kind) {
        m_pattern = std::make_unique<TestPattern>(format, width, height, kind);
        m_patternFormat = format, m_patternWidth = width, m_patternHeight = height;
        m_patternKind = kind;
    }
    return *m_pattern;
}

size_t FrameComposer::RenderImage(const FrameSettings& settings, uint64_t frameId, uint8_t* dst) {
    const ImageGeometry& g = settings.geometry;
    const VirtualPixelFormat& format = RenderFormatOf(*FindVirtualPixelFormat(g.pixelFormat));
    const TestPattern& pattern = Pattern(format.code, g.width, g.height, settings.pattern);
    pattern.Render(frameId, dst);
    const size_t rowBits = size_t(g.width) * format.bitsPerPixel;
    if (settings.reverseY && rowBits % 8 == 0)
        MirrorRows(dst, rowBits / 8, g.height);
    if (settings.reverseX && CanMirrorHorizontally(format.code))
        MirrorColumns(dst, format.bitsPerPixel / 8, g.width, g.height);
    return pattern.ImageBytes();
}

size_t FrameComposer::WriteImage(const FrameSettings& settings, uint64_t frameId,
                                 const FillSlot& slot, FrameInfo& info) {
    const ImageGeometry& g = settings.geometry;
    const VirtualPixelFormat& format = *FindVirtualPixelFormat(g.pixelFormat);
    if (IsCompressed(format)) {
        m_scratch.resize(ImageBytes(RenderFormatOf(format), g.width, g.height));
        RenderImage(settings, frameId, m_scratch.data());
        const std::vector<uint8_t> stream =
            EncodeQoi(m_scratch.data(), g.width, g.height, format.channels);
        const size_t copied = std::min(stream.size(), slot.size);
        std::memcpy(slot.data, stream.data(), copied);
        if (copied < stream.size())
            MarkTruncated(info, copied);
        return copied;
    }
    const size_t bytes = g.ImageBytes();
    if (bytes <= slot.size)
        return RenderImage(settings, frameId, slot.data);
    m_scratch.resize(bytes);
    RenderImage(settings, frameId, m_scratch.data());
    std::memcpy(slot.data, m_scratch.data(), slot.size);
    MarkTruncated(info, slot.size);
    return slot.size;
}

void FrameComposer::AppendChunks(const FrameSettings& settings, uint64_t frameId,
                                 uint64_t timestampNs, size_t imageBytes, const FillSlot& slot,
                                 FrameInfo& info) {
    const ImageGeometry& g = settings.geometry;
    const VirtualPixelFormat& format = *FindVirtualPixelFormat(g.pixelFormat);
    const bool withImage = Enabled(settings.chunkMask, Chunk::Image);
    ChunkTrailer trailer(slot.data, slot.size);
    uint32_t crc = 0;
    bool fits = true;
    if (withImage) {
        // The CRC covers the picture's whole bytes, without padding; of a compressed picture,
        // the stream.
        const size_t covered = IsCompressed(format)
                                   ? imageBytes
                                   : size_t(g.width) * g.height * format.bitsPerPixel / 8;
        crc = Crc32(slot.data, covered);
        const size_t padded = Pad4(imageBytes);
        fits = padded <= slot.size;
        if (fits) {
            std::memset(slot.data + imageBytes, 0, padded - imageBytes);
            fits = trailer.AppendInPlace(ChunkInfoOf(Chunk::Image).id, uint32_t(padded));
        }
    }
    for (int c = 1; c < int(Chunk::Count) && fits; ++c) {
        const Chunk chunk = Chunk(c);
        if (!Enabled(settings.chunkMask, chunk) || (chunk == Chunk::CRC && !withImage))
            continue;
        uint64_t value = 0;
        switch (chunk) {
        case Chunk::CRC:
            value = crc;
            break;
        case Chunk::Width:
            value = g.width;
            break;
        case Chunk::Height:
            value = g.height;
            break;
        case Chunk::OffsetX:
            value = g.offsetX;
            break;
        case Chunk::OffsetY:
            value = g.offsetY;
            break;
        case Chunk::PixelFormat:
            value = g.pixelFormat;
            break;
        case Chunk::ExposureTime:
            std::memcpy(&value, &settings.exposureTime, 8);
            break;
        case Chunk::Gain:
            std::memcpy(&value, &settings.gain, 8);
            break;
        case Chunk::Timestamp:
            value = timestampNs;
            break;
        default:
            value = frameId;
            break;
        }
        const ChunkInfo& chunkInfo = ChunkInfoOf(chunk);
        uint8_t data[8];
        PutBigEndian(data, chunkInfo.length, value);
        fits = trailer.Append(chunkInfo.id, data, chunkInfo.length);
    }
    if (!fits) {
        MarkTruncated(info, trailer.Size());
        return;
    }
    info.payloadType = !withImage             ? kPayloadChunkOnly
                       : IsCompressed(format) ? kPayloadCompressedWithChunks
                                              : kPayloadImageWithChunks;
    info.imagePresent = withImage;
    info.containsChunkData = true;
    info.sizeFilled = info.dataSize = trailer.Size();
}

FrameInfo FrameComposer::Compose(const FrameSettings& settings, uint64_t frameId,
                                 uint64_t timestampNs, const FillSlot& slot) {
    FrameInfo info = DescribeImage(settings, frameId, timestampNs);
    const bool compressed = IsCompressed(*FindVirtualPixelFormat(settings.geometry.pixelFormat));
    info.payloadType = compressed ? kPayloadCompressed : kPayloadImage;
    const bool withImage = !settings.chunkMode || Enabled(settings.chunkMask, Chunk::Image);
    const size_t imageBytes = withImage ? WriteImage(settings, frameId, slot, info) : 0;
    if (info.dataLargerThanBuffer)
        return info;
    if (settings.chunkMode) {
        AppendChunks(settings, frameId, timestampNs, imageBytes, slot, info);
        return info;
    }
    info.sizeFilled = info.dataSize = imageBytes;
    return info;
}

FrameInfo FrameComposer::ComposeMultipart(const FrameSettings& settings, uint64_t frameId,
                                          uint64_t firstImage, uint32_t parts, uint64_t timestampNs,
                                          const FillSlot& slot) {
    FrameInfo info = DescribeImage(settings, frameId, timestampNs);
    info.payloadType = GenTL::PAYLOAD_TYPE_MULTI_PART;
    const size_t partBytes = settings.geometry.ImageBytes();
    if (partBytes == 0 || slot.size < partBytes * parts)
        throw std::invalid_argument("multipart buffer smaller than its parts");
    FramePart description;
    description.size = partBytes;
    description.format = info.pixelFormat;
    description.width = info.width;
    description.height = info.height;
    description.offsetX = info.offsetX;
    description.offsetY = info.offsetY;
    for (uint32_t part = 0; part < parts; ++part) {
        RenderImage(settings, firstImage + part, slot.data + part * partBytes);
        description.offset = part * partBytes;
        info.parts.push_back(description);
    }
    info.height = uint64_t(settings.geometry.height) * parts;
    info.sizeFilled = info.dataSize = partBytes * parts;
    return info;
}

} // namespace Producer
} // namespace Orvan
