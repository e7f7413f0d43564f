// Opens the first camera, streams a few images and prints what each one is.
//
// Images handed out by GetImage stay the device's: the pixels live in the stream's buffer pool
// and are never copied. Give every image back with RequeueBuffer as soon as you are done with it,
// or the camera runs out of buffers to fill.
#include <Orvan/OrvanApi.h>

#include <iostream>

int main() {
    Orvan::ISystem* system = nullptr;
    Orvan::IDevice* device = nullptr;
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

        // Features are read and written by name through the device's node map.
        GenApi::INodeMap* nodeMap = device->GetNodeMap();
        Orvan::SetNodeValue<int64_t>(nodeMap, "Width", 640);
        Orvan::SetNodeValue<int64_t>(nodeMap, "Height", 480);
        Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "PixelFormat", "Mono8");

        // Without an argument the SDK sizes the buffer pool to the camera's throughput.
        device->StartStream();
        for (int i = 0; i < 10; ++i) {
            // Waits up to 2000 ms; a time-out throws a GenICam::TimeoutException.
            Orvan::IImage* image = device->GetImage(2000);
            const uint8_t* pixels = image->GetData();
            std::cout << "Image " << image->GetFrameId() << ": " << image->GetWidth() << "x"
                      << image->GetHeight() << ", " << image->GetBitsPerPixel()
                      << " bits per pixel, first pixel " << int(pixels[0])
                      << (image->IsIncomplete() ? ", incomplete" : "") << '\n';
            device->RequeueBuffer(image);
        }
        device->StopStream();

        system->DestroyDevice(device);
        Orvan::CloseSystem(system);
        std::cout << "Acquired 10 images\n";
        return 0;
    } catch (const GenICam::GenericException& e) {
        std::cerr << "error: " << e.what() << '\n';
        // Destroying a device also stops its stream.
        if (device != nullptr)
            system->DestroyDevice(device);
        if (system != nullptr)
            Orvan::CloseSystem(system);
        return 1;
    }
}
