#include "XdpSource.h"

#include "HostInterfaces.h"

#include <bpf/bpf.h>
#include <xdp/xsk.h>

#include <arpa/inet.h>
#include <linux/bpf.h>
#include <linux/if_ether.h>
#include <linux/if_link.h>
#include <net/if.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

namespace Orvan {
namespace Producer {

struct XdpSource::Queue {
    xsk_socket* socket = nullptr;
    xsk_ring_cons rx{};
    xsk_ring_prod fill{};
    xsk_ring_cons completion{}; // required by the kernel, unused: nothing is sent
};

namespace {

// 64 MiB of 4 KiB frames, as much as the other paths may queue, shared out among the receive
// queues. A frame holds a packet of up to what is left after the kernel's headroom; a larger
// (jumbo) packet is spread over several, which needs a kernel that does that (6.6 on) and so is
// asked for only then.
constexpr size_t kFrameSize = XSK_UMEM__DEFAULT_FRAME_SIZE;
constexpr size_t kFrames = 16384;
constexpr size_t kLeastFramesPerQueue = 256;
constexpr uint32_t kCompletionSize = 64;
constexpr size_t kLargestInOneFrame = kFrameSize - XDP_PACKET_HEADROOM - ETH_HLEN;
// Where the system's headers predate packets spread over frames.
#ifndef XDP_USE_SG
constexpr uint16_t XDP_USE_SG = 1 << 4;
#endif
#ifndef XDP_PKT_CONTD
constexpr uint32_t XDP_PKT_CONTD = 1 << 0;
#endif

std::string Reason(const std::string& what, int error) {
    return what + ": " + std::strerror(error);
}

size_t ReceiveQueues(const std::string& interface) {
    std::error_code failed;
    size_t queues = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator("/sys/class/net/" + interface + "/queues", failed))
        if (entry.path().filename().string().rfind("rx-", 0) == 0)
            ++queues;
    return queues > 0 ? queues : 1;
}

// The program, in the kernel's instruction set: written out here rather than compiled from C so
// that the build needs no BPF compiler and the address and port go in as constants.
class ProgramWriter {
public:
    ProgramWriter& Op(uint8_t code, uint8_t dst, uint8_t src, int16_t offset, int32_t imm) {
        bpf_insn insn{};
        insn.code = code;
        insn.dst_reg = dst & 0x0F;
        insn.src_reg = src & 0x0F;
        insn.off = offset;
        insn.imm = imm;
        code_.push_back(insn);
        return *this;
    }
    ProgramWriter& Load(uint8_t size, uint8_t dst, uint8_t src, int16_t offset) {
        return Op(BPF_LDX | size | BPF_MEM, dst, src, offset, 0);
    }
    ProgramWriter& Alu(uint8_t op, uint8_t dst, int32_t imm) {
        return Op(BPF_ALU64 | op | BPF_K, dst, 0, 0, imm);
    }
    // Leaves the packet to the network stack unless dst compares `op` to imm (or to src).
    ProgramWriter& PassUnless(uint8_t op, uint8_t dst, int32_t imm, uint8_t width = BPF_JMP) {
        passes_.push_back(code_.size());
        return Op(width | Negation(op) | BPF_K, dst, 0, 0, imm);
    }
    ProgramWriter& PassUnlessRegister(uint8_t op, uint8_t dst, uint8_t src) {
        passes_.push_back(code_.size());
        return Op(BPF_JMP | Negation(op) | BPF_X, dst, src, 0, 0);
    }
    ProgramWriter& LoadMap(uint8_t dst, int fd) {
        Op(BPF_LD | BPF_DW | BPF_IMM, dst, BPF_PSEUDO_MAP_FD, 0, fd);
        return Op(0, 0, 0, 0, 0);
    }
    // Ends the program; every PassUnless lands on the pass that follows.
    std::vector<bpf_insn> Finish() {
        Op(BPF_JMP | BPF_EXIT, 0, 0, 0, 0);
        for (size_t at : passes_)
            code_[at].off = static_cast<int16_t>(code_.size() - at - 1);
        Op(BPF_ALU64 | BPF_MOV | BPF_K, BPF_REG_0, 0, 0, XDP_PASS);
        Op(BPF_JMP | BPF_EXIT, 0, 0, 0, 0);
        return code_;
    }

private:
    static uint8_t Negation(uint8_t op) {
        switch (op) {
        case BPF_JEQ:
            return BPF_JNE;
        case BPF_JGE:
            return BPF_JLT;
        default: // BPF_JLE
            return BPF_JGT;
        }
    }

