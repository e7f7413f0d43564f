// Colour images from a Bayer camera: streams a few images, demosaics each into one RGB8 image of
// our own and saves the last as a PNG file.
//
//   example_convert_images [output.png]      (default: colour.png in the working directory)
//
// ImageFactory::ConvertInto writes into an image made once with CreateEmpty, so the loop
// allocates nothing; ImageFactory::Convert would return a new image each time. The method trades
// speed for quality: Bilinear is the fastest, AdaptiveHomogeneityDirected keeps edges free of
// false colour and zipper patterns.
#include <Orvan/OrvanApi.h>
#include <OrvanImageFile/ImageFile.h>

#include <chrono>
#include <iostream>
#include <string>

int main(int argc, char** argv) {
    const std::string output = argc > 1 ? argv[1] : "colour.png";
    const int count = 10;
    Orvan::ISystem* system = nullptr;
    Orvan::IDevice* device = nullptr;
    Orvan::IImage* rgb = nullptr;
    try {
        system = Orvan::OpenSystem();
        system->UpdateDevices(1000);
        const std::vector<Orvan::DeviceInfo> devices = system->GetDevices();
        if (devices.empty()) {
            std::cerr << "no camera found\n";
            Orvan::CloseSystem(system);
            return 1;
        }
        device = system->CreateDevice(devices.front());
        GenApi::INodeMap* nodeMap = device->GetNodeMap();
        // The virtual cameras draw colour bars on request; a real camera shows its scene.
        if (GenApi::IsWritable(nodeMap->GetNode("TestPattern")))
            Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "TestPattern", "ColorBar");
        const int64_t width = Orvan::GetNodeValue<int64_t>(nodeMap, "Width");
        const int64_t height = Orvan::GetNodeValue<int64_t>(nodeMap, "Height");
        const GenICam::gcstring format =
            Orvan::GetNodeValue<GenICam::gcstring>(nodeMap, "PixelFormat");

        rgb = Orvan::ImageFactory::CreateEmpty(width * height * 3, width, height, Orvan::RGB8);
        std::chrono::duration<double, std::milli> converting{0};
        device->StartStream();
        uint64_t last = 0;
        for (int i = 0; i < count; ++i) {
            Orvan::IImage* image = device->GetImage(2000);
            const auto start = std::chrono::steady_clock::now();
            Orvan::ImageFactory::ConvertInto(image, rgb,
                                             Orvan::DemosaicMethod::AdaptiveHomogeneityDirected);
            converting += std::chrono::steady_clock::now() - start;
            last = image->GetFrameId();
            device->RequeueBuffer(image);
        }
        device->StopStream();
        std::cout << "Converted " << count << " " << format << " images to RGB8 ("
                  << converting.count() / count << " ms each)\n";

        Orvan::ImageFile::Save(*rgb, output, Orvan::ImageFile::Format::Png);
        std::cout << "Saved image " << last << " (" << width << "x" << height << ") to " << output
                  << '\n';
        Orvan::ImageFactory::Destroy(rgb);
        system->DestroyDevice(device);
        Orvan::CloseSystem(system);
        return 0;
    } catch (const std::exception& e) {
        // GenICam exceptions derive from std::exception, as do the file writer's.
        std::cerr << "error: " << e.what() << '\n';
        if (rgb != nullptr)
            Orvan::ImageFactory::Destroy(rgb);
        if (device != nullptr)
            system->DestroyDevice(device);
        if (system != nullptr)
            Orvan::CloseSystem(system);
        return 1;
    }
}
