// Writes one frame into a stream's buffer: the test picture in the current pixel format
// (rendered with a single copy, or QOI-encoded), mirrored if asked, followed by the enabled
// chunks in the GigE Vision layout; or several pictures one after the other as the parts of a
// multipart buffer. Each stream thread owns one composer, so it needs no lock.
#ifndef ORVAN_GENTL_VIRTUAL_FRAMECOMPOSER_H
#define ORVAN_GENTL_VIRTUAL_FRAMECOMPOSER_H

#include "../RemoteDevice.h"
#include "ImageGeometry.h"
#include "TestPattern.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace Orvan {
namespace Producer {

// The camera settings one frame is made with, copied under the camera's lock.
struct FrameSettings {
    ImageGeometry geometry;
    PatternKind pattern = PatternKind::MovingDiagonal;
    bool reverseX = false;
    bool reverseY = false;
    bool chunkMode = false;
    uint32_t chunkMask = 0; // bit n: Chunk(n) enabled
    double exposureTime = 0;
    double gain = 0;
};

// Mirroring left-right moves whole pixels, so formats whose pixels share bytes cannot do it.
bool CanMirrorHorizontally(uint32_t pixelFormat);

// Bytes a buffer needs for one frame (one part of a multipart buffer) with these settings.
size_t PayloadBytes(const FrameSettings& settings);

class FrameComposer {
public:
    // The picture shows and stamps frameId. A buffer too small for the frame receives what fits
    // and is marked incomplete and larger than its buffer.
    FrameInfo Compose(const FrameSettings& settings, uint64_t frameId, uint64_t timestampNs,
                      const FillSlot& slot);
    // `parts` pictures of the current size, stamped firstImage, firstImage + 1, ...; the buffer
    // as a whole is one image of parts x height lines.
    FrameInfo ComposeMultipart(const FrameSettings& settings, uint64_t frameId, uint64_t firstImage,
                               uint32_t parts, uint64_t timestampNs, const FillSlot& slot);

private:
    // Renders the uncompressed picture into dst and mirrors it; returns its size.
    size_t RenderImage(const FrameSettings& settings, uint64_t frameId, uint8_t* dst);
    const TestPattern& Pattern(uint32_t format, uint32_t width, uint32_t height, PatternKind kind);
    size_t WriteImage(const FrameSettings& settings, uint64_t frameId, const FillSlot& slot,
                      FrameInfo& info);
    void AppendChunks(const FrameSettings& settings, uint64_t frameId, uint64_t timestampNs,
                      size_t imageBytes, const FillSlot& slot, FrameInfo& info);

    std::unique_ptr<TestPattern> m_pattern;
    uint32_t m_patternFormat = 0, m_patternWidth = 0, m_patternHeight = 0;
    PatternKind m_patternKind = PatternKind::Black;
    std::vector<uint8_t> m_scratch;
};

} // namespace Producer
} // namespace Orvan

#endif
