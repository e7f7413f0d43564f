#include "ImageConversion.h"

#include "ImageWrapping.h"

#include <Orvan/ImageFactory.h>

#include <chrono>
#include <exception>

namespace Orvan {
namespace Gst {

namespace {

// How often a wait for a free target looks at `cancelled`.
constexpr std::chrono::milliseconds kSlice{20};

// Bilinear is exact wherever the colour is flat and the cheapest per frame: a live source
// cannot fall behind the camera for sharper edges.
constexpr DemosaicMethod kDemosaic = DemosaicMethod::Bilinear;

struct Loan {
    std::shared_ptr<ConversionPool> pool;
    IImage* target;
};

void GiveBack(gpointer data) {
    auto* loan = static_cast<Loan*>(data);
    loan->pool->Release(loan->target);
    delete loan;
}

} // namespace

ConversionPool::ConversionPool(std::shared_ptr<CameraSession> session,
                               const PixelFormatMapping& mapping, size_t width, size_t height)
    : m_session(std::move(session)) {
    const size_t size = width * height * mapping.bytesPerPixel;
    try {
        for (size_t i = 0; i < kImages; ++i)
            m_all.push_back(ImageFactory::CreateEmpty(size, width, height, mapping.convertTo));
    } catch (...) {
        for (IImage* image : m_all)
            ImageFactory::Destroy(image);
        throw;
    }
    m_free = m_all;
}

ConversionPool::~ConversionPool() {
    for (IImage* image : m_all)
        ImageFactory::Destroy(image);
}

IImage* ConversionPool::Acquire(const std::atomic<bool>& cancelled) {
    std::unique_lock<std::mutex> lock(m_lock);
    while (m_free.empty() && !cancelled)
        m_returned.wait_for(lock, kSlice);
    if (m_free.empty())
        return nullptr;
    IImage* target = m_free.back();
    m_free.pop_back();
    return target;
}

void ConversionPool::Release(IImage* target) {
    {
        std::lock_guard<std::mutex> lock(m_lock);
        m_free.push_back(target);
    }
    m_returned.notify_one();
}

GstBuffer* ConvertAndWrap(const std::shared_ptr<ConversionPool>& pool, IImage* target,
                          CameraSession& session, IImage* image,
                          const PixelFormatMapping& mapping) {
    bool converted = false;
    try {
        ImageFactory::ConvertInto(image, target, kDemosaic);
        converted = true;
    } catch (const std::exception& e) {
        GST_WARNING("image factory refused frame %" G_GUINT64_FORMAT ": %s",
                    guint64(image->GetFrameId()), e.what());
    }
    session.Requeue(image);
    if (!converted) {
        pool->Release(target);
        return nullptr;
    }
    const size_t size = ImageBytes(*target, mapping);
    auto* data = const_cast<uint8_t*>(target->GetData());
    GstBuffer* buffer = gst_buffer_new();
    gst_buffer_append_memory(buffer, gst_memory_new_wrapped(GstMemoryFlags(0), data, size, 0, size,
                                                            new Loan{pool, target}, GiveBack));
    AddVideoMeta(buffer, *target, mapping);
    return buffer;
}

} // namespace Gst
} // namespace Orvan
