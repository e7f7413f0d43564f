// Images that do not come from a stream: made from your own pixels, copied from a delivered
// image, and processed per pixel format.
//
// The image factory's images belong to you until ImageFactory::Destroy; delivered images stay the
// device's and go back with RequeueBuffer. Copy a delivered image when you need it for longer than
// one requeue cycle. The factory works between OpenSystem and CloseSystem.
#include <Orvan/OrvanApi.h>

#include <iostream>
#include <vector>

int main() {
    Orvan::ISystem* system = nullptr;
    Orvan::IDevice* device = nullptr;
    try {
        system = Orvan::OpenSystem();

        // An image owning a copy of our pixels: a 64 x 48 horizontal ramp in Mono8.
        const size_t width = 64, height = 48;
        std::vector<uint8_t> ramp(width * height);
        for (size_t i = 0; i < ramp.size(); ++i)
            ramp[i] = static_cast<uint8_t>(i % width * 4);
        Orvan::IImage* made =
            Orvan::ImageFactory::Create(ramp.data(), ramp.size(), width, height, Orvan::Mono8);
        // A view of our pixels without a copy; `ramp` must outlive it.
        Orvan::IImage* view =
            Orvan::ImageFactory::Shallow(ramp.data(), ramp.size(), width, height, Orvan::Mono8);
        // A zeroed 16-bit image to fill.
        Orvan::IImage* empty =
            Orvan::ImageFactory::CreateEmpty(width * height * 2, width, height, Orvan::Mono16);
        std::cout << "Created " << made->GetWidth() << "x" << made->GetHeight()
                  << " images; pixel 50 is " << int(made->GetData()[50])
                  << " in the copy and the view: " << int(view->GetData()[50])
                  << ", 0 in the empty one: " << int(empty->GetData()[50]) << '\n';

        // Per-format processing goes through the format's traits object.
        Orvan::IImplementation* mono8 = Orvan::GetPixelFormat(Orvan::Mono8);
        std::vector<uint8_t> invert(256);
        for (size_t v = 0; v < invert.size(); ++v)
            invert[v] = static_cast<uint8_t>(255 - v);
        Orvan::IImage* inverted = mono8->ProcessSoftwareLUT(made, invert.data(), invert.size());
        Orvan::IImage* topBits = mono8->SelectBitsAndScale(made, 2, 1.0);
        std::cout << "Pixel 50 inverted: " << int(inverted->GetData()[50])
                  << ", reduced to its two top bits: " << int(topBits->GetData()[50]) << '\n';
        Orvan::DestroyPixelFormat(mono8);

        // A copy of a camera image stays valid after the original went back to the stream.
        system->UpdateDevices(1000);
        const std::vector<Orvan::DeviceInfo> devices = system->GetDevices();
        if (devices.empty())
            throw GENERIC_EXCEPTION("no camera found");
        device = system->CreateDevice(devices.front());
        device->StartStream();
        Orvan::IImage* delivered = device->GetImage(2000);
        Orvan::IImage* copy = Orvan::ImageFactory::Copy(delivered);
        device->RequeueBuffer(delivered);
        device->StopStream();
        std::cout << "Copied camera image " << copy->GetFrameId() << " (" << copy->GetWidth() << "x"
                  << copy->GetHeight() << ")\n";

        for (Orvan::IImage* image : {made, view, empty, inverted, topBits, copy})
            Orvan::ImageFactory::Destroy(image);
        std::cout << "Destroyed 6 factory images\n";

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
