// One camera opened for one run of the element, from READY to PAUSED until the last buffer it
// handed downstream has come back: the buffers keep it alive, so that pixels a downstream
// element still reads are never given back to the camera under it.
#ifndef ORVAN_GSTREAMER_CAMERASESSION_H
#define ORVAN_GSTREAMER_CAMERASESSION_H

#include <Orvan/IDevice.h>
#include <Orvan/System.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace Orvan {
namespace Gst {

// Why NextImage came back without an image.
enum class WaitResult { Image, Cancelled, TimedOut };

class CameraSession {
public:
    // Opens the camera named as the orvan tool names cameras (empty: the first one found).
    // Throws std::runtime_error whose message names what was asked for.
    explicit CameraSession(const std::string& cameraName);
    ~CameraSession();
    CameraSession(const CameraSession&) = delete;
    CameraSession& operator=(const CameraSession&) = delete;

    IDevice& Device() { return *m_device; }
    const std::string& Description() const { return m_description; }

    // bufferCount 0 asks for the SDK's automatic count, raised to a floor that leaves the
    // camera buffers while downstream queues hold some.
    void StartStream(size_t bufferCount);
    // Throws when buffers are still downstream: stopping would take their pixels away.
    void StopStream();
    bool Streaming() const { return m_streaming; }
    size_t PoolSize() const { return m_poolSize; }

    // Waits up to timeoutMs (0: no limit) in short slices, so that `cancelled` is noticed
    // quickly. Throws std::runtime_error when the camera disappears or the stream fails.
    WaitResult NextImage(uint64_t timeoutMs, const std::atomic<bool>& cancelled, IImage*& image);
    // Any thread. A camera that has gone refuses it, and keeps the buffer until it closes.
    void Requeue(IImage* image);
    // Images handed downstream and not yet back.
    void Lend() { ++m_lent; }
    void Return(IImage* image) {
        Requeue(image);
        --m_lent;
    }
    unsigned Lent() const { return m_lent; }

private:
    bool TryGetImage(uint64_t sliceMs, IImage*& image);
    void CheckConnected();

    std::shared_ptr<ISystem> m_system;
    IDevice* m_device = nullptr;
    std::string m_description;
    bool m_streaming = false;
    size_t m_poolSize = 0;
    std::atomic<unsigned> m_lent{0};
};

} // namespace Gst
} // namespace Orvan

#endif
