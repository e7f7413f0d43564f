// A camera image handed downstream as a GstBuffer without copying: the buffer's memory is the
// image's own, and the image goes back to the camera when GStreamer frees the memory.
#ifndef ORVAN_GSTREAMER_IMAGEWRAPPING_H
#define ORVAN_GSTREAMER_IMAGEWRAPPING_H

#include "CameraSession.h"
#include "PixelFormatMapping.h"

#include <gst/gst.h>

#include <memory>

namespace Orvan {
namespace Gst {

// The bytes one image of the negotiated format and size occupies in the camera's buffer.
size_t ImageBytes(IImage& image, const PixelFormatMapping& mapping);

// Rows with padding differ from GStreamer's default stride: the meta says where they start.
void AddVideoMeta(GstBuffer* buffer, IImage& image, const PixelFormatMapping& mapping);

// The returned buffer holds the session alive until it is freed. Null, with the image given
// back, when the image is smaller than its format and size need.
GstBuffer* WrapImage(const std::shared_ptr<CameraSession>& session, IImage* image,
                     const PixelFormatMapping& mapping);

} // namespace Gst
} // namespace Orvan

#endif
