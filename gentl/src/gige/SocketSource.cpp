#include "SocketSource.h"

#include "BoundUdpSocket.h"

#include <arpa/inet.h>
#include <linux/filter.h>
#include <netinet/in.h>
#include <unistd.h>

namespace Orvan {
namespace Producer {

namespace {

// A few milliseconds of bursts at line rate; the kernel clamps the plain request to its limit,
// the forced one needs privileges and is tried first.
constexpr int kReceiveBufferBytes = 64 * 1024 * 1024;

} // namespace

SocketSource::SocketSource(uint32_t localIp) {
    fd_ = OpenBoundUdpSocket(localIp, port_);
    if (fd_ < 0)
        return;
    int size = kReceiveBufferBytes;
    if (setsockopt(fd_, SOL_SOCKET, SO_RCVBUFFORCE, &size, sizeof size) != 0)
        setsockopt(fd_, SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
    timeval wake{0, kWakeUpUs};
    setsockopt(fd_, SOL_SOCKET, SO_RCVTIMEO, &wake, sizeof wake);
}

SocketSource::~SocketSource() {
    if (fd_ >= 0)
        close(fd_);
}

size_t SocketSource::Receive(GvspAssembler::Slot* slots, size_t count, size_t headerSize) {
    messages_.resize(count);
    vectors_.resize(2 * count);
    for (size_t i = 0; i < count; ++i) {
        vectors_[2 * i] = {slots[i].header, headerSize};
        vectors_[2 * i + 1] = {slots[i].body, slots[i].bodyCapacity};
        messages_[i].msg_hdr = msghdr{};
        messages_[i].msg_hdr.msg_iov = &vectors_[2 * i];
        messages_[i].msg_hdr.msg_iovlen = 2;
    }
    const int received =
        recvmmsg(fd_, messages_.data(), static_cast<unsigned>(count), MSG_WAITFORONE, nullptr);
    for (int i = 0; i < received; ++i) {
        slots[i].length = messages_[i].msg_len;
        slots[i].truncated = (messages_[i].msg_hdr.msg_flags & MSG_TRUNC) != 0;
    }
    return received > 0 ? static_cast<size_t>(received) : 0;
}

void SocketSource::Discard() {
    // Bounded: a camera that is already sending again must not keep the caller here.
    constexpr int kMostDiscarded = 1 << 16;
    uint8_t sink = 0;
    for (int i = 0; i < kMostDiscarded; ++i)
        if (recv(fd_, &sink, sizeof sink, MSG_DONTWAIT | MSG_TRUNC) < 0)
            break;
}

void SocketSource::Mute(bool muted) {
    if (!muted) {
        setsockopt(fd_, SOL_SOCKET, SO_DETACH_FILTER, nullptr, 0);
        return;
    }
    sock_filter dropAll = BPF_STMT(BPF_RET | BPF_K, 0);
    sock_fprog program{1, &dropAll};
    setsockopt(fd_, SOL_SOCKET, SO_ATTACH_FILTER, &program, sizeof program);
}

} // namespace Producer
} // namespace Orvan
