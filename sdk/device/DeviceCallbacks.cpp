// Image callbacks and their thread, and the device queries the disconnect poller and action
// commands use.
#include "Device.h"

#include "core/ErrorTranslation.h"

#include <GenApi/AccessModeHelpers.h>
#include <GenApi/Pointer.h>

#include <GenTL/GenTLExtensions.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace Orvan {
namespace {

#define CALLBACK_SITE(function) ORVAN_SITE("Device", function)

constexpr uint64_t kCallbackPollTimeoutMs = 50;
constexpr std::chrono::milliseconds kFirstPause(1);
constexpr std::chrono::milliseconds kLongestPause(200);
constexpr std::chrono::milliseconds kPauseStep(10);

} // namespace

void Device::RegisterImageCallback(IImageCallback* callback) {
    if (!callback)
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Null image callback pointer specified", CALLBACK_SITE("RegisterImageCallback"));
    // The device mutex keeps a stop from slipping between the grabbing check and the thread
    // start.
    std::lock_guard<std::mutex> deviceLock(m_deviceMutex);
    std::lock_guard<std::mutex> lock(m_callbackMutex);
    if (std::find(m_imageCallbacks.begin(), m_imageCallbacks.end(), callback) !=
        m_imageCallbacks.end())
        ThrowGenTLError(GenTL::GC_ERR_INVALID_PARAMETER, "Callback already registered",
                        CALLBACK_SITE("RegisterImageCallback"), "DeviceRegisterImageCallback");
    m_imageCallbacks.push_back(callback);
    const uint32_t selected = m_selectedStream;
    if (selected >= m_streams.size() || m_callbackThread.joinable())
        return;
    GenApi::INodeMap* streamNodeMap = m_streams[selected]->GetNodeMap();
    GenApi::CBooleanPtr grabbing =
        streamNodeMap ? streamNodeMap->GetNode("StreamIsGrabbing") : nullptr;
    if (GenApi::IsReadable(grabbing) && grabbing->GetValue()) {
        m_callbackRun = true;
        m_callbackThread = std::thread(&Device::ImageCallbackThread, this);
    }
}

void Device::DeregisterImageCallback(IImageCallback* callback) {
    if (!callback)
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Null image callback pointer specified", CALLBACK_SITE("DeregisterImageCallback"));
    {
        std::lock_guard<std::mutex> lock(m_callbackMutex);
        m_imageCallbacks.erase(
            std::remove(m_imageCallbacks.begin(), m_imageCallbacks.end(), callback),
            m_imageCallbacks.end());
        if (!m_imageCallbacks.empty())
            return;
    }
    StopCallbackThread();
}

void Device::DeregisterAllImageCallbacks() {
    {
        std::lock_guard<std::mutex> lock(m_callbackMutex);
        m_imageCallbacks.clear();
    }
    StopCallbackThread();
}

// Callers hold the device mutex.
void Device::StartCallbackThreadIfNeeded() {
    std::lock_guard<std::mutex> lock(m_callbackMutex);
    if (m_imageCallbacks.empty() || m_callbackThread.joinable())
        return;
    m_callbackRun = true;
    m_callbackThread = std::thread(&Device::ImageCallbackThread, this);
}

// The thread takes the callback mutex for every image, so it is joined outside that mutex.
void Device::StopCallbackThread() {
    std::thread thread;
    {
        std::lock_guard<std::mutex> lock(m_callbackMutex);
        m_callbackRun = false;
        thread = std::move(m_callbackThread);
    }
    if (thread.joinable())
        thread.join();
}

// Nothing the stream does may end this thread or the process: every failure is swallowed. A
// wait that fails at once, again and again (the stream stopped or changed underneath), backs
// off instead of spinning.
void Device::ImageCallbackThread() {
    std::chrono::milliseconds pause(0);
    while (m_callbackRun) {
        IBuffer* buffer = nullptr;
        const auto asked = std::chrono::steady_clock::now();
        try {
            buffer = GetBuffer(kCallbackPollTimeoutMs);
        } catch (...) {
        }
        if (!buffer) {
            const bool failedAtOnce = std::chrono::steady_clock::now() - asked <
                                      std::chrono::milliseconds(kCallbackPollTimeoutMs / 2);
            pause = failedAtOnce ? std::min(std::max(pause * 2, kFirstPause), kLongestPause)
                                 : std::chrono::milliseconds(0);
            PauseCallbackThread(pause);
            continue;
        }
        pause = std::chrono::milliseconds(0);
        DeliverToCallbacks(buffer);
    }
}

void Device::DeliverToCallbacks(IBuffer* buffer) {
    IImage* image = buffer->AsImage();
    std::lock_guard<std::mutex> lock(m_callbackMutex);
    try {
        if (image)
            for (IImageCallback* callback : m_imageCallbacks)
                callback->OnImage(image);
    } catch (...) {
        // A failing callback costs the later callbacks this image, never the buffer.
    }
    try {
        RequeueBuffer(buffer);
    } catch (...) {
    }
}

// Sleeps in short steps so that a stop never waits long for the thread.
void Device::PauseCallbackThread(std::chrono::milliseconds pause) {
    const auto until = std::chrono::steady_clock::now() + pause;
    while (m_callbackRun && std::chrono::steady_clock::now() < until)
        std::this_thread::sleep_for(std::min(pause, kPauseStep));
}

bool Device::IsConnected() {
    if (!m_tlDevice)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Device is null",
                                                             CALLBACK_SITE("IsConnected"));
    GenTL::bool8_t connected = 0;
    GenTL::INFO_DATATYPE type = GenTL::INFO_DATATYPE_BOOL8;
    size_t size = sizeof(connected);
    int32_t status =
        m_tlDevice->GetInfo(GenTL::DEVICE_INFO_ORVAN_CONNECTED, &type, &connected, &size);
    // Another maker's producer does not know our item; it still tells whether the device it
    // opened for us is reachable.
    if (status == GenTL::GC_ERR_NOT_IMPLEMENTED) {
        int32_t access = GenTL::DEVICE_ACCESS_STATUS_UNKNOWN;
        size = sizeof(access);
        status = m_tlDevice->GetInfo(GenTL::DEVICE_INFO_ACCESS_STATUS, &type, &access, &size);
        connected = access == GenTL::DEVICE_ACCESS_STATUS_OPEN_READWRITE ||
                    access == GenTL::DEVICE_ACCESS_STATUS_OPEN_READONLY;
    }
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to get info about device connection status",
                        CALLBACK_SITE("IsConnected"), "DeviceGetInfo");
    return connected != 0;
}

void Device::SendActionCommand(uint32_t deviceKey, uint32_t groupKey, uint32_t groupMask,
                               uint64_t actionTime) {
    if (!m_tlDevice)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Device is null",
                                                             CALLBACK_SITE("SendActionCommand"));
    int32_t status = m_tlDevice->SendActionCommand(deviceKey, groupKey, groupMask, actionTime);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Failed to issue action command",
                        CALLBACK_SITE("SendActionCommand"), "DeviceSendActionCommand");
}

} // namespace Orvan
