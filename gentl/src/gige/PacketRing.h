// The packet-ring receive path: an AF_PACKET socket whose kernel filter lets through only this
// stream's datagrams (UDP to our port on our address, arriving, unfragmented) into a
// memory-mapped TPACKET_V3 ring. The kernel hands over whole blocks of packets; the receiving
// thread copies each payload once, from the ring into the stream's buffer, and makes a system
// call only to wait for the next block.
#ifndef ORVAN_GENTL_GIGE_PACKETRING_H
#define ORVAN_GENTL_GIGE_PACKETRING_H

#include "PacketSource.h"

#include <linux/if_packet.h>

#include <memory>
#include <string>

namespace Orvan {
namespace Producer {

class PacketRing : public PacketSource {
public:
    // A ring for the datagrams to localIp:port (host order) on the interface holding localIp;
    // null with the reason in `why` when there is none to be had: no privilege (CAP_NET_RAW),
    // no such interface, or packets larger than the interface carries unfragmented.
    static std::unique_ptr<PacketRing> Open(uint32_t localIp, uint16_t port, uint32_t packetSize,
                                            std::string& why);
    ~PacketRing() override;
    PacketRing(const PacketRing&) = delete;
    PacketRing& operator=(const PacketRing&) = delete;

    size_t Receive(GvspAssembler::Slot* slots, size_t count, size_t headerSize) override;

private:
    explicit PacketRing(int fd) : fd_(fd) {}
    bool Map(); // sets the ring up and maps it
    tpacket_block_desc* Block(size_t index) const;
    // Takes the next block the kernel has handed over, waiting for one if `wait`.
    bool TakeBlock(bool wait);
    void ReleaseBlock();
    static bool Fill(GvspAssembler::Slot& slot, const tpacket3_hdr& packet, size_t headerSize);

    int fd_;
    uint8_t* map_ = nullptr;
    size_t next_ = 0;                    // the block to take next
    tpacket_block_desc* held_ = nullptr; // the block being read
    const uint8_t* packet_ = nullptr;    // its next packet
    uint32_t left_ = 0;                  // packets left in it
};

} // namespace Producer
} // namespace Orvan

#endif