    std::vector<bpf_insn> code_;
    std::vector<size_t> passes_;
};

// Keeps the IPv4 UDP datagrams to localIp:port that arrive whole (no VLAN tag, no fragment) and
// redirects them to the socket of the queue they arrived on; passes everything else, and this
// stream's packets too where that queue has no socket. Loads see the packet in network order,
// so the constants are compared in it.
std::vector<bpf_insn> StreamProgram(int map, uint32_t localIp, uint16_t port) {
    constexpr uint8_t kCtx = BPF_REG_6, kData = BPF_REG_2, kEnd = BPF_REG_3, kProbe = BPF_REG_4,
                      kValue = BPF_REG_5;
    constexpr int16_t kIp = ETH_HLEN;
    constexpr int32_t kIpHeaderMin = 20, kUdpHeader = 8;
    ProgramWriter w;
    w.Op(BPF_ALU64 | BPF_MOV | BPF_X, kCtx, BPF_REG_1, 0, 0)
        .Load(BPF_W, kData, BPF_REG_1, offsetof(xdp_md, data))
        .Load(BPF_W, kEnd, BPF_REG_1, offsetof(xdp_md, data_end))
        .Op(BPF_ALU64 | BPF_MOV | BPF_X, kProbe, kData, 0, 0)
        .Alu(BPF_ADD, kProbe, kIp + kIpHeaderMin + kUdpHeader)
        .PassUnlessRegister(BPF_JLE, kProbe, kEnd)
        .Load(BPF_H, kValue, kData, 12) // EtherType
        .PassUnless(BPF_JEQ, kValue, htons(ETH_P_IP))
        .Load(BPF_B, kValue, kData, kIp + 9) // protocol
        .PassUnless(BPF_JEQ, kValue, IPPROTO_UDP)
        .Load(BPF_W, kValue, kData, kIp + 16) // destination address
        .PassUnless(BPF_JEQ, kValue, static_cast<int32_t>(htonl(localIp)), BPF_JMP32)
        .Load(BPF_H, kValue, kData, kIp + 6) // more-fragments flag and offset
        .Alu(BPF_AND, kValue, htons(0x3FFF))
        .PassUnless(BPF_JEQ, kValue, 0)
        .Load(BPF_B, kValue, kData, kIp) // header length in words
        .Alu(BPF_AND, kValue, 0x0F)
        .Alu(BPF_LSH, kValue, 2)
        .PassUnless(BPF_JGE, kValue, kIpHeaderMin)
        .Op(BPF_ALU64 | BPF_ADD | BPF_X, kData, kValue, 0, 0) // now at the UDP header, less kIp
        .Op(BPF_ALU64 | BPF_MOV | BPF_X, kProbe, kData, 0, 0)
        .Alu(BPF_ADD, kProbe, kIp + kUdpHeader)
        .PassUnlessRegister(BPF_JLE, kProbe, kEnd)
        .Load(BPF_H, kValue, kData, kIp + 2) // destination port
        .PassUnless(BPF_JEQ, kValue, htons(port))
        .LoadMap(BPF_REG_1, map)
        .Load(BPF_W, BPF_REG_2, kCtx, offsetof(xdp_md, rx_queue_index))
        .Op(BPF_ALU64 | BPF_MOV | BPF_K, BPF_REG_3, 0, 0, XDP_PASS) // where the queue has none
        .Op(BPF_JMP | BPF_CALL, 0, 0, 0, BPF_FUNC_redirect_map);
    return w.Finish();
}

} // namespace

XdpSource::XdpSource() = default;

std::unique_ptr<PacketSource> XdpSource::Open(uint32_t localIp, uint16_t port, uint32_t packetSize,
                                              Mode mode, std::string& why) {
    const std::string name = localIp != 0 ? InterfaceHolding(localIp) : std::string();
    const unsigned index = name.empty() ? 0 : if_nametoindex(name.c_str());
    if (index == 0) {
        why = "no interface holds the stream's address";
        return nullptr;
    }
    // Attached first, where failing costs least; until the sockets are in the map the program
    // passes the stream's packets on, to a socket that drops them.
    std::unique_ptr<XdpSource> source(new XdpSource());
    source->queues_ = std::vector<Queue>(ReceiveQueues(name));
    source->spread_ = packetSize > kLargestInOneFrame;
    source->zeroCopy_ = mode == Mode::NativeZeroCopy;
    if (!source->Attach(index, localIp, port, mode, why) || !source->MapUmem(why) ||
        !source->OpenQueues(name, why))
        return nullptr;
    return source;
}

bool XdpSource::MapUmem(std::string& why) {
    const size_t queues = queues_.size();
    framesPerQueue_ = kLeastFramesPerQueue;
    while (framesPerQueue_ * 2 * queues <= kFrames)
        framesPerQueue_ *= 2;
    areaBytes_ = framesPerQueue_ * queues * kFrameSize;
    void* area = mmap(nullptr, areaBytes_, PROT_READ | PROT_WRITE,
                      MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
    if (area == MAP_FAILED) {
        why = Reason("no memory for the UMEM", errno);
        return false;
    }
    area_ = static_cast<uint8_t*>(area);
    xsk_umem_config config{};
    config.fill_size = static_cast<uint32_t>(framesPerQueue_);
    config.comp_size = kCompletionSize;
    config.frame_size = kFrameSize;
    const int failed = xsk_umem__create(&umem_, area_, areaBytes_, &queues_[0].fill,
                                        &queues_[0].completion, &config);
    if (failed != 0) {
        umem_ = nullptr;
        why = Reason("the UMEM could not be registered (it needs CAP_NET_RAW)", -failed);
        return false;
    }
    return true;
}

// A socket on every receive queue, all sharing the UMEM, each with its own share of the frames
// in its fill ring, each entered in the map that the program looks them up in.
bool XdpSource::OpenQueues(const std::string& interface, std::string& why) {
    xsk_socket_config config{};
    config.rx_size = static_cast<uint32_t>(framesPerQueue_);
    config.libxdp_flags = XSK_LIBXDP_FLAGS__INHIBIT_PROG_LOAD;
    config.bind_flags =
        XDP_USE_NEED_WAKEUP | (spread_ ? XDP_USE_SG : 0) | (zeroCopy_ ? XDP_ZEROCOPY : 0);
    for (uint32_t i = 0; i < queues_.size(); ++i) {
        Queue& queue = queues_[i];
        const int failed =
            i == 0
                ? xsk_socket__create(&queue.socket, interface.c_str(), i, umem_, &queue.rx, nullptr,
                                     &config)
                : xsk_socket__create_shared(&queue.socket, interface.c_str(), i, umem_, &queue.rx,
                                            nullptr, &queue.fill, &queue.completion, &config);
        if (failed != 0) {
            queue.socket = nullptr;
            why =
                Reason("no AF_XDP socket on " + interface + " queue " + std::to_string(i), -failed);
            return false;
        }
        const int fd = xsk_socket__fd(queue.socket);
        if (bpf_map_update_elem(map_, &i, &fd, BPF_ANY) != 0) {
            why = Reason("the socket map could not be filled", errno);
            return false;
        }
        uint32_t at = 0;
        xsk_ring_prod__reserve(&queue.fill, static_cast<uint32_t>(framesPerQueue_), &at);
        for (size_t frame = 0; frame < framesPerQueue_; ++frame)
            *xsk_ring_prod__fill_addr(&queue.fill, at + static_cast<uint32_t>(frame)) =
                (i * framesPerQueue_ + frame) * kFrameSize;
        xsk_ring_prod__submit(&queue.fill, static_cast<uint32_t>(framesPerQueue_));
        idle_.push_back({fd, POLLIN, 0});
    }
    return true;
}

// Attached through a link rather than to the interface directly: the program goes when the link
// is closed, by the destructor or by the kernel when the process ends however it ends, and an
// interface that already runs an XDP program is refused instead of taken over.
bool XdpSource::Attach(unsigned interface, uint32_t localIp, uint16_t port, Mode mode,
                       std::string& why) {
    map_ = bpf_map_create(BPF_MAP_TYPE_XSKMAP, "orvan_gvsp_xsks", sizeof(uint32_t), sizeof(int),
                          static_cast<uint32_t>(queues_.size()), nullptr);
    if (map_ < 0) {
        why = Reason("no socket map for the XDP program (it needs CAP_BPF)", -map_);
        return false;
    }
    const std::vector<bpf_insn> code = StreamProgram(map_, localIp, port);
    bpf_prog_load_opts load{};
    load.sz = sizeof load;
    load.prog_flags = spread_ ? BPF_F_XDP_HAS_FRAGS : 0;
    program_ = bpf_prog_load(BPF_PROG_TYPE_XDP, "orvan_gvsp", "Dual BSD/GPL", code.data(),
                             code.size(), &load);
    if (program_ < 0) {
        why = Reason("the XDP program was not accepted", -program_);
        return false;
    }
    bpf_link_create_opts options{};
    options.sz = sizeof options;
    options.flags = XDP_FLAGS_DRV_MODE;
    link_ = bpf_link_create(program_, static_cast<int>(interface), BPF_XDP, &options);
    if (link_ < 0 && mode == Mode::NativeOrGeneric) {
        options.flags = XDP_FLAGS_SKB_MODE;
        link_ = bpf_link_create(program_, static_cast<int>(interface), BPF_XDP, &options);
    }
    if (link_ < 0) {
        why = Reason(mode == Mode::NativeZeroCopy
                         ? "the XDP program could not be attached in the interface's driver"
                         : "the XDP program could not be attached",
                     -link_);
        return false;
    }
    return true;
}

// The program goes first, so that nothing is redirected to sockets on their way out.
XdpSource::~XdpSource() {
    for (int fd : {link_, program_, map_})
        if (fd >= 0)
            close(fd);
    for (Queue& queue : queues_)
        if (queue.socket != nullptr)
            xsk_socket__delete(queue.socket);
    if (umem_ != nullptr)
        xsk_umem__delete(umem_);
    if (area_ != nullptr)
        munmap(area_, areaBytes_);
}

size_t XdpSource::Receive(GvspAssembler::Slot* slots, size_t count, size_t headerSize) {
    size_t filled = TakeFromQueues(slots, count, headerSize);
    if (filled == 0) {
        Wait();
        filled = TakeFromQueues(slots, count, headerSize);
    }
    FenceCopies();
    return filled;
}

size_t XdpSource::TakeFromQueues(GvspAssembler::Slot* slots, size_t count, size_t headerSize) {
    size_t filled = 0;
    for (size_t i = 0; i < queues_.size() && filled < count; ++i)
        filled += Take(queues_[(nextQueue_ + i) % queues_.size()], slots + filled, count - filled,
                       headerSize);
    nextQueue_ = (nextQueue_ + 1) % queues_.size();
    return filled;
}

// Copies what the queue holds into slots and hands the frames straight back to the kernel. The
// fill ring has room for every frame of the queue, so they should always fit. A packet spread
// over frames is published whole; only the count can cut one short, and then it waits.
size_t XdpSource::Take(Queue& queue, GvspAssembler::Slot* slots, size_t count, size_t headerSize) {
    uint32_t at = 0;
    const uint32_t peeked = xsk_ring_cons__peek(&queue.rx, static_cast<uint32_t>(count), &at);
    uint32_t taken = peeked;
    while (taken > 0 &&
           (xsk_ring_cons__rx_desc(&queue.rx, at + taken - 1)->options & XDP_PKT_CONTD))
        --taken;
    uint32_t back = 0;
    if (taken == 0 || xsk_ring_prod__reserve(&queue.fill, taken, &back) != taken) {
        xsk_ring_cons__cancel(&queue.rx, peeked); // taken again later
        return 0;
    }
    xsk_ring_cons__cancel(&queue.rx, peeked - taken);
    size_t filled = 0;
    for (uint32_t i = 0; i < taken;)
        i = CopyPacket(queue, at, i, back, slots[filled], headerSize, filled);
    xsk_ring_prod__submit(&queue.fill, taken);
    xsk_ring_cons__release(&queue.rx, taken);
    // Only when the driver ran out of frames and stopped: it waits to be told there are more.
    if (xsk_ring_prod__needs_wakeup(&queue.fill))
        recvfrom(xsk_socket__fd(queue.socket), nullptr, 0, MSG_DONTWAIT, nullptr, nullptr);
    return filled;
}

// The packet whose first frame is descriptor `first` after `at`, into the slot (counted in
// `filled` when it went there), its frames onto the fill ring from `back` on; returns the
// descriptor after it.
uint32_t XdpSource::CopyPacket(Queue& queue, uint32_t at, uint32_t first, uint32_t back,
                               GvspAssembler::Slot& slot, size_t headerSize, size_t& filled) {
    const xdp_desc* frame = xsk_ring_cons__rx_desc(&queue.rx, at + first);
    size_t more = 0;
    const bool kept =
        frame->len > ETH_HLEN && CopyDatagram(slot, area_ + frame->addr + ETH_HLEN,
                                              frame->len - ETH_HLEN, headerSize, &more);
    for (uint32_t i = first;; frame = xsk_ring_cons__rx_desc(&queue.rx, at + i)) {
        if (i > first) {
            const size_t piece = std::min<size_t>(more, frame->len);
            if (kept)
                AppendInto(slot, area_ + frame->addr, piece, headerSize);
            more -= piece;
        }
        *xsk_ring_prod__fill_addr(&queue.fill, back + i) = frame->addr - frame->addr % kFrameSize;
        ++i;
        if ((frame->options & XDP_PKT_CONTD) == 0) {
            if (kept) {
                slot.truncated = slot.truncated || more > 0;
                ++filled;
            }
            return i;
        }
    }
}

void XdpSource::Wait() {
    const timespec timeout{0, long{kWakeUpUs} * 1000};
    ppoll(idle_.data(), idle_.size(), &timeout, nullptr);
}

} // namespace Producer
} // namespace Orvan
