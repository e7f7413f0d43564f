#include "PacketRing.h"

#include "HostInterfaces.h"

#include <linux/filter.h>
#include <linux/if_ether.h>
#include <net/if.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace Orvan {
namespace Producer {

namespace {

// 64 MiB, as much as the socket path may queue. Blocks of 1 MiB hold about a hundred jumbo
// packets, so waking up once per block costs nothing per packet; a block that does not fill
// up is handed over after kRetireMs, which bounds the latency a slow stream sees.
constexpr uint32_t kBlockSize = 1 << 20;
constexpr uint32_t kBlockCount = 64;
constexpr uint32_t kFrameSize = 2048; // the geometry's unit; a packet takes what it needs
constexpr uint32_t kRetireMs = 1;
constexpr size_t kRingBytes = size_t{kBlockSize} * kBlockCount;

std::string Reason(const std::string& what) {
    return what + ": " + std::strerror(errno);
}

// Runs in the kernel on every IPv4 packet of the interface: keeps the UDP datagrams to
// localIp:port that arrive, whole. On loopback each packet passes twice, leaving and arriving;
// a socket bound to IPv4 alone is only shown the arriving one, and the leaving one is refused
// here too, whatever the binding. Fragments are left out: their payload is not where the ring's
// reader expects it, and a stream's packets must fit the path unfragmented anyway.
bool AttachStreamFilter(int fd, uint32_t localIp, uint16_t port) {
    constexpr uint32_t kIpFragmentBits = 0x3FFF; // more-fragments flag and offset
    sock_filter code[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<uint32_t>(SKF_AD_OFF + SKF_AD_PKTTYPE)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, PACKET_OUTGOING, 10, 0),
        BPF_STMT(BPF_LD | BPF_B | BPF_ABS, 9), // protocol
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, IPPROTO_UDP, 0, 8),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, 16), // destination address
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, localIp, 0, 6),
        BPF_STMT(BPF_LD | BPF_H | BPF_ABS, 6), // flags and fragment offset
        BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, kIpFragmentBits, 4, 0),
        BPF_STMT(BPF_LDX | BPF_B | BPF_MSH, 0), // IP header length
        BPF_STMT(BPF_LD | BPF_H | BPF_IND, 2),  // UDP destination port
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, port, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, UINT32_MAX), // the whole packet
        BPF_STMT(BPF_RET | BPF_K, 0),
    };
    sock_fprog program{static_cast<unsigned short>(sizeof code / sizeof code[0]), code};
    return setsockopt(fd, SOL_SOCKET, SO_ATTACH_FILTER, &program, sizeof program) == 0;
}

} // namespace

std::unique_ptr<PacketRing> PacketRing::Open(uint32_t localIp, uint16_t port, uint32_t packetSize,
                                             std::string& why) {
    const std::string name = localIp != 0 ? InterfaceHolding(localIp) : std::string();
    const unsigned index = name.empty() ? 0 : if_nametoindex(name.c_str());
    if (index == 0) {
        why = "no interface holds the stream's address";
        return nullptr;
    }
    // No protocol yet: nothing is captured before the filter and the ring are in place.
    const int fd = socket(AF_PACKET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        why = Reason("no packet socket (it needs CAP_NET_RAW)");
        return nullptr;
    }
    std::unique_ptr<PacketRing> ring(new PacketRing(fd));
    ifreq request{};
    std::strncpy(request.ifr_name, name.c_str(), IFNAMSIZ - 1);
    if (ioctl(fd, SIOCGIFMTU, &request) != 0 || packetSize > uint32_t(request.ifr_mtu)) {
        why = "packets of " + std::to_string(packetSize) + " bytes do not fit " + name + "'s MTU";
        return nullptr;
    }
    if (!AttachStreamFilter(fd, localIp, port) || !ring->Map()) {
        why = Reason("the packet ring could not be set up");
        return nullptr;
    }
    sockaddr_ll address{};
    address.sll_family = AF_PACKET;
    address.sll_protocol = htons(ETH_P_IP);
    address.sll_ifindex = static_cast<int>(index);
    if (bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        why = Reason("the packet socket could not be bound to " + name);
        return nullptr;
    }
    return ring;
}

bool PacketRing::Map() {
    const int version = TPACKET_V3;
    tpacket_req3 geometry{};
    geometry.tp_block_size = kBlockSize;
    geometry.tp_block_nr = kBlockCount;
    geometry.tp_frame_size = kFrameSize;
    geometry.tp_frame_nr = kBlockSize / kFrameSize * kBlockCount;
    geometry.tp_retire_blk_tov = kRetireMs;
    if (setsockopt(fd_, SOL_PACKET, PACKET_VERSION, &version, sizeof version) != 0 ||
        setsockopt(fd_, SOL_PACKET, PACKET_RX_RING, &geometry, sizeof geometry) != 0)
        return false;
    void* map =
        mmap(nullptr, kRingBytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, fd_, 0);
    if (map == MAP_FAILED)
        return false;
    map_ = static_cast<uint8_t*>(map);
    return true;
}

PacketRing::~PacketRing() {
    if (map_ != nullptr)
        munmap(map_, kRingBytes);
    close(fd_);
}

tpacket_block_desc* PacketRing::Block(size_t index) const {
    return reinterpret_cast<tpacket_block_desc*>(map_ + index * kBlockSize);
}

size_t PacketRing::Receive(GvspAssembler::Slot* slots, size_t count, size_t headerSize) {
    size_t filled = 0;
    while (filled < count && (left_ > 0 || TakeBlock(filled == 0))) {
        const auto& packet = *reinterpret_cast<const tpacket3_hdr*>(packet_);
        if (Fill(slots[filled], packet, headerSize))
            ++filled;
        packet_ += packet.tp_next_offset;
        if (--left_ == 0)
            ReleaseBlock();
    }
    FenceCopies();
    return filled;
}

bool PacketRing::TakeBlock(bool wait) {
    for (;;) {
        tpacket_block_desc* block = Block(next_);
        const uint32_t status = __atomic_load_n(&block->hdr.bh1.block_status, __ATOMIC_ACQUIRE);
        if ((status & TP_STATUS_USER) == 0) {
            if (!wait)
                return false;
            wait = false;
            pollfd ready{fd_, POLLIN, 0};
            const timespec timeout{0, long{kWakeUpUs} * 1000};
            ppoll(&ready, 1, &timeout, nullptr);
            continue;
        }
        held_ = block;
        next_ = (next_ + 1) % kBlockCount;
        left_ = block->hdr.bh1.num_pkts;
        packet_ = reinterpret_cast<const uint8_t*>(block) + block->hdr.bh1.offset_to_first_pkt;
        if (left_ > 0)
            return true;
        ReleaseBlock();
    }
}

void PacketRing::ReleaseBlock() {
    __atomic_store_n(&held_->hdr.bh1.block_status, TP_STATUS_KERNEL, __ATOMIC_RELEASE);
    held_ = nullptr;
}

bool PacketRing::Fill(GvspAssembler::Slot& slot, const tpacket3_hdr& packet, size_t headerSize) {
    return CopyDatagram(slot, reinterpret_cast<const uint8_t*>(&packet) + packet.tp_net,
                        packet.tp_snaplen, headerSize);
}

} // namespace Producer
} // namespace Orvan
