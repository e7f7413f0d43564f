#include <Orvan/Socket.h>

#include "DatagramSource.h"
#include "ImageReception.h"
#include "core/ErrorTranslation.h"

#include <Orvan/ImageFactory.h>
#include <Orvan/PixelFormat.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <iostream>
#include <thread>
#include <utility>

namespace Orvan {

namespace {

// A 12-megapixel mono image is about 12,000 pieces; on loopback each costs 2304 bytes of receive
// buffer, so 64 MiB (doubled by the kernel) holds a whole one even when the receiver is slow to
// be scheduled. Without the privilege to force it the kernel caps the request at rmem_max.
constexpr int kReceiveBufferBytes = 64 << 20;
constexpr int kSendBufferBytes = 4 << 20;
// Loopback delivers a datagram inside the sender's sendto(), so a sender that never yields can
// overrun a receiver sharing its core. A yield after each mebibyte of pixels (2.3 MiB of receive
// buffer) lets a waiting receiver drain without costing the sender much on a busy machine; it
// needs an rmem_max of a few MiB where the size cannot be forced.
constexpr size_t kPiecesPerBurst = 1024;
constexpr size_t kMessageBufferBytes = 65536;

std::string ErrorText(int error) {
    char buffer[256];
    return strerror_r(error, buffer, sizeof(buffer));
}

template <class E = GenICam::RuntimeException>
[[noreturn]] void Fail(const std::string& description, const char* function) {
    ThrowLibraryError<E>(description, ORVAN_SITE("Socket", function));
}

int NewUdpSocket(const char* function) {
    const int fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        Fail("Socket creation failed with error: " + ErrorText(errno), function);
    return fd;
}

void ShutDownAndClose(std::atomic<int>& descriptor) {
    const int fd = descriptor.exchange(-1);
    if (fd < 0)
        return;
    ::shutdown(fd, SHUT_RDWR);
    ::close(fd);
}

long SendDatagram(int fd, const sockaddr_in& to, const void* data, size_t length) {
    long sent;
    do {
        sent = ::sendto(fd, data, length, 0, reinterpret_cast<const sockaddr*>(&to), sizeof(to));
    } while (sent < 0 && errno == EINTR);
    return sent;
}

// The factory refuses what its size rule rejects; a damaged or foreign image is dropped here
// instead, so that bad datagrams give null rather than an exception.
bool FitsFactory(const ImageReception& image) {
    const unsigned __int128 bits = static_cast<unsigned __int128>(image.width) * image.height *
                                   GetBitsPerPixel(image.pixelFormat);
    return image.size != 0 && bits / 8 == image.size;
}

} // namespace

struct Socket::Impl {
    std::atomic<int> sender{-1};
    std::atomic<int> listener{-1};
    // Receives in progress on the listener: its number is not closed (and so not reused by the
    // process) while a blocked recv still refers to it.
    std::atomic<int> listenerUsers{0};
    std::vector<sockaddr_in> destinations;
    // A receive failure that ReceiveImages held back to hand over the images before it.
    std::exception_ptr pendingError;

    void RethrowPendingError() {
        if (std::exception_ptr error = std::exchange(pendingError, nullptr))
            std::rethrow_exception(error);
    }

    long ReceiveOnListener(uint8_t* buffer, size_t capacity, int flags) {
        ++listenerUsers;
        const int fd = listener.load();
        long count = -1;
        if (fd < 0)
            errno = EBADF;
        else
            count = ::recv(fd, buffer, capacity, flags);
        const int error = errno;
        --listenerUsers;
        errno = error;
        return count;
    }

    void CloseListenerDescriptor() {
        const int fd = listener.exchange(-1);
        if (fd < 0)
            return;
        // Wakes a blocked recv, which then returns at once and releases the number.
        ::shutdown(fd, SHUT_RDWR);
        while (listenerUsers.load() != 0)
            std::this_thread::yield();
        ::close(fd);
    }

    void SendPixels(const sockaddr_in& to, const uint8_t* data, size_t size) const {
        size_t offset = 0;
        for (size_t pieces = 1; offset < size; ++pieces) {
            const size_t length = std::min(kMaxDataPieceBytes, size - offset);
            const long sent = SendDatagram(sender.load(), to, data + offset, length);
            if (sent <= 0)
                Fail("Send failed: " + ErrorText(sent < 0 ? errno : EIO), "SendImage");
            offset += static_cast<size_t>(sent);
            if (pieces % kPiecesPerBurst == 0)
                sched_yield();
        }
    }

    // The listener as the image receiver's datagram source.
    class ListenerSource : public DatagramSource {
    public:
        ListenerSource(Impl& impl, const std::atomic<bool>& closed)
            : m_impl(impl), m_closed(closed) {}

        long Receive(uint8_t* buffer, size_t capacity, bool wholeLength) override {
            long count;
            do {
                count = m_impl.ReceiveOnListener(buffer, capacity, wholeLength ? MSG_TRUNC : 0);
            } while (count < 0 && errno == EINTR && !Closed());
            return count;
        }

        bool Closed() const override { return m_closed.load(); }

