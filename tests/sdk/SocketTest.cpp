// The image socket over loopback: images and commands between two processes, the datagrams on
// the wire, and what damaged or stray datagrams do to a receiver.
#include "FactorySystem.h"
#include "FakeImage.h"
#include "SpineTestSupport.h"

#include <Orvan/OrvanApi.h>
#include <Orvan/PfncFormatList.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <random>
#include <thread>

using Orvan::Socket;
using SpineTest::Message;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

FakeImage Pattern(uint64_t pixelFormat, size_t width, size_t height, unsigned seed) {
    std::vector<uint8_t> pixels(width * height * Orvan::GetBitsPerPixel(pixelFormat) / 8);
    std::mt19937 random(seed);
    for (uint8_t& pixel : pixels)
        pixel = static_cast<uint8_t>(random());
    return FakeImage(pixelFormat, width, height, std::move(pixels));
}

void ExpectSameImage(FakeImage& sent, Orvan::IImage* received) {
    ASSERT_NE(received, nullptr);
    EXPECT_EQ(received->GetWidth(), sent.GetWidth());
    EXPECT_EQ(received->GetHeight(), sent.GetHeight());
    EXPECT_EQ(received->GetPixelFormat(), sent.GetPixelFormat());
    ASSERT_EQ(received->GetSizeOfBuffer(), sent.GetSizeOfBuffer());
    EXPECT_EQ(std::memcmp(received->GetData(), sent.GetData(), sent.GetSizeOfBuffer()), 0);
}

// Runs send in a child process with a sender aimed at port; the child starts once the parent
// has had time to block in its receive.
pid_t SendFromChild(uint16_t port, const std::function<void(Socket&)>& send) {
    const pid_t pid = fork();
    if (pid != 0)
        return pid;
    int status = 0;
    try {
        Socket sender;
        sender.OpenSender();
        sender.AddDestination(port);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        send(sender);
    } catch (...) {
        status = 1;
    }
    _exit(status);
}

void ExpectChildSucceeded(pid_t pid) {
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

// A plain UDP socket for reading or forging the datagrams themselves.
class RawUdp {
public:
    RawUdp() : m_fd(::socket(AF_INET, SOCK_DGRAM, 0)) {}
    ~RawUdp() { ::close(m_fd); }

    uint16_t Bind() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof(address);
        ::bind(m_fd, reinterpret_cast<sockaddr*>(&address), sizeof(address));
        ::getsockname(m_fd, reinterpret_cast<sockaddr*>(&address), &length);
        return ntohs(address.sin_port);
    }

    std::vector<uint8_t> Next() {
        std::vector<uint8_t> datagram(65536);
        const long count = ::recv(m_fd, datagram.data(), datagram.size(), 0);
        datagram.resize(count < 0 ? 0 : static_cast<size_t>(count));
        return datagram;
    }

    void SendTo(uint16_t port, const std::vector<uint8_t>& datagram) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        ::sendto(m_fd, datagram.data(), datagram.size(), 0, reinterpret_cast<sockaddr*>(&address),
                 sizeof(address));
    }

private:
    int m_fd;
};

// A port nobody holds right now: the kernel picks it, so parallel runs do not collide.
uint16_t FreePort() {
    return RawUdp().Bind();
}

