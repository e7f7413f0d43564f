// Receives events from the camera: here one "ExposureEnd" message per image.
//
// A camera event is a small message (event ID, timestamp, frame number) that the camera sends on
// its own, apart from the images. Switch each wanted event on with EventSelector and
// EventNotification, call InitializeEvents, then call WaitOnEvent: each call takes one message
// and writes its data into the event's nodes ("EventExposureEndFrameID", ...), whose callbacks
// then run on the thread that called WaitOnEvent.
#include <Orvan/OrvanApi.h>

#include <iostream>

namespace {

int g_events = 0;

// A node callback: called whenever the node may have changed, here with each event. It is also
// called when the event data goes away (no event yet, events switched off): then the node is not
// readable.
void OnExposureEnd(GenApi::INode* node) {
    GenApi::CIntegerPtr frame = node;
    if (!GenApi::IsReadable(frame))
        return;
    std::cout << "ExposureEnd event for frame " << frame->GetValue() << '\n';
    ++g_events;
}

} // namespace

int main() {
    Orvan::ISystem* system = nullptr;
    Orvan::IDevice* device = nullptr;
    GenApi::CallbackHandleType handle = 0;
    try {
        system = Orvan::OpenSystem();
        system->UpdateDevices(1000);
        const std::vector<Orvan::DeviceInfo> devices = system->GetDevices();
        if (devices.empty())
            throw GENERIC_EXCEPTION("no camera found");
        device = system->CreateDevice(devices.front());

        GenApi::INodeMap* nodeMap = device->GetNodeMap();
        Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "EventSelector", "ExposureEnd");
        Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "EventNotification", "On");
        handle = GenApi::Register(nodeMap->GetNode("EventExposureEndFrameID"), OnExposureEnd);
        device->InitializeEvents();

        // Images are taken and given back as usual; the events come on their own channel.
        device->StartStream();
        for (int i = 0; i < 5; ++i) {
            device->WaitOnEvent(2000);
            device->RequeueBuffer(device->GetImage(2000));
        }
        device->StopStream();
        std::cout << "Last event's timestamp: "
                  << Orvan::GetNodeValue<int64_t>(nodeMap, "EventExposureEndTimestamp") << " ns\n";

        device->DeinitializeEvents();
        GenApi::Deregister(handle);
        std::cout << "Received " << g_events << " events\n";
        system->DestroyDevice(device);
        Orvan::CloseSystem(system);
        return 0;
    } catch (const GenICam::GenericException& e) {
        std::cerr << "error: " << e.what() << '\n';
        GenApi::Deregister(handle);
        if (device != nullptr)
            system->DestroyDevice(device);
        if (system != nullptr)
            Orvan::CloseSystem(system);
        return 1;
    }
}
