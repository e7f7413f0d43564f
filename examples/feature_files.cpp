// Saves a camera's settings to a feature file and restores them from it.
//
// A FeatureStream writes the values of a node map's features to a GenApi persistence file, a
// plain text file of "name value" lines, and writes them back later in the same order. Without a
// selection it saves every feature that can be saved; select features with << to save only those.
//
//   example_feature_files [file]   (default: camera-features.txt in the working directory)
#include <Orvan/OrvanApi.h>

#include <iostream>
#include <string>

namespace {

void Show(GenApi::INodeMap* nodeMap, const char* when) {
    std::cout << when << ": Width " << Orvan::GetNodeValue<int64_t>(nodeMap, "Width") << ", Gain "
              << Orvan::GetNodeValue<double>(nodeMap, "Gain") << " dB, PixelFormat "
              << Orvan::GetNodeValue<GenICam::gcstring>(nodeMap, "PixelFormat") << '\n';
}

} // namespace

int main(int argc, char** argv) {
    const std::string file = argc > 1 ? argv[1] : "camera-features.txt";
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

        Orvan::SetNodeValue<int64_t>(nodeMap, "Width", 800);
        Orvan::SetNodeValue<double>(nodeMap, "Gain", 3.0);
        Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "PixelFormat", "Mono12");
        Show(nodeMap, "Saved   ");
        {
            // The stream holds the node map, not the file: it may be used for both directions.
            Orvan::FeatureStream features(nodeMap);
            features.Write(file.c_str());
        }

        Orvan::SetNodeValue<int64_t>(nodeMap, "Width", 640);
        Orvan::SetNodeValue<double>(nodeMap, "Gain", 10.0);
        Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "PixelFormat", "Mono8");
        Show(nodeMap, "Changed ");

        // Features that cannot be set now (read-only ones, for instance) are passed over.
        Orvan::FeatureStream features(nodeMap);
        features.Read(file.c_str());
        Show(nodeMap, "Restored");

        // Only some features: select them, then write. Their values are those at selection.
        Orvan::FeatureStream some(nodeMap);
        some << "Width"
             << "Height"
             << "ExposureTime";
        some.Write((file + ".geometry").c_str());
        std::cout << "Wrote " << file << " and " << file << ".geometry\n";

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
