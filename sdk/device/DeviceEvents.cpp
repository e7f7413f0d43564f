// The camera's own event messages, delivered into the device node map.
#include "Device.h"

#include "core/ErrorTranslation.h"

#include <GenApi/AccessModeHelpers.h>
#include <GenApi/EventAdapterGEV.h>
#include <GenApi/Pointer.h>

#include <vector>

namespace Orvan {
namespace {

#define EVENTS_SITE(function) ORVAN_SITE("Device", function)

// A GigE Vision message channel datagram is far smaller; the producer's own limit is 4 KiB.
constexpr size_t kEventBufferSize = 4096;

bool IsGigEVision(GenApi::INodeMap* tlDeviceNodeMap) {
    GenApi::CEnumerationPtr type =
        tlDeviceNodeMap ? tlDeviceNodeMap->GetNode("DeviceType") : nullptr;
    if (!GenApi::IsReadable(type))
        return false;
    GenApi::IEnumEntry* entry = type->GetCurrentEntry();
    return entry && entry->GetSymbolic() == "GigEVision";
}

} // namespace

void Device::InitializeEvents() {
    std::lock_guard<std::mutex> lock(m_eventMutex);
    if (!m_tlDevice)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Device is null",
                                                             EVENTS_SITE("InitializeEvents"));
    if (m_deviceEvent)
        return;
    void* event = nullptr;
    int32_t status = m_tlDevice->RegisterEvent(GenTL::EVENT_REMOTE_DEVICE, &event);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to register remote device events",
                        EVENTS_SITE("InitializeEvents"), "GCRegisterEvent, EVENT_REMOTE_DEVICE");
    m_deviceEvent = new TLEvent(event);
    if (IsGigEVision(m_tlDeviceNodeMap))
        m_eventAdapter = new GenApi::CEventAdapterGEV(m_nodeMap);
}

void Device::DeinitializeEvents() {
    std::lock_guard<std::mutex> lock(m_eventMutex);
    if (!m_deviceEvent)
        return;
    int32_t status = m_tlDevice->UnregisterEvent(GenTL::EVENT_REMOTE_DEVICE);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to unregister remote device events",
                        EVENTS_SITE("DeinitializeEvents"),
                        "GCUnregisterEvent, EVENT_REMOTE_DEVICE");
    delete m_deviceEvent;
    m_deviceEvent = nullptr;
    delete m_eventAdapter;
    m_eventAdapter = nullptr;
}

// Holds the event mutex while it waits, so a concurrent DeinitializeEvents waits for it.
void Device::WaitOnEvent(uint64_t timeout) {
    std::lock_guard<std::mutex> lock(m_eventMutex);
    if (!m_deviceEvent)
        ThrowLibraryError<GenICam::LogicalErrorException>(
            "Failure waiting on event because device events not initialized",
            EVENTS_SITE("WaitOnEvent"));
    std::vector<uint8_t> message(kEventBufferSize);
    size_t size = message.size();
    int32_t status = m_deviceEvent->GetData(message.data(), &size, timeout);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to get event data", EVENTS_SITE("WaitOnEvent"),
                        "EventGetData");
    if (m_eventAdapter)
        m_eventAdapter->DeliverMessage(message.data(), static_cast<uint32_t>(size));
}

} // namespace Orvan