// Waits until nothing is queued for the listener on port any more, as the kernel reports it.
void AwaitQueueDrained(uint16_t port) {
    char local[16];
    std::snprintf(local, sizeof(local), ":%04X", port);
    for (int attempt = 0; attempt < 500; ++attempt) {
        std::ifstream table("/proc/net/udp");
        std::string line, slot, address, remote, state, queues;
        std::getline(table, line);
        bool queued = false;
        while (table >> slot >> address >> remote >> state >> queues && std::getline(table, line))
            if (address.size() > 5 && address.substr(address.size() - 5) == local)
                queued = queues.substr(queues.find(':') + 1) != "00000000";
        if (!queued)
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

std::vector<uint8_t> Metadata(uint32_t width, uint32_t height, uint32_t size) {
    std::vector<uint8_t> datagram(12);
    std::memcpy(datagram.data(), &width, 4);
    std::memcpy(datagram.data() + 4, &height, 4);
    std::memcpy(datagram.data() + 8, &size, 4);
    return datagram;
}

std::vector<uint8_t> PixelFormatDatagram(uint64_t pixelFormat) {
    std::vector<uint8_t> datagram(8);
    std::memcpy(datagram.data(), &pixelFormat, 8);
    return datagram;
}

// This process's descriptor of the socket bound to port, or -1.
int BoundDescriptor(uint16_t port) {
    for (int fd = 0; fd < 1024; ++fd) {
        sockaddr_in address{};
        socklen_t length = sizeof(address);
        if (::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0 &&
            address.sin_family == AF_INET && ntohs(address.sin_port) == port)
            return fd;
    }
    return -1;
}

class SocketTest : public WithOpenSystem {
protected:
    void SetUp() override {
        m_port = FreePort();
        m_receiver.OpenListener(m_port);
    }

    uint16_t m_port = 0;
    Socket m_receiver;
};

TEST_F(SocketTest, ImagesOfSeveralFormatsArriveByteExactFromAnotherProcess) {
    std::vector<FakeImage> images = {
        Pattern(Orvan::Mono8, 1, 1, 1), Pattern(Orvan::Mono8, 640, 480, 2),
        Pattern(Orvan::RGB8, 33, 17, 3), Pattern(Orvan::Mono16, 512, 1, 4),
        Pattern(Orvan::Mono12Packed, 10, 3, 5)};
    const pid_t child = SendFromChild(m_port, [&](Socket& sender) {
        for (FakeImage& image : images)
            sender.SendImage(&image);
        sender.SendCommand(""); // an empty datagram ends the run of images
    });
    CaptureStdout();
    std::vector<Orvan::IImage*> received = m_receiver.ReceiveImages();
    EXPECT_EQ(GetCapturedStdout(), "Incomplete metadata received: expected 12 bytes, got 0\n");
    ExpectChildSucceeded(child);
    ASSERT_EQ(received.size(), images.size());
    for (size_t i = 0; i < images.size(); ++i) {
        ExpectSameImage(images[i], received[i]);
        Orvan::ImageFactory::Destroy(received[i]);
    }
}

TEST_F(SocketTest, DatagramsOnTheWireAndEmptyImage) {
    RawUdp wire;
    const uint16_t port = wire.Bind();
    Socket sender;
    sender.OpenSender();
    sender.AddDestination(port);
    FakeImage empty(Orvan::Mono8, 0, 0, {});
    FakeImage image = Pattern(Orvan::RGB8, 1000, 1, 7); // 3000 bytes: pieces of 1024, 1024, 952
    sender.SendImage(&empty);
    sender.SendImage(&image);

    EXPECT_EQ(wire.Next(), Metadata(0, 0, 0));
    EXPECT_EQ(wire.Next(), PixelFormatDatagram(Orvan::Mono8));
    EXPECT_EQ(wire.Next(), Metadata(1000, 1, 3000));
    EXPECT_EQ(wire.Next(), PixelFormatDatagram(Orvan::RGB8));
    std::vector<uint8_t> pixels;
    for (size_t expected : {1024, 1024, 952}) {
        std::vector<uint8_t> piece = wire.Next();
        EXPECT_EQ(piece.size(), expected);
        pixels.insert(pixels.end(), piece.begin(), piece.end());
    }
    EXPECT_EQ(pixels, std::vector<uint8_t>(image.GetData(), image.GetData() + 3000));
}

TEST_F(SocketTest, CommandsReachEveryDestinationInOrder) {
    Socket second;
    const uint16_t secondPort = FreePort();
    second.OpenListener(secondPort);
    Socket sender;
    sender.OpenSender();
    sender.AddDestination(m_port);
    sender.AddDestination(secondPort);
    sender.AddDestination(m_port);
    sender.SendCommand("Trigger");
    EXPECT_EQ(m_receiver.ReceiveMessage(), "Trigger");
    EXPECT_EQ(m_receiver.ReceiveMessage(), "Trigger");
    EXPECT_EQ(second.ReceiveMessage(), "Trigger");
}

TEST_F(SocketTest, NoDestinationsSendNothingAndSucceed) {
    Socket sender; // not even opened: with nowhere to send, no descriptor is used
    FakeImage image = Pattern(Orvan::Mono8, 4, 4, 9);
    EXPECT_NO_THROW(sender.SendCommand("Start"));
    EXPECT_NO_THROW(sender.SendImage(&image));
}

TEST_F(SocketTest, ListenerClosedWhileReceivingReturnsWhatArrivedQuietly) {
    Socket sender;
    sender.OpenSender();
    sender.AddDestination(m_port);
    FakeImage first = Pattern(Orvan::Mono8, 32, 32, 10);
    FakeImage second = Pattern(Orvan::Mono16, 16, 16, 11);
    sender.SendImage(&first);
    sender.SendImage(&second);

    CaptureStdout();
    std::vector<Orvan::IImage*> received;
    std::thread receiving([&] { received = m_receiver.ReceiveImages(); });
    AwaitQueueDrained(m_port);
    m_receiver.CloseListener();
    receiving.join();
    EXPECT_EQ(GetCapturedStdout(), "");
    ASSERT_EQ(received.size(), 2u);
    ExpectSameImage(first, received[0]);
    ExpectSameImage(second, received[1]);
    for (Orvan::IImage* image : received)
        Orvan::ImageFactory::Destroy(image);
    EXPECT_EQ(m_receiver.ReceiveImage(), nullptr);
    EXPECT_EQ(m_receiver.ReceiveMessage(), "");
}

TEST_F(SocketTest, DamagedDatagramsGiveNullAndTheNextImageStillArrives) {
    RawUdp forger;
    struct Case {
        std::vector<std::vector<uint8_t>> datagrams;
        const char* printed;
    };
    const std::vector<uint8_t> tenBytes(10, 0x5a), fortyBytes(40, 0x11);
    const std::vector<Case> cases = {
        {{{1, 2, 3, 4, 5}}, "Incomplete metadata received: expected 12 bytes, got 5\n"},
        {{std::vector<uint8_t>(20, 1)},
         "Incomplete metadata received: expected 12 bytes, got 20\n"},
        {{Metadata(10, 10, 100), {}}, ""},
        {{Metadata(10, 10, 100), PixelFormatDatagram(Orvan::Mono8), fortyBytes, {}},
         "Connection closed by client\nIncomplete image data received: expected 100 bytes, got "
         "40\n"},
        {{Metadata(10, 1, 10), PixelFormatDatagram(0xFFFFFFFFFFFFFFFF), tenBytes},
         "Unusable image received: 10 x 1, pixel format 0xffffffffffffffff, 10 bytes\n"},
        {{Metadata(10, 10, 10), PixelFormatDatagram(Orvan::Mono8), tenBytes},
         "Unusable image received: 10 x 10, pixel format 0x1080001, 10 bytes\n"},
        {{Metadata(0x10000, 0x10000, 0), PixelFormatDatagram(Orvan::Mono8)},
         "Unusable image received: 65536 x 65536, pixel format 0x1080001, 0 bytes\n"},
    };
    for (const Case& c : cases) {
        for (const std::vector<uint8_t>& datagram : c.datagrams)
            forger.SendTo(m_port, datagram);
        CaptureStdout();
        EXPECT_EQ(m_receiver.ReceiveImage(), nullptr);
        EXPECT_EQ(GetCapturedStdout(), c.printed);
    }

    // A last piece longer than announced keeps only the announced bytes.
    std::vector<uint8_t> longPiece(30, 0x77);
    longPiece[0] = 0x01;
    for (const std::vector<uint8_t>& datagram :
         {Metadata(10, 1, 10), PixelFormatDatagram(Orvan::Mono8), longPiece})
        forger.SendTo(m_port, datagram);
    FakeImage expected(Orvan::Mono8, 10, 1,
                       std::vector<uint8_t>(longPiece.begin(), longPiece.begin() + 10));
    FactoryImagePtr received(m_receiver.ReceiveImage());
    ExpectSameImage(expected, received.get());
}

TEST_F(SocketTest, FailedReceiveKeepsTheImagesBeforeItAndIsReportedNextTime) {
    Socket sender;
    sender.OpenSender();
    sender.AddDestination(m_port);
    FakeImage first = Pattern(Orvan::Mono8, 32, 32, 13);
    FakeImage second = Pattern(Orvan::Mono16, 16, 16, 14);
    sender.SendImage(&first);
    sender.SendImage(&second);
    // A third image stops after its first piece, as from a sender that died mid-image; with a
    // receive timeout the wait for the rest fails instead of blocking.
    RawUdp forger;
    for (const std::vector<uint8_t>& datagram :
         {Metadata(64, 64, 4096), PixelFormatDatagram(Orvan::Mono8), std::vector<uint8_t>(1024)})
        forger.SendTo(m_port, datagram);
    const timeval timeout{0, 200000};
    ASSERT_EQ(
        ::setsockopt(BoundDescriptor(m_port), SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof(timeout)),
        0);

    std::vector<Orvan::IImage*> received;
    EXPECT_NO_THROW(received = m_receiver.ReceiveImages());
    ASSERT_EQ(received.size(), 2u);
    ExpectSameImage(first, received[0]);
    ExpectSameImage(second, received[1]);
    for (Orvan::IImage* image : received)
        Orvan::ImageFactory::Destroy(image);
    EXPECT_EQ(Message([&] { FactoryImagePtr(m_receiver.ReceiveImage()); }),
              "RuntimeException: Receive failed: Resource temporarily unavailable (Socket, "
              "ReceiveImage)");
    // Reported once: the receiver goes on with the next image.
    sender.SendImage(&first);
    FactoryImagePtr next(m_receiver.ReceiveImage());
    ExpectSameImage(first, next.get());
}

TEST(SocketErrors, FailuresCarryTheirMessages) {
    Socket socket;
    FakeImage image = Pattern(Orvan::Mono8, 4, 4, 12);
    EXPECT_EQ(Message([&] { socket.SendCommand(nullptr); }),
              "InvalidArgumentException: Message pointer is null. (Socket, SendCommand)");
    EXPECT_EQ(Message([&] { socket.SendImage(nullptr); }),
              "InvalidArgumentException: Image is null (Socket, SendImage)");
    EXPECT_EQ(Message([&] { socket.ReceiveImage(); }),
              "RuntimeException: Error receiving from client: Bad file descriptor (Socket, "
              "ReceiveImage)");
    socket.AddDestination(FreePort()); // a destination but no sender
    EXPECT_EQ(Message([&] { socket.SendImage(&image); }),
              "RuntimeException: Failed to send metadata: Bad file descriptor (Socket, SendImage)");
    EXPECT_EQ(Message([&] { socket.SendCommand("Stop"); }),
              "RuntimeException: Send failed: Bad file descriptor (Socket, SendCommand)");

    struct Unreadable : FakeImage {
        Unreadable() : FakeImage(Orvan::Mono8, 4, 4, std::vector<uint8_t>(16)) {}
        const uint8_t* GetData() override { return nullptr; }
    } unreadable;
    socket.OpenSender();
    EXPECT_EQ(Message([&] { socket.SendImage(&unreadable); }),
              "RuntimeException: Send failed: Bad address (Socket, SendImage)");

    const uint16_t port = FreePort();
    Socket holder;
    holder.OpenListener(port);
    EXPECT_EQ(Message([&] { socket.OpenListener(port); }),
              "RuntimeException: Can't bind socket! Address already in use (Socket, OpenListener)");
}

} // namespace
