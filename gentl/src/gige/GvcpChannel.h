// A host's control channel to one camera: numbered commands, acknowledges matched to them,
// retries on silence and patience when the camera asks for it (PENDING_ACK). One transaction
// at a time; any thread may call.
#ifndef ORVAN_GENTL_GIGE_GVCPCHANNEL_H
#define ORVAN_GENTL_GIGE_GVCPCHANNEL_H

#include <GenTL/GenTL.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

class GvcpChannel {
public:
    struct Options {
        uint32_t timeoutMs = 200;
        uint32_t retries = 3;
    };
    // Binds a UDP socket on localIp (0 = any) and talks to cameraIp:port (host byte order).
    // A broadcast cameraIp is allowed (FORCEIP); answers are then taken from any sender.
    GvcpChannel(uint32_t cameraIp, uint16_t port, uint32_t localIp, Options options);
    ~GvcpChannel();
    GvcpChannel(const GvcpChannel&) = delete;
    GvcpChannel& operator=(const GvcpChannel&) = delete;

    GenTL::GC_ERROR ReadRegister(uint32_t address, uint32_t& value);
    GenTL::GC_ERROR WriteRegister(uint32_t address, uint32_t value);
    // Several registers in one command (at most 135).
    GenTL::GC_ERROR ReadRegisters(const std::vector<uint32_t>& addresses,
                                  std::vector<uint32_t>& values);
    // Any size and alignment; split in requests of at most 536 bytes.
    GenTL::GC_ERROR ReadMemory(uint64_t address, void* data, size_t size);
    GenTL::GC_ERROR WriteMemory(uint64_t address, const void* data, size_t size);
    GenTL::GC_ERROR SendPacketResend(uint16_t streamChannel, uint64_t blockId, uint32_t firstPacket,
                                     uint32_t lastPacket,
                                     bool extendedId); // no acknowledge
    // A command of any kind: build makes it for the request id it is given; the acknowledge
    // (header included) lands in ack when asked for.
    GenTL::GC_ERROR Transact(const std::function<std::vector<uint8_t>(uint16_t)>& build,
                             uint16_t expectedAnswer, const char* what,
                             std::vector<uint8_t>* ack = nullptr);

    std::string LastErrorText() const; // of the calling thread's last failed call
    uint32_t LocalIp() const; // the host address the camera sees (for stream/message destinations)
    uint32_t CameraIp() const { return m_cameraIp; }
    uint16_t Port() const { return m_port; }

private:
    uint16_t NextRequestId();
    GenTL::GC_ERROR Fail(GenTL::GC_ERROR error, const std::string& text) const;
    bool Send(const std::vector<uint8_t>& datagram);
    GenTL::GC_ERROR ReadAligned(uint32_t address, uint8_t* data, size_t size);
    GenTL::GC_ERROR WriteAligned(uint32_t address, const uint8_t* data, size_t size);

    const uint32_t m_cameraIp;
    const uint16_t m_port;
    const Options m_options;
    uint32_t m_localIp = 0;
    int m_socket = -1;
    int m_socketError = 0; // why there is no socket
    std::mutex m_mutex;    // one transaction at a time
    std::atomic<uint16_t> m_lastId{0};
};

} // namespace Producer
} // namespace Orvan

#endif
