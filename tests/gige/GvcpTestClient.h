// A minimal GVCP client for the emulator's tests: one command, its acknowledge.
#ifndef ORVAN_TESTS_GIGE_GVCPTESTCLIENT_H
#define ORVAN_TESTS_GIGE_GVCPTESTCLIENT_H

#include "UdpSocket.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Orvan {
namespace Emulator {

class GvcpTestClient {
public:
    static constexpr uint16_t kNoAnswer = 0xFFFF;

    struct Ack {
        uint16_t status = 0;
        uint16_t command = 0;
        std::vector<uint8_t> payload;
    };

    explicit GvcpTestClient(const Endpoint& camera);

    // Sends the command and waits for its acknowledge (a PENDING_ACK only extends the wait).
    std::optional<Ack> Transact(uint16_t command, const std::vector<uint8_t>& payload,
                                uint8_t flags = 0x01, int timeoutMs = 2000);
    uint16_t ReadReg(uint32_t address, uint32_t& value);
    uint16_t WriteReg(uint32_t address, uint32_t value);
    uint16_t ReadMem(uint32_t address, uint16_t count, std::vector<uint8_t>& data);
    uint16_t WriteMem(uint32_t address, const std::vector<uint8_t>& data);
    // A feature of the camera's description, written big-endian over its register's length.
    uint16_t WriteFeature(const std::string& descriptionXml, const std::string& feature,
                          uint64_t value);

    const UdpSocket& Socket() const { return m_socket; }
    uint64_t PendingAcks() const { return m_pendingAcks; }

private:
    Endpoint m_camera;
    UdpSocket m_socket;
    uint16_t m_requestId = 0;
    uint64_t m_pendingAcks = 0;
};

} // namespace Emulator
} // namespace Orvan

#endif
