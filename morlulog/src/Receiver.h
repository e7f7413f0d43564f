// Listens on one port of the loopback network and hands the records of other handles to a
// callback, on a thread of its own.
#ifndef MORLULOG_RECEIVER_H
#define MORLULOG_RECEIVER_H

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>

namespace MorluLog {

class Receiver {
public:
    using Handler = std::function<void(const std::string& record)>;

    // Records whose origin is ownOrigin are the handle's own and are not handed on.
    Receiver(uint64_t ownOrigin, Handler handler) : m_ownOrigin(ownOrigin), m_handler(handler) {}
    ~Receiver();
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;

    bool Start(uint16_t port);

private:
    void run();
    void receiveOne(std::string& buffer);
    void stop();

    const uint64_t m_ownOrigin;
    const Handler m_handler;
    int m_fd = -1;
    int m_wakeFd = -1; // an eventfd that ends the wait in poll at once
    std::atomic<bool> m_running{false};
    std::thread m_thread;
};

} // namespace MorluLog

#endif
