// A camera on loopback whose GVCP answers a test writes, for the control side's tests.
#ifndef ORVAN_TESTS_GENTL_GIGE_SCRIPTEDCAMERA_H
#define ORVAN_TESTS_GENTL_GIGE_SCRIPTEDCAMERA_H

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <thread>
#include <vector>

namespace GigeTest {

inline constexpr uint32_t kLoopback = 0x7F000001;

struct Command {
    uint16_t code;
    uint16_t id;
    std::vector<uint8_t> payload;
};

// A header followed by its payload. Sized up front: g++ 12 at -O3 misreads an insert after a
// short initialiser list as an out-of-bounds copy.
inline std::vector<uint8_t> Datagram(std::vector<uint8_t> header,
                                     const std::vector<uint8_t>& payload) {
    const size_t headerSize = header.size();
    header.resize(headerSize + payload.size());
    std::copy(payload.begin(), payload.end(), header.begin() + headerSize);
    return header;
}

inline std::vector<uint8_t> Ack(uint16_t status, uint16_t answer, uint16_t id,
                                const std::vector<uint8_t>& payload) {
    return Datagram({uint8_t(status >> 8), uint8_t(status), uint8_t(answer >> 8), uint8_t(answer),
                     uint8_t(payload.size() >> 8), uint8_t(payload.size()), uint8_t(id >> 8),
                     uint8_t(id)},
                    payload);
}

struct Reply {
    std::vector<uint8_t> bytes;
    int delayMs = 0; // before this one is sent
};
using Replies = std::vector<Reply>;

// A camera whose answers the test writes: script gets each command and returns the datagrams
// to send back (none to stay silent).
class ScriptedCamera {
public:
    using Script = std::function<Replies(const Command&)>;

    explicit ScriptedCamera(Script script) : m_script(std::move(script)) {
        m_socket = socket(AF_INET, SOCK_DGRAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(kLoopback);
        socklen_t length = sizeof address;
        bind(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address);
        getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &length);
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] { Run(); });
    }
    ~ScriptedCamera() {
        m_stop = true;
        m_thread.join();
        close(m_socket);
    }
    uint16_t Port() const { return m_port; }
    int Commands() const { return m_commands; }

private:
    void Run() {
        uint8_t buffer[2048];
        while (!m_stop) {
            pollfd waiting{m_socket, POLLIN, 0};
            if (poll(&waiting, 1, 20) <= 0)
                continue;
            sockaddr_in from{};
            socklen_t length = sizeof from;
            ssize_t n = recvfrom(m_socket, buffer, sizeof buffer, 0,
                                 reinterpret_cast<sockaddr*>(&from), &length);
            if (n < 8)
                continue;
            ++m_commands;
            Command command{uint16_t(buffer[2] << 8 | buffer[3]),
                            uint16_t(buffer[6] << 8 | buffer[7]),
                            std::vector<uint8_t>(buffer + 8, buffer + n)};
            for (const Reply& reply : m_script(command)) {
                std::this_thread::sleep_for(std::chrono::milliseconds(reply.delayMs));
                sendto(m_socket, reply.bytes.data(), reply.bytes.size(), 0,
                       reinterpret_cast<sockaddr*>(&from), length);
            }
        }
    }

    Script m_script;
    int m_socket = -1;
    uint16_t m_port = 0;
    std::atomic<bool> m_stop{false};
    std::atomic<int> m_commands{0};
    std::thread m_thread;
};

} // namespace GigeTest

#endif