    private:
        Impl& m_impl;
        const std::atomic<bool>& m_closed;
    };
};

Socket::Socket() : m_impl(new Impl) {}

Socket::~Socket() {
    ShutDownAndClose(m_impl->sender);
    m_impl->CloseListenerDescriptor();
}

void Socket::OpenSender() {
    const int fd = NewUdpSocket("OpenSender");
    setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &kSendBufferBytes, sizeof(kSendBufferBytes));
    ShutDownAndClose(m_impl->sender);
    m_impl->sender = fd;
}

void Socket::AddDestination(uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    m_impl->destinations.push_back(address);
}

void Socket::SendCommand(const char* message) {
    if (message == nullptr)
        Fail<GenICam::InvalidArgumentException>("Message pointer is null.", "SendCommand");
    const size_t length = std::strlen(message);
    for (const sockaddr_in& to : m_impl->destinations)
        if (SendDatagram(m_impl->sender.load(), to, message, length) < 0)
            Fail("Send failed: " + ErrorText(errno), "SendCommand");
}

void Socket::SendImage(IImage* image) {
    if (image == nullptr)
        Fail<GenICam::InvalidArgumentException>("Image is null", "SendImage");
    const size_t size = image->GetSizeOfBuffer();
    const uint32_t metadata[3] = {static_cast<uint32_t>(image->GetWidth()),
                                  static_cast<uint32_t>(image->GetHeight()),
                                  static_cast<uint32_t>(size)};
    const uint64_t pixelFormat = image->GetPixelFormat();
    const uint8_t* data = image->GetData();
    for (const sockaddr_in& to : m_impl->destinations) {
        if (SendDatagram(m_impl->sender.load(), to, metadata, sizeof(metadata)) < 0)
            Fail("Failed to send metadata: " + ErrorText(errno), "SendImage");
        if (SendDatagram(m_impl->sender.load(), to, &pixelFormat, sizeof(pixelFormat)) < 0)
            Fail("Failed to send pixel format data: " + ErrorText(errno), "SendImage");
        m_impl->SendPixels(to, data, size);
    }
}

void Socket::OpenListener(uint16_t port) {
    const int fd = NewUdpSocket("OpenListener");
    if (setsockopt(fd, SOL_SOCKET, SO_RCVBUFFORCE, &kReceiveBufferBytes,
                   sizeof(kReceiveBufferBytes)) != 0)
        setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &kReceiveBufferBytes, sizeof(kReceiveBufferBytes));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    if (::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        const int error = errno;
        ::close(fd);
        Fail("Can't bind socket! " + ErrorText(error), "OpenListener");
    }
    m_impl->CloseListenerDescriptor();
    m_impl->listener = fd;
    m_impl->pendingError = nullptr; // it was the old listener's
    m_listenerClosed = false;
}

IImage* Socket::ReceiveImage() {
    m_impl->RethrowPendingError();
    Impl::ListenerSource source(*m_impl, m_listenerClosed);
    ImageReception received = ReceiveImageDatagrams(source);
    switch (received.outcome) {
    case ImageReception::Outcome::MetadataFailed:
        Fail("Error receiving from client: " + ErrorText(received.error), "ReceiveImage");
    case ImageReception::Outcome::DataFailed:
        Fail("Receive failed: " + ErrorText(received.error), "ReceiveImage");
    case ImageReception::Outcome::AllocationFailed:
        Fail("Failed to allocate memory for image data.", "ReceiveImage");
    case ImageReception::Outcome::Nothing:
        return nullptr;
    case ImageReception::Outcome::Image:
        break;
    }
    if (!FitsFactory(received)) {
        std::cout << "Unusable image received: " << received.width << " x " << received.height
                  << ", pixel format 0x" << std::hex << received.pixelFormat << std::dec << ", "
                  << received.size << " bytes" << std::endl;
        return nullptr;
    }
    return ImageFactory::Create(received.data.get(), received.size, received.width, received.height,
                                received.pixelFormat);
}

// A failure after some images arrived would take them with it: they are returned, and the
// failure is reported by the next receive, as a short read reports its error on the next call.
std::vector<IImage*> Socket::ReceiveImages() {
    std::vector<IImage*> images;
    try {
        for (;;) {
            // Room first, so that no received image waits on an allocation that can fail.
            if (images.size() == images.capacity())
                images.reserve(2 * images.size() + 4);
            IImage* image = ReceiveImage();
            if (image == nullptr)
                break;
            images.push_back(image);
        }
    } catch (...) {
        if (images.empty())
            throw;
        m_impl->pendingError = std::current_exception();
    }
    return images;
}

std::string Socket::ReceiveMessage() {
    std::string text(kMessageBufferBytes, '\0');
    Impl::ListenerSource source(*m_impl, m_listenerClosed);
    const long count = source.Receive(reinterpret_cast<uint8_t*>(&text[0]), text.size(), false);
    if (count <= 0 && source.Closed())
        return std::string();
    if (count < 0)
        Fail("Error receiving from client: " + ErrorText(errno), "ReceiveMessage");
    text.resize(static_cast<size_t>(count));
    return text;
}

void Socket::CloseSender() {
    ShutDownAndClose(m_impl->sender);
}

void Socket::CloseListener() {
    m_listenerClosed = true;
    m_impl->CloseListenerDescriptor();
}

} // namespace Orvan
