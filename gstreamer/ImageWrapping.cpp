#include "ImageWrapping.h"

#include <gst/video/video.h>

#include <cstring>

namespace Orvan {
namespace Gst {

namespace {

struct Loan {
    std::shared_ptr<CameraSession> session;
    IImage* image;
};

void GiveBack(gpointer data) {
    auto* loan = static_cast<Loan*>(data);
    loan->session->Return(loan->image);
    delete loan;
}

size_t RowBytes(IImage& image, const PixelFormatMapping& mapping) {
    return image.GetWidth() * mapping.bytesPerPixel + image.GetPaddingX();
}

} // namespace

void AddVideoMeta(GstBuffer* buffer, IImage& image, const PixelFormatMapping& mapping) {
    if (std::strcmp(mapping.media, "video/x-raw") != 0)
        return;
    gsize offset[GST_VIDEO_MAX_PLANES] = {0};
    gint stride[GST_VIDEO_MAX_PLANES] = {static_cast<gint>(RowBytes(image, mapping))};
    gst_buffer_add_video_meta_full(buffer, GST_VIDEO_FRAME_FLAG_NONE,
                                   gst_video_format_from_string(mapping.format),
                                   static_cast<guint>(image.GetWidth()),
                                   static_cast<guint>(image.GetHeight()), 1, offset, stride);
}

size_t ImageBytes(IImage& image, const PixelFormatMapping& mapping) {
    return RowBytes(image, mapping) * image.GetHeight();
}

GstBuffer* WrapImage(const std::shared_ptr<CameraSession>& session, IImage* image,
                     const PixelFormatMapping& mapping) {
    const size_t size = ImageBytes(*image, mapping);
    if (image->GetSizeFilled() < size) {
        session->Requeue(image);
        return nullptr;
    }
    auto* loan = new Loan{session, image};
    auto* data = const_cast<uint8_t*>(image->GetData());
    GstBuffer* buffer = gst_buffer_new();
    gst_buffer_append_memory(
        buffer, gst_memory_new_wrapped(GstMemoryFlags(0), data, size, 0, size, loan, GiveBack));
    session->Lend();
    AddVideoMeta(buffer, *image, mapping);
    return buffer;
}

} // namespace Gst
} // namespace Orvan
