// Camera images in formats GStreamer has no name for, converted by the image factory into a few
// images made once per negotiation and reused: the conversion is the only copy, the camera's
// buffer goes back at once, and a frame allocates nothing.
#ifndef ORVAN_GSTREAMER_IMAGECONVERSION_H
#define ORVAN_GSTREAMER_IMAGECONVERSION_H

#include "CameraSession.h"
#include "PixelFormatMapping.h"

#include <gst/gst.h>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

namespace Orvan {
namespace Gst {

class ConversionPool {
public:
    // Images downstream may hold at once; the next frame waits for one to come back.
    static constexpr size_t kImages = 4;

    // Throws a GenICam exception when the factory cannot make the targets.
    ConversionPool(std::shared_ptr<CameraSession> session, const PixelFormatMapping& mapping,
                   size_t width, size_t height);
    ~ConversionPool();
    ConversionPool(const ConversionPool&) = delete;
    ConversionPool& operator=(const ConversionPool&) = delete;

    // A free target, waiting while downstream holds them all; null once `cancelled` is set.
    IImage* Acquire(const std::atomic<bool>& cancelled);
    // Any thread.
    void Release(IImage* target);

private:
    // Keeps the system open: the targets are destroyed through the factory.
    std::shared_ptr<CameraSession> m_session;
    std::vector<IImage*> m_all;
    std::mutex m_lock;
    std::condition_variable m_returned;
    std::vector<IImage*> m_free;
};

// Converts the camera's image into `target`, gives the camera its buffer back, and wraps the
// target. Null, with the target back in the pool, when the factory refuses the image (short or
// malformed).
GstBuffer* ConvertAndWrap(const std::shared_ptr<ConversionPool>& pool, IImage* target,
                          CameraSession& session, IImage* image, const PixelFormatMapping& mapping);

} // namespace Gst
} // namespace Orvan

#endif
