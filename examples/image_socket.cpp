// Passes an image and a text command between two threads over the image socket. The two halves
// work the same way in two processes on one machine: the socket uses UDP on the loopback address.
//
//   example_image_socket [port]   (default 50600)
#include <Orvan/OrvanApi.h>

#include <chrono>
#include <cstdlib>
#include <future>
#include <iostream>
#include <string>
#include <vector>

namespace {

// The receiving half: one command, then one image.
size_t Receive(Orvan::Socket& listener) {
    const std::string command = listener.ReceiveMessage();
    std::cout << "Received command \"" << command << "\"\n";
    // The received image is a new factory image of the same size and pixel format.
    Orvan::IImage* image = listener.ReceiveImage();
    if (image == nullptr)
        return 0;
    std::cout << "Received a " << image->GetWidth() << "x" << image->GetHeight() << " image\n";
    const size_t bytes = image->GetSizeFilled();
    Orvan::ImageFactory::Destroy(image);
    return bytes;
}

} // namespace

int main(int argc, char** argv) {
    const uint16_t port = static_cast<uint16_t>(argc > 1 ? std::atoi(argv[1]) : 50600);
    Orvan::ISystem* system = nullptr;
    try {
        // The factory, which makes the received images, needs an open system.
        system = Orvan::OpenSystem();

        // Listen before anything is sent: datagrams to a port nobody listens on are lost.
        Orvan::Socket listener;
        listener.OpenListener(port);
        std::future<size_t> received = std::async(std::launch::async, Receive, std::ref(listener));

        const size_t width = 320, height = 240;
        std::vector<uint8_t> pixels(width * height, 128);
        Orvan::IImage* image =
            Orvan::ImageFactory::Create(pixels.data(), pixels.size(), width, height, Orvan::Mono8);
        Orvan::Socket sender;
        sender.OpenSender();
        sender.AddDestination(port);
        sender.SendCommand("image follows");
        sender.SendImage(image);
        Orvan::ImageFactory::Destroy(image);

        // UDP may drop datagrams; a receive that waits too long is ended by closing the listener.
        if (received.wait_for(std::chrono::seconds(5)) != std::future_status::ready)
            listener.CloseListener();
        const size_t bytes = received.get();
        sender.CloseSender();
        listener.CloseListener();
        std::cout << (bytes == pixels.size() ? "Image arrived whole\n" : "Image was lost\n");

        Orvan::CloseSystem(system);
        return bytes == pixels.size() ? 0 : 1;
    } catch (const GenICam::GenericException& e) {
        std::cerr << "error: " << e.what() << '\n';
        if (system != nullptr)
            Orvan::CloseSystem(system);
        return 1;
    }
}
