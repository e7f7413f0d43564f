// Takes one image per software trigger instead of a free-running stream.
//
// With TriggerMode On for the FrameStart trigger, the camera waits for a trigger signal before
// each exposure. TriggerSource chooses the signal: a hardware line, an action command, or, as
// here, the TriggerSoftware command sent by the application.
#include <Orvan/OrvanApi.h>

#include <iostream>

int main() {
    Orvan::ISystem* system = nullptr;
    Orvan::IDevice* device = nullptr;
    try {
        system = Orvan::OpenSystem();
        system->UpdateDevices(1000);
        const std::vector<Orvan::DeviceInfo> devices = system->GetDevices();
        if (devices.empty())
            throw GENERIC_EXCEPTION("no camera found");
        device = system->CreateDevice(devices.front());
        GenApi::INodeMap* nodeMap = device->GetNodeMap();

        Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "TriggerSelector", "FrameStart");
        Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "TriggerMode", "On");
        Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "TriggerSource", "Software");

        device->StartStream();
        for (int i = 0; i < 5; ++i) {
            Orvan::ExecuteNode(nodeMap, "TriggerSoftware");
            // Exactly one image answers each trigger.
            Orvan::IImage* image = device->GetImage(2000);
            std::cout << "Trigger " << i + 1 << " -> image " << image->GetFrameId() << '\n';
            device->RequeueBuffer(image);
        }
        device->StopStream();
        // Leave the camera free-running, as other programs expect to find it.
        Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "TriggerMode", "Off");
        std::cout << "Triggered 5 images\n";

        system->DestroyDevice(device);
        Orvan::CloseSystem(system);
        return 0;
    } catch (const GenICam::GenericException& e) {
        std::cerr << "error: " << e.what() << '\n';
        if (device != nullptr)
            system->DestroyDevice(device);
        if (system != nullptr)
            Orvan::CloseSystem(system);
        return 1;
    }
}
