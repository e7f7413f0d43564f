// The event-based-sensor stream: the stream itself runs as any other, plus the vendor trigger
// event on its data stream.
#include "Device.h"

#include "core/ErrorTranslation.h"

#include <GenTL/GenTLExtensions.h>

#include <string>

namespace Orvan {
namespace {

#define EVS_SITE(function) ORVAN_SITE("Device", function)

// The producer's limit for one vendor stream event.
constexpr size_t kTriggerEventBufferSize = 64 * 1024;

} // namespace

void Device::StartStreamEVS(int stream, size_t numBuffers) {
    StartStream(stream, numBuffers);
    int32_t status = GenTL::GC_ERR_SUCCESS;
    std::string text;
    {
        std::lock_guard<std::mutex> lock(m_deviceMutex);
        TLDataStream* dataStream = Stream(stream, "StartStreamEVS")->GetTLDataStream();
        void* event = nullptr;
        status = dataStream->RegisterEvent(GenTL::EVENT_ORVAN_EVS_TRIGGER, &event);
        if (status == GenTL::GC_ERR_SUCCESS) {
            m_evsTriggerEvent.reset(new TLEvent(event));
            return;
        }
        text = ProducerErrorText();
    }
    try {
        StopStream(stream);
    } catch (const GenICam::GenericException&) {
    }
    ThrowGenTLError(status, "Unable to register trigger events", EVS_SITE("StartStreamEVS"),
                    "GCRegisterEvent, EVENT_ORVAN_EVS_TRIGGER", text);
}

void Device::StopStreamEVS(int stream) {
    {
        std::lock_guard<std::mutex> lock(m_deviceMutex);
        TLDataStream* dataStream = Stream(stream, "StopStreamEVS")->GetTLDataStream();
        if (m_evsTriggerEvent) {
            int32_t status = dataStream->UnregisterEvent(GenTL::EVENT_ORVAN_EVS_TRIGGER);
            if (status != GenTL::GC_ERR_SUCCESS)
                ThrowGenTLError(status, "Unable to unregister trigger events",
                                EVS_SITE("StopStreamEVS"),
                                "GCUnregisterEvent, EVENT_ORVAN_EVS_TRIGGER");
            m_evsTriggerEvent.reset();
        }
    }
    StopStream(stream);
}

std::vector<uint8_t> Device::GetNextEvsTriggerEvent(uint64_t timeout) {
    TLEvent* event = m_evsTriggerEvent.get();
    if (!event)
        ThrowLibraryError<GenICam::LogicalErrorException>(
            "Unable to get trigger event data, event handle is NULL",
            EVS_SITE("GetNextEvsTriggerEvent"));
    std::vector<uint8_t> data(kTriggerEventBufferSize);
    size_t size = data.size();
    int32_t status = event->GetData(data.data(), &size, timeout);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to get trigger event data",
                        EVS_SITE("GetNextEvsTriggerEvent"), "EventGetData");
    data.resize(size);
    return data;
}

} // namespace Orvan
