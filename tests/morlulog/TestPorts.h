// Ports for tests that use the logging transport: above the kernel's ephemeral range, in a block
// chosen by process id and found free, so that test processes running in parallel never share
// one. Index 0, 1 and 2 serve as the logger's "orvan_out", "orvan_in" and "ez_in".
#ifndef ORVAN_TESTS_TESTPORTS_H
#define ORVAN_TESTS_TESTPORTS_H

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>

namespace OrvanTest {

// A bind without SO_REUSEADDR fails if any socket holds the address and port.
inline bool PortIsFree(const char* address, uint16_t port) {
    const int fd = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in local{AF_INET, htons(port), {}, {}};
    inet_pton(AF_INET, address, &local.sin_addr);
    const bool free = bind(fd, reinterpret_cast<const sockaddr*>(&local), sizeof(local)) == 0;
    close(fd);
    return free;
}

inline uint16_t TestPort(unsigned index) {
    constexpr unsigned kBlocks = 400, kBlockSize = 10;
    static const uint16_t base = [] {
        for (unsigned i = 0; i < kBlocks; ++i) {
            const uint16_t first = 61000 + ((getpid() + i) % kBlocks) * kBlockSize;
            bool free = true;
            for (uint16_t p = first; p < first + kBlockSize && free; ++p) {
                free = PortIsFree("127.0.0.1", p) && PortIsFree("127.255.255.255", p);
            }
            if (free) {
                return first;
            }
        }
        return uint16_t{61000};
    }();
    return static_cast<uint16_t>(base + index);
}

} // namespace OrvanTest

#endif
