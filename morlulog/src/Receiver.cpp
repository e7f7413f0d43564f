#include "Receiver.h"

#include "Datagram.h"
#include "UdpSocket.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace MorluLog {

namespace {

// Room for a burst of records while the handler is busy; the kernel caps it at rmem_max.
constexpr int kReceiveBufferBytes = 4 << 20;

} // namespace

Receiver::~Receiver() {
    stop();
}

bool Receiver::Start(uint16_t port) {
    m_fd = OpenSharedSocket(kLoopbackBroadcast, port);
    m_wakeFd = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (m_fd < 0 || m_wakeFd < 0) {
        return false;
    }
    setsockopt(m_fd, SOL_SOCKET, SO_RCVBUF, &kReceiveBufferBytes, sizeof(kReceiveBufferBytes));
    m_running = true;
    m_thread = std::thread(&Receiver::run, this);
    return true;
}

void Receiver::stop() {
    m_running = false;
    if (m_wakeFd >= 0) {
        const uint64_t one = 1;
        (void)!write(m_wakeFd, &one, sizeof(one));
    }
    if (m_thread.joinable()) {
        m_thread.join();
    }
    for (int* fd : {&m_fd, &m_wakeFd}) {
        if (*fd >= 0) {
            close(*fd);
            *fd = -1;
        }
    }
}

void Receiver::run() {
    std::string buffer(kMaxDatagramSize, '\0');
    pollfd fds[2] = {{m_fd, POLLIN, 0}, {m_wakeFd, POLLIN, 0}};
    while (m_running) {
        if (poll(fds, 2, -1) < 0 || (fds[1].revents & POLLIN) != 0) {
            continue; // interrupted, or woken to look at the flag
        }
        if ((fds[0].revents & POLLIN) != 0) {
            receiveOne(buffer);
        }
    }
}

void Receiver::receiveOne(std::string& buffer) {
    const ssize_t size = recv(m_fd, buffer.data(), buffer.size(), 0);
    uint64_t origin = 0;
    std::string record;
    if (size > 0 && DecodeDatagram(buffer.data(), static_cast<size_t>(size), origin, record) &&
        origin != m_ownOrigin) {
        m_handler(record);
    }
}

} // namespace MorluLog
