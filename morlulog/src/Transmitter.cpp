#include "Transmitter.h"

#include "Datagram.h"
#include "UdpSocket.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

namespace MorluLog {

Transmitter::~Transmitter() {
    std::lock_guard<std::mutex> lifecycle(m_lifecycleMutex);
    stop();
}

bool Transmitter::Open(uint16_t sourcePort) {
    std::lock_guard<std::mutex> lifecycle(m_lifecycleMutex);
    if (m_fd >= 0) {
        return false;
    }
    const int fd = OpenSharedSocket("127.0.0.1", sourcePort);
    const int on = 1;
    if (fd < 0 || setsockopt(fd, SOL_SOCKET, SO_BROADCAST, &on, sizeof(on)) != 0) {
        if (fd >= 0) {
            close(fd);
        }
        return false;
    }
    m_fd = fd;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_running = true;
        m_port = sourcePort;
    }
    m_thread = std::thread(&Transmitter::run, this);
    return true;
}

void Transmitter::Close(uint16_t sourcePort) {
    std::lock_guard<std::mutex> lifecycle(m_lifecycleMutex);
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_running || m_port != sourcePort) {
            return;
        }
    }
    stop();
}

void Transmitter::stop() {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_running = false;
    }
    m_cv.notify_all();
    if (m_thread.joinable()) {
        m_thread.join();
    }
    if (m_fd >= 0) {
        close(m_fd);
        m_fd = -1;
    }
}

void Transmitter::AddDestination(uint16_t port) {
    const sockaddr_in destination = MakeAddress(kLoopbackBroadcast, port);
    std::lock_guard<std::mutex> lock(m_mutex);
    const bool known =
        std::any_of(m_destinations.begin(), m_destinations.end(),
                    [&](const sockaddr_in& d) { return d.sin_port == destination.sin_port; });
    if (!known) {
        m_destinations.push_back(destination);
    }
}

bool Transmitter::Post(const char* record) {
    std::string datagram = EncodeDatagram(m_origin, record);
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_running) {
            return false;
        }
        if (m_queue.size() >= kQueueCapacity) {
            m_dropped.fetch_add(m_destinations.size(), std::memory_order_relaxed);
            return false;
        }
        m_queue.push_back(std::move(datagram));
    }
    m_cv.notify_one();
    return true;
}

// Leaves only when stopped and the queue is empty, so Close sends everything posted before it.
void Transmitter::run() {
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_cv.wait(lock, [this] { return !m_queue.empty() || !m_running; });
        if (m_queue.empty()) {
            return;
        }
        std::deque<std::string> batch;
        batch.swap(m_queue);
        const std::vector<sockaddr_in> destinations = m_destinations;
        lock.unlock();
        for (const std::string& datagram : batch) {
            transmit(datagram, destinations);
        }
        lock.lock();
    }
}

void Transmitter::transmit(const std::string& datagram,
                           const std::vector<sockaddr_in>& destinations) {
    for (const sockaddr_in& destination : destinations) {
        const ssize_t sent =
            sendto(m_fd, datagram.data(), datagram.size(), MSG_DONTWAIT,
                   reinterpret_cast<const sockaddr*>(&destination), sizeof(destination));
        if (sent < 0) {
            m_dropped.fetch_add(1, std::memory_order_relaxed);
        }
    }
}

} // namespace MorluLog
