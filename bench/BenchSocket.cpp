// A 12-megapixel Mono8 image through Socket::SendImage and Socket::ReceiveImage on loopback,
// beside a plain UDP loop that sends and receives the same datagrams. The receiver runs on its
// own thread, waiting, as in an application; one iteration ends when the image is complete.
#include <Orvan/OrvanApi.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>
#include <vector>

namespace {

constexpr size_t kWidth = 4000;
constexpr size_t kHeight = 3000;
constexpr size_t kBytes = kWidth * kHeight;
constexpr size_t kPiece = 1024;
constexpr int kReceiveBuffer = 64 << 20;

sockaddr_in Loopback(uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

// Waits for the receiver to count `expected` images; false when one never completes.
bool AwaitReceived(const std::atomic<int64_t>& received, int64_t expected) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (received.load() < expected) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::yield();
    }
    return true;
}

uint16_t BoundPort(int fd) {
    sockaddr_in address = Loopback(0);
    socklen_t length = sizeof(address);
    ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address));
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
    return ntohs(address.sin_port);
}

void BM_SocketSendReceive(benchmark::State& state) {
    Orvan::ISystem* system = Orvan::OpenSystem();
    const std::vector<uint8_t> pixels(kBytes, 0x5A);
    Orvan::IImage* image =
        Orvan::ImageFactory::Create(pixels.data(), kBytes, kWidth, kHeight, Orvan::Mono8);
    // The kernel picks a free port for a probe socket, which is then handed to the listener.
    const int probe = ::socket(AF_INET, SOCK_DGRAM, 0);
    const uint16_t port = BoundPort(probe);
    ::close(probe);
    Orvan::Socket receiver;
    receiver.OpenListener(port);
    Orvan::Socket sender;
    sender.OpenSender();
    sender.AddDestination(port);

    std::atomic<int64_t> received{0};
    std::thread receiving([&] {
        while (Orvan::IImage* arrived = receiver.ReceiveImage()) {
            Orvan::ImageFactory::Destroy(arrived);
            ++received;
        }
    });
    int64_t sent = 0;
    for (auto _ : state) {
        sender.SendImage(image);
        if (!AwaitReceived(received, ++sent)) {
            state.SkipWithError("an image did not arrive whole");
            break;
        }
    }
    receiver.CloseListener();
    receiving.join();
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kBytes));
    Orvan::ImageFactory::Destroy(image);
    Orvan::CloseSystem(system);
}

// The same datagrams with bare sendto and recv: metadata, pixel format, 1024-byte pieces.
void BM_PlainUdpSendReceive(benchmark::State& state) {
    const std::vector<uint8_t> pixels(kBytes, 0x5A);
    const int listener = ::socket(AF_INET, SOCK_DGRAM, 0);
    setsockopt(listener, SOL_SOCKET, SO_RCVBUFFORCE, &kReceiveBuffer, sizeof(kReceiveBuffer));
    const sockaddr_in to = Loopback(BoundPort(listener));
    const int sender = ::socket(AF_INET, SOCK_DGRAM, 0);
    auto send = [&](const void* data, size_t length) {
        ::sendto(sender, data, length, 0, reinterpret_cast<const sockaddr*>(&to), sizeof(to));
    };

    std::atomic<bool> running{true};
    std::atomic<int64_t> received{0};
    std::thread receiving([&] {
        std::vector<uint8_t> image(kBytes);
        uint8_t piece[8192];
        while (running.load()) {
            if (::recv(listener, piece, 12, 0) <= 0 || ::recv(listener, piece, 8, 0) <= 0)
                return;
            for (size_t total = 0; total < kBytes;) {
                const long count = ::recv(listener, piece, sizeof(piece), 0);
                if (count <= 0)
                    return;
                std::memcpy(image.data() + total, piece, std::min(kBytes - total, size_t(count)));
                total += size_t(count);
            }
            ++received;
        }
    });
    const uint32_t metadata[3] = {kWidth, kHeight, kBytes};
    const uint64_t pixelFormat = Orvan::Mono8;
    int64_t sent = 0;
    for (auto _ : state) {
        send(metadata, sizeof(metadata));
        send(&pixelFormat, sizeof(pixelFormat));
        for (size_t offset = 0; offset < kBytes; offset += kPiece)
            send(pixels.data() + offset, std::min(kPiece, kBytes - offset));
        if (!AwaitReceived(received, ++sent)) {
            state.SkipWithError("an image did not arrive whole");
            break;
        }
    }
    running = false;
    ::shutdown(listener, SHUT_RDWR);
    receiving.join();
    ::close(listener);
    ::close(sender);
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kBytes));
}

} // namespace

BENCHMARK(BM_PlainUdpSendReceive)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_SocketSendReceive)->Unit(benchmark::kMillisecond)->UseRealTime();
