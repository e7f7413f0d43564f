#include "CameraSession.h"

#include "CameraResolver.h"
#include "SharedSystem.h"

#include <Base/GCException.h>
#include <Orvan/GenApiCustom.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>

namespace Orvan {
namespace Gst {

namespace {

// As long as the orvan tool gives a camera on a real network to answer discovery.
constexpr uint64_t kDiscoveryTimeoutMs = 500;
// How long a wait for an image goes without looking at cancellation and the connection.
constexpr uint64_t kSliceMs = 100;
// Enough for a queue, an encoder and a sink each to hold a couple of images while the camera
// keeps filling the rest.
constexpr size_t kMinimumPool = 8;

size_t Resolve(const std::vector<DeviceInfo>& devices, const std::string& name) {
    if (!name.empty())
        return Cli::ResolveCamera(devices, name);
    if (devices.empty())
        throw std::runtime_error("no camera found");
    return 0;
}

std::string Describe(const DeviceInfo& info) {
    return std::string(info.ModelName().c_str()) + " " + info.SerialNumber().c_str();
}

size_t AnnouncedBuffers(IDevice& device) {
    return static_cast<size_t>(
        GetNodeValue<int64_t>(device.GetTLStreamNodeMap(), "StreamAnnouncedBufferCount"));
}

} // namespace

CameraSession::CameraSession(const std::string& cameraName) : m_system(AcquireSystem()) {
    m_system->UpdateDevices(kDiscoveryTimeoutMs);
    const std::vector<DeviceInfo> devices = m_system->GetDevices();
    const DeviceInfo& info = devices.at(Resolve(devices, cameraName));
    m_description = Describe(info);
    m_device = m_system->CreateDevice(info);
}

// Runs on the thread that released the last buffer; nothing can be reported from here, and a
// camera that has disappeared refuses the stop, which must not keep it from being closed.
CameraSession::~CameraSession() {
    try {
        if (m_streaming)
            m_device->StopStream();
    } catch (const GenICam::GenericException&) {
    }
    try {
        m_system->DestroyDevice(m_device);
    } catch (const GenICam::GenericException&) {
    }
}

void CameraSession::StartStream(size_t bufferCount) {
    m_device->StartStream(bufferCount == 0 ? kAutomaticBufferCount : bufferCount);
    m_streaming = true;
    m_poolSize = AnnouncedBuffers(*m_device);
    if (bufferCount == 0 && m_poolSize < kMinimumPool) {
        StopStream();
        m_device->StartStream(kMinimumPool);
        m_streaming = true;
        m_poolSize = kMinimumPool;
    }
}

void CameraSession::StopStream() {
    if (!m_streaming)
        return;
    if (m_lent > 0)
        throw std::runtime_error(std::to_string(m_lent) +
                                 " buffers are still held downstream; the stream cannot restart");
    m_streaming = false;
    m_device->StopStream();
}

WaitResult CameraSession::NextImage(uint64_t timeoutMs, const std::atomic<bool>& cancelled,
                                    IImage*& image) {
    const auto start = std::chrono::steady_clock::now();
    for (;;) {
        if (cancelled)
            return WaitResult::Cancelled;
        uint64_t slice = kSliceMs;
        if (timeoutMs > 0) {
            const auto waited = std::chrono::duration_cast<std::chrono::milliseconds>(
                std::chrono::steady_clock::now() - start);
            if (static_cast<uint64_t>(waited.count()) >= timeoutMs)
                return WaitResult::TimedOut;
            slice = std::min<uint64_t>(slice, timeoutMs - static_cast<uint64_t>(waited.count()));
        }
        if (TryGetImage(slice, image))
            return WaitResult::Image;
        CheckConnected();
    }
}

bool CameraSession::TryGetImage(uint64_t sliceMs, IImage*& image) {
    try {
        image = m_device->GetImage(sliceMs);
        return true;
    } catch (const GenICam::TimeoutException&) {
        return false;
    } catch (const GenICam::GenericException& e) {
        CheckConnected();
        throw std::runtime_error(std::string("the stream failed: ") + e.GetDescription());
    }
}

void CameraSession::CheckConnected() {
    if (!m_device->IsConnected())
        throw std::runtime_error("camera " + m_description + " disconnected");
}

void CameraSession::Requeue(IImage* image) {
    try {
        m_device->RequeueBuffer(image);
    } catch (const GenICam::GenericException&) {
    }
}

} // namespace Gst
} // namespace Orvan
