// The stream's UDP socket: it owns the port the camera sends to, whichever path receives, and
// as a packet source fetches datagrams in batches with one system call each.
#ifndef ORVAN_GENTL_GIGE_SOCKETSOURCE_H
#define ORVAN_GENTL_GIGE_SOCKETSOURCE_H

#include "PacketSource.h"

#include <sys/socket.h>

#include <vector>

namespace Orvan {
namespace Producer {

class SocketSource : public PacketSource {
public:
    // Binds on localIp (host order; 0 = any), ephemeral port, large receive buffer.
    explicit SocketSource(uint32_t localIp);
    ~SocketSource() override;
    SocketSource(const SocketSource&) = delete;
    SocketSource& operator=(const SocketSource&) = delete;

    uint16_t Port() const { return port_; }
    size_t Receive(GvspAssembler::Slot* slots, size_t count, size_t headerSize) override;
    // Drops the datagrams queued so far (left over from an earlier acquisition).
    void Discard();
    // While muted the socket takes nothing: another path receives, and the port stays ours so
    // that the kernel neither queues the packets here nor answers them as unreachable.
    void Mute(bool muted);

private:
    int fd_ = -1;
    uint16_t port_ = 0;
    std::vector<mmsghdr> messages_;
    std::vector<iovec> vectors_;
};

} // namespace Producer
} // namespace Orvan

#endif
