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
    if (m_deviceEvent.IsSet())
        return;
    void* event = nullptr;
    int32_t status = m_tlDevice->RegisterEvent(GenTL::EVENT_REMOTE_DEVICE, &event);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to register remote device events",
                        EVENTS_SITE("InitializeEvents"), "GCRegisterEvent, EVENT_REMOTE_DEVICE");
    // The adapter exists before any waiter can see the event.
    if (IsGigEVision(m_tlDeviceNodeMap))
        m_eventAdapter = new GenApi::CEventAdapterGEV(m_nodeMap);
    m_deviceEvent.Set(std::make_unique<TLEvent>(event));
}

// Waits in progress end at once with an abort rather than holding the caller up.
void Device::DeinitializeEvents() {
    std::lock_guard<std::mutex> lock(m_eventMutex);
    std::unique_ptr<TLEvent> event = m_deviceEvent.Take();
    if (!event)
        return;
    int32_t status = m_tlDevice->UnregisterEvent(GenTL::EVENT_REMOTE_DEVICE);
    if (status != GenTL::GC_ERR_SUCCESS) {
        m_deviceEvent.Set(std::move(event));
        ThrowGenTLError(status, "Unable to unregister remote device events",
                        EVENTS_SITE("DeinitializeEvents"),
                        "GCUnregisterEvent, EVENT_REMOTE_DEVICE");
    }
    delete m_eventAdapter;
    m_eventAdapter = nullptr;
}

// Waits without the event mutex, so that switching events off, or destroying the device, ends
// the wait instead of waiting for it.
void Device::WaitOnEvent(uint64_t timeout) {
    int32_t status = GenTL::GC_ERR_SUCCESS;
    const bool initialised = m_deviceEvent.With([&](TLEvent* event) {
        std::vector<uint8_t> message(kEventBufferSize);
        size_t size = message.size();
        status = event->GetData(message.data(), &size, timeout);
        std::lock_guard<std::mutex> lock(m_deliveryMutex);
        if (status == GenTL::GC_ERR_SUCCESS && m_eventAdapter)
            m_eventAdapter->DeliverMessage(message.data(), static_cast<uint32_t>(size));
    });
    if (!initialised)
        ThrowLibraryError<GenICam::LogicalErrorException>(
            "Failure waiting on event because device events not initialized",
            EVENTS_SITE("WaitOnEvent"));
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to get event data", EVENTS_SITE("WaitOnEvent"),
                        "EventGetData");
}

} // namespace Orvan
