// The AF_XDP receive path: a small XDP program on the interface that holds the stream's address
// hands this stream's datagrams (UDP to our port on our address, unfragmented) to AF_XDP sockets,
// one per receive queue, and passes every other packet on to the kernel's network stack. The
// sockets share one UMEM; the receiving thread copies each payload once, from the UMEM frame into
// the stream's buffer, gives the frame straight back to the kernel, and makes a system call only
// to wait when nothing has arrived.
#ifndef ORVAN_GENTL_GIGE_XDPSOURCE_H
#define ORVAN_GENTL_GIGE_XDPSOURCE_H

#include "PacketSource.h"

#include <poll.h>

#include <memory>
#include <string>
#include <vector>

struct xsk_umem;

namespace Orvan {
namespace Producer {

class XdpSource : public PacketSource {
public:
    // NativeZeroCopy: in the driver, which writes packets straight into the UMEM; only then does
    // the path beat the packet ring (where the kernel copies into the UMEM, as on veth, it costs
    // about twice the ring's CPU per packet). NativeOrGeneric: in the driver, or after the stack
    // has built its socket buffers where the driver has no XDP.
    enum class Mode { NativeZeroCopy, NativeOrGeneric };

    // A source for the datagrams to localIp:port (host order) on the interface holding localIp;
    // null with the reason in `why` when there is none to be had: no privilege
    // (CAP_NET_ADMIN, CAP_BPF), no such interface, an interface already running another XDP
    // program, no XDP in the wanted mode, or packets larger than a UMEM frame where the kernel
    // cannot spread them over several.
    static std::unique_ptr<PacketSource> Open(uint32_t localIp, uint16_t port, uint32_t packetSize,
                                              Mode mode, std::string& why);
    ~XdpSource() override;
    XdpSource(const XdpSource&) = delete;
    XdpSource& operator=(const XdpSource&) = delete;

    size_t Receive(GvspAssembler::Slot* slots, size_t count, size_t headerSize) override;

private:
    struct Queue; // one AF_XDP socket with its rings

    XdpSource();
    bool MapUmem(std::string& why);
    bool OpenQueues(const std::string& interface, std::string& why);
    bool Attach(unsigned interface, uint32_t localIp, uint16_t port, Mode mode, std::string& why);
    size_t TakeFromQueues(GvspAssembler::Slot* slots, size_t count, size_t headerSize);
    size_t Take(Queue& queue, GvspAssembler::Slot* slots, size_t count, size_t headerSize);
    uint32_t CopyPacket(Queue& queue, uint32_t at, uint32_t first, uint32_t back,
                        GvspAssembler::Slot& slot, size_t headerSize, size_t& filled);
    void Wait();

    uint8_t* area_ = nullptr; // the UMEM's frames
    size_t areaBytes_ = 0;
    xsk_umem* umem_ = nullptr;
    std::vector<Queue> queues_;
    std::vector<pollfd> idle_; // their sockets, to wait on
    size_t framesPerQueue_ = 0;
    bool zeroCopy_ = false;
    bool spread_ = false;  // packets larger than a frame, spread over several
    size_t nextQueue_ = 0; // where the next Receive starts looking, so that none starves
    int map_ = -1;         // receive queue -> socket
    int program_ = -1;
    int link_ = -1; // the program's attachment: closing it detaches the program
};

} // namespace Producer
} // namespace Orvan

#endif
