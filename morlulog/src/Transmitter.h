// Sends a handle's records to the registered ports from a thread of its own, so that a caller
// never waits for the network.
#ifndef MORLULOG_TRANSMITTER_H
#define MORLULOG_TRANSMITTER_H

#include <netinet/in.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace MorluLog {

class Transmitter {
public:
    explicit Transmitter(uint64_t origin) : m_origin(origin) {}
    ~Transmitter();
    Transmitter(const Transmitter&) = delete;
    Transmitter& operator=(const Transmitter&) = delete;

    bool Open(uint16_t sourcePort);
    // Closes only if open on that port, after sending what is queued.
    void Close(uint16_t sourcePort);
    void AddDestination(uint16_t port);
    // False if not open or the queue is full.
    bool Post(const char* record);
    uint64_t Dropped() const { return m_dropped.load(std::memory_order_relaxed); }

private:
    // Bounds the memory a burst can take while the sender thread catches up.
    static constexpr size_t kQueueCapacity = 8192;

    void run();
    void transmit(const std::string& datagram, const std::vector<sockaddr_in>& destinations);
    void stop();

    const uint64_t m_origin;
    std::mutex m_lifecycleMutex; // serialises Open and Close
    std::mutex m_mutex;          // guards everything below except m_fd and m_thread
    std::condition_variable m_cv;
    std::deque<std::string> m_queue;
    std::vector<sockaddr_in> m_destinations;
    bool m_running = false;
    uint16_t m_port = 0;
    int m_fd = -1; // set before the thread starts, closed after it ends
    std::thread m_thread;
    std::atomic<uint64_t> m_dropped{0};
};

} // namespace MorluLog

#endif
