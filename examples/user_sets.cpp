// Stores settings in the camera itself with user sets, and loads them back.
//
// A user set is a slot in the camera's memory holding its persistent settings. UserSetSelector
// chooses the slot, UserSetSave stores the current settings there and UserSetLoad brings them
// back. "Default" holds the maker's settings and cannot be overwritten. UserSetDefault names the
// set the camera loads when it starts.
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

        // Store a gain and an exposure time in UserSet1.
        Orvan::SetNodeValue<double>(nodeMap, "Gain", 12.0);
        Orvan::SetNodeValue<double>(nodeMap, "ExposureTime", 8000.0);
        Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "UserSetSelector", "UserSet1");
        Orvan::ExecuteNode(nodeMap, "UserSetSave");
        std::cout << "Saved Gain 12 dB and ExposureTime 8000 us to UserSet1\n";

        // Back to the maker's settings...
        Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "UserSetSelector", "Default");
        Orvan::ExecuteNode(nodeMap, "UserSetLoad");
        std::cout << "After loading Default: Gain " << Orvan::GetNodeValue<double>(nodeMap, "Gain")
                  << " dB\n";

        // ...and to ours again.
        Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "UserSetSelector", "UserSet1");
        Orvan::ExecuteNode(nodeMap, "UserSetLoad");
        std::cout << "After loading UserSet1: Gain " << Orvan::GetNodeValue<double>(nodeMap, "Gain")
                  << " dB, ExposureTime " << Orvan::GetNodeValue<double>(nodeMap, "ExposureTime")
                  << " us\n";

        // To make the camera start with UserSet1, one would also set:
        //   Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "UserSetDefault", "UserSet1");
        std::cout << "The camera starts with "
                  << Orvan::GetNodeValue<GenICam::gcstring>(nodeMap, "UserSetDefault") << '\n';

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
