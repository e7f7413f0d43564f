#include "GvcpTestClient.h"

#include "FeatureRegister.h"
#include "gige/BigEndian.h"
#include "gige/GevProtocol.h"

#include <chrono>

using Orvan::Gev::Get16;
using Orvan::Gev::Get32;
using Orvan::Gev::Put16;
using Orvan::Gev::Put32;

namespace Orvan {
namespace Emulator {

GvcpTestClient::GvcpTestClient(const Endpoint& camera) : m_camera(camera) {
    m_socket.Bind({0x7F000001, 0});
}

std::optional<GvcpTestClient::Ack> GvcpTestClient::Transact(uint16_t command,
                                                            const std::vector<uint8_t>& payload,
                                                            uint8_t flags, int timeoutMs) {
    if (++m_requestId == 0)
        m_requestId = 1;
    std::vector<uint8_t> datagram(Gev::kGvcpHeaderSize + payload.size());
    datagram[0] = Gev::kCommandKey;
    datagram[1] = flags;
    Put16(datagram.data() + 2, command);
    Put16(datagram.data() + 4, uint16_t(payload.size()));
    Put16(datagram.data() + 6, m_requestId);
    std::copy(payload.begin(), payload.end(), datagram.begin() + Gev::kGvcpHeaderSize);
    m_socket.SendTo(m_camera, datagram.data(), datagram.size());
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    uint8_t answer[1500];
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        Endpoint from;
        const long size = left.count() > 0
                              ? m_socket.ReceiveFrom(answer, sizeof answer, from, int(left.count()))
                              : -1;
        if (size < 0)
            return std::nullopt;
        if (size < long(Gev::kGvcpHeaderSize) || Get16(answer + 6) != m_requestId)
            continue;
        if (Get16(answer + 2) == Gev::PendingAck) {
            m_pendingAcks++;
            deadline += std::chrono::milliseconds(Get16(answer + 10));
            continue;
        }
        Ack ack{Get16(answer), Get16(answer + 2), {}};
        ack.payload.assign(answer + Gev::kGvcpHeaderSize, answer + size);
        return ack;
    }
}

uint16_t GvcpTestClient::ReadReg(uint32_t address, uint32_t& value) {
    std::vector<uint8_t> payload(4);
    Put32(payload.data(), address);
    const auto ack = Transact(Gev::ReadRegCmd, payload);
    if (!ack)
        return kNoAnswer;
    if (ack->payload.size() >= 4)
        value = Get32(ack->payload.data());
    return ack->status;
}

uint16_t GvcpTestClient::WriteReg(uint32_t address, uint32_t value) {
    std::vector<uint8_t> payload(8);
    Put32(payload.data(), address);
    Put32(payload.data() + 4, value);
    const auto ack = Transact(Gev::WriteRegCmd, payload);
    return ack ? ack->status : kNoAnswer;
}

uint16_t GvcpTestClient::ReadMem(uint32_t address, uint16_t count, std::vector<uint8_t>& data) {
    std::vector<uint8_t> payload(8);
    Put32(payload.data(), address);
    Put16(payload.data() + 6, count);
    const auto ack = Transact(Gev::ReadMemCmd, payload);
    if (!ack)
        return kNoAnswer;
    if (ack->payload.size() > 4)
        data.assign(ack->payload.begin() + 4, ack->payload.end());
    return ack->status;
}

uint16_t GvcpTestClient::WriteMem(uint32_t address, const std::vector<uint8_t>& data) {
    std::vector<uint8_t> payload(4);
    Put32(payload.data(), address);
    payload.insert(payload.end(), data.begin(), data.end());
    const auto ack = Transact(Gev::WriteMemCmd, payload);
    return ack ? ack->status : kNoAnswer;
}

uint16_t GvcpTestClient::WriteFeature(const std::string& descriptionXml, const std::string& feature,
                                      uint64_t value) {
    const FeatureRegister where = FindFeatureRegister(descriptionXml, feature);
    if (!where.Found() || where.length > 8)
        return Gev::InvalidAddress;
    std::vector<uint8_t> bytes(where.length);
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = uint8_t(value >> (8 * (bytes.size() - 1 - i)));
    return WriteMem(uint32_t(where.address), bytes);
}

} // namespace Emulator
} // namespace Orvan
