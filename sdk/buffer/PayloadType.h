// The GenTL payload types the buffer family tells apart: the standard image, chunk-only and
// multi-part types, an image with chunk data, and the producer's two compressed-image types in its
// custom range.
#ifndef ORVAN_BUFFER_PAYLOADTYPE_H
#define ORVAN_BUFFER_PAYLOADTYPE_H

#include <cstddef>

namespace Orvan {
namespace PayloadType {

constexpr size_t kImage = 1;
constexpr size_t kChunkOnly = 4;
constexpr size_t kMultiPart = 10;
constexpr size_t kImageWithChunks = 0x4001;
constexpr size_t kCompressedImage = 1001;
constexpr size_t kCompressedImageWithChunks = 1002;

} // namespace PayloadType
} // namespace Orvan

#endif
