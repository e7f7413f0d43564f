// One opened camera as Python holds it. The SDK frees a stream's buffers when the stream
// stops, so a stop or close asked for while NumPy arrays still view delivered buffers is
// carried out when the last of those arrays goes.
#ifndef ORVAN_PYTHON_CAMERACORE_H
#define ORVAN_PYTHON_CAMERACORE_H

#include "Waiting.h"

#include <Orvan/OrvanApi.h>
#include <pybind11/pybind11.h>

#include <cstdint>
#include <memory>

namespace OrvanPy {

class Delivery;
class EventPump;
class ImageCallback;
class NodeCallbacks;
class SystemCore;

class CameraCore : public std::enable_shared_from_this<CameraCore> {
public:
    CameraCore(std::shared_ptr<SystemCore> system, const Orvan::DeviceInfo& info);
    ~CameraCore();
    CameraCore(const CameraCore&) = delete;
    CameraCore& operator=(const CameraCore&) = delete;

    // Throws orvan.LogicalErrorException once the camera is closed.
    Orvan::IDevice* Device();
    const Orvan::DeviceInfo& Info() const { return m_info; }
    SystemCore& System() { return *m_system; }
    std::shared_ptr<SystemCore> SharedSystem() { return m_system; }
    bool Closed() const { return m_closed; }
    bool Streaming() const { return m_streaming; }
    // Changes whenever delivered buffers stop being valid: a stop carried out, a close.
    uint64_t Generation() const { return m_generation; }

    void Start(size_t buffers);
    void Stop();
    void Close();
    void ForceClose();

    std::shared_ptr<Delivery> NextImage(Timeout timeout);
    void Requeue(Orvan::IImage* image);
    std::shared_ptr<Delivery> Borrow(Orvan::IImage* image);

    void SetImageCallback(pybind11::object function);
    NodeCallbacks& Callbacks() { return *m_nodeCallbacks; }
    // The event thread runs from the first event callback until the camera closes.
    void EnsureEvents();

    void ViewOpened() { ++m_views; }
    void ViewClosed();

private:
    void StopNow();
    void DestroyNow();
    void Detach();
    void AbortWaiters();

    std::shared_ptr<SystemCore> m_system;
    Orvan::IDevice* m_device = nullptr;
    Orvan::DeviceInfo m_info;
    uint64_t m_generation = 0;
    int m_views = 0;
    int m_waiters = 0;
    bool m_streaming = false;
    bool m_stopPending = false;
    bool m_closed = false;
    std::unique_ptr<ImageCallback> m_imageCallback;
    std::unique_ptr<EventPump> m_events;
    std::unique_ptr<NodeCallbacks> m_nodeCallbacks;
};

} // namespace OrvanPy

#endif
