// The event-based-sensor stream: the stream itself runs as any other, plus the vendor trigger
// event on its data stream.
#include "Device.h"

#include "core/ErrorTranslation.h"

#include <GenApi/GenApi.h>
#include <GenTL/GenTLExtensions.h>

#include <string>

namespace Orvan {
namespace {

#define EVS_SITE(function) ORVAN_SITE("Device", function)

// The producer's limit for one vendor stream event.
constexpr size_t kTriggerEventBufferSize = 64 * 1024;

// The stream hands out event data in the format its node map names; it must be the one the
// camera sends, or the application would decode the data wrongly. Cameras and producers without
// these features are left as they are.
void MatchOutputFormat(GenApi::INodeMap* deviceNodeMap, GenApi::INodeMap* streamNodeMap) {
    if (!deviceNodeMap || !streamNodeMap)
        return;
    GenApi::CEnumerationPtr cameraFormat = deviceNodeMap->GetNode("EventFormat");
    GenApi::CEnumerationPtr outputFormat = streamNodeMap->GetNode("StreamEvsOutputFormat");
    if (!cameraFormat || !outputFormat || !GenApi::IsReadable(cameraFormat) ||
        !GenApi::IsWritable(outputFormat))
        return;
    GenICam::gcstring format = cameraFormat->ToString();
    if (outputFormat->GetEntryByName(format))
        outputFormat->FromString(format);
}

} // namespace

void Device::StartStreamEVS(int stream, size_t numBuffers) {
    {
        std::lock_guard<std::mutex> lock(m_deviceMutex);
        MatchOutputFormat(m_nodeMap, Stream(stream, "StartStreamEVS")->GetNodeMap());
    }
    StartStream(stream, numBuffers);
    int32_t status = GenTL::GC_ERR_SUCCESS;
    std::string text;
    {
        std::lock_guard<std::mutex> lock(m_deviceMutex);
        TLDataStream* dataStream = Stream(stream, "StartStreamEVS")->GetTLDataStream();
        void* event = nullptr;
        status = dataStream->RegisterEvent(GenTL::EVENT_ORVAN_EVS_TRIGGER, &event);
        if (status == GenTL::GC_ERR_SUCCESS) {
            m_evsTriggerEvent.Set(std::make_unique<TLEvent>(event));
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
        if (std::unique_ptr<TLEvent> event = m_evsTriggerEvent.Take()) {
            int32_t status = dataStream->UnregisterEvent(GenTL::EVENT_ORVAN_EVS_TRIGGER);
            if (status != GenTL::GC_ERR_SUCCESS) {
                m_evsTriggerEvent.Set(std::move(event));
                ThrowGenTLError(status, "Unable to unregister trigger events",
                                EVS_SITE("StopStreamEVS"),
                                "GCUnregisterEvent, EVENT_ORVAN_EVS_TRIGGER");
            }
        }
    }
    StopStream(stream);
}

std::vector<uint8_t> Device::GetNextEvsTriggerEvent(uint64_t timeout) {
    std::vector<uint8_t> data(kTriggerEventBufferSize);
    size_t size = data.size();
    int32_t status = GenTL::GC_ERR_SUCCESS;
    if (!m_evsTriggerEvent.With(
            [&](TLEvent* event) { status = event->GetData(data.data(), &size, timeout); }))
        ThrowLibraryError<GenICam::LogicalErrorException>(
            "Unable to get trigger event data, event handle is NULL",
            EVS_SITE("GetNextEvsTriggerEvent"));
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to get trigger event data",
                        EVS_SITE("GetNextEvsTriggerEvent"), "EventGetData");
    data.resize(size);
    return data;
}

} // namespace Orvan
