#include "GvcpChannel.h"

#include "GevProtocol.h"
#include "GvcpCodec.h"
#include "GvcpStatus.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstring>

namespace Orvan {
namespace Producer {

namespace {

using Clock = std::chrono::steady_clock;

// Per thread, so that concurrent callers each see their own failure.
thread_local std::string t_lastError;

sockaddr_in Address(uint32_t ip, uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(ip);
    address.sin_port = htons(port);
    return address;
}

// The source address the kernel picks for datagrams to ip: what the camera will see.
uint32_t RouteSource(uint32_t ip, uint16_t port) {
    const int probe = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (probe < 0)
        return 0;
    sockaddr_in target = Address(ip, port);
    sockaddr_in local{};
    socklen_t length = sizeof local;
    uint32_t source = 0;
    if (connect(probe, reinterpret_cast<sockaddr*>(&target), sizeof target) == 0 &&
        getsockname(probe, reinterpret_cast<sockaddr*>(&local), &length) == 0)
        source = ntohl(local.sin_addr.s_addr);
    close(probe);
    return source;
}

} // namespace

GvcpChannel::GvcpChannel(uint32_t cameraIp, uint16_t port, uint32_t localIp, Options options)
    : m_cameraIp(cameraIp), m_port(port), m_options(options), m_localIp(localIp) {
    m_socket = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (m_socket < 0) {
        m_socketError = errno;
        return;
    }
    const int on = 1;
    setsockopt(m_socket, SOL_SOCKET, SO_BROADCAST, &on, sizeof on);
    sockaddr_in local = Address(localIp, 0);
    if (bind(m_socket, reinterpret_cast<sockaddr*>(&local), sizeof local) != 0) {
        m_socketError = errno;
        close(m_socket);
        m_socket = -1;
        return;
    }
    if (m_localIp == 0)
        m_localIp = RouteSource(cameraIp, port);
}

GvcpChannel::~GvcpChannel() {
    if (m_socket >= 0)
        close(m_socket);
}

uint32_t GvcpChannel::LocalIp() const {
    return m_localIp;
}

std::string GvcpChannel::LastErrorText() const {
    return t_lastError;
}

GenTL::GC_ERROR GvcpChannel::Fail(GenTL::GC_ERROR error, const std::string& text) const {
    t_lastError = text;
    return error;
}

uint16_t GvcpChannel::NextRequestId() {
    // Zero is not a valid request id; skip it on wrap-around.
    uint16_t id = ++m_lastId;
    while (id == 0)
        id = ++m_lastId;
    return id;
}

bool GvcpChannel::Send(const std::vector<uint8_t>& datagram) {
    sockaddr_in target = Address(m_cameraIp, m_port);
    return sendto(m_socket, datagram.data(), datagram.size(), 0,
                  reinterpret_cast<sockaddr*>(&target),
                  sizeof target) == static_cast<ssize_t>(datagram.size());
}

GenTL::GC_ERROR GvcpChannel::Transact(const std::function<std::vector<uint8_t>(uint16_t)>& build,
                                      uint16_t expectedAnswer, const char* what,
                                      std::vector<uint8_t>* ackOut) {
    const std::string camera = FormatIp(m_cameraIp);
    if (m_socket < 0)
        return Fail(GenTL::GC_ERR_IO, std::string("No control socket for the camera at ") + camera +
                                          ": " + std::strerror(m_socketError));
    std::lock_guard<std::mutex> lock(m_mutex);
    const uint16_t id = NextRequestId();
    const std::vector<uint8_t> command = build(id);
    uint8_t buffer[2048];
    // A retry repeats the same request id, so a late answer to the first try still counts.
    for (uint32_t attempt = 0; attempt <= m_options.retries; ++attempt) {
        if (!Send(command))
            return Fail(GenTL::GC_ERR_IO, std::string("Sending ") + what + " to the camera at " +
                                              camera + " failed: " + std::strerror(errno));
        Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(m_options.timeoutMs);
        for (;;) {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
            if (left.count() <= 0)
                break;
            pollfd waiting{m_socket, POLLIN, 0};
            const int ready = poll(&waiting, 1, static_cast<int>(left.count()) + 1);
            if (ready < 0 && errno == EINTR)
                continue;
            if (ready <= 0)
                break;
            const ssize_t received = recv(m_socket, buffer, sizeof buffer, 0);
            if (received < 0)
                continue;
            const std::optional<GvcpAck> ack = ParseAck(buffer, static_cast<size_t>(received));
            if (!ack)
                continue;
            uint32_t pendingMs = 0;
            switch (ClassifyAck(*ack, expectedAnswer, id, pendingMs)) {
            case AckVerdict::Foreign:
                continue;
            case AckVerdict::Pending:
                // The camera promised an answer within pendingMs; keep the usual margin.
                deadline = Clock::now() + std::chrono::milliseconds(pendingMs) +
                           std::chrono::milliseconds(m_options.timeoutMs);
                continue;
            case AckVerdict::Invalid:
                return Fail(GenTL::GC_ERR_IO, std::string("The camera at ") + camera +
                                                  " sent a malformed answer to " + what);
            case AckVerdict::Answer:
                if (ackOut != nullptr)
                    ackOut->assign(buffer, buffer + received);
                if (GvcpStatusError(ack->status) != GenTL::GC_ERR_SUCCESS)
                    return Fail(GvcpStatusError(ack->status),
                                std::string(what) + " failed: " + GvcpStatusText(ack->status));
                return GenTL::GC_ERR_SUCCESS;
            }
        }
    }
    return Fail(GenTL::GC_ERR_TIMEOUT, "The camera at " + camera + " did not answer " + what +
                                           " (" + std::to_string(m_options.retries + 1) +
                                           " tries of " + std::to_string(m_options.timeoutMs) +
                                           " ms)");
}

GenTL::GC_ERROR GvcpChannel::ReadRegisters(const std::vector<uint32_t>& addresses,
                                           std::vector<uint32_t>& values) {
    // A command's payload is as large as a memory block plus its address.
    if (addresses.empty() || addresses.size() * 4 > Gev::kReadMemMax + 4)
        return Fail(GenTL::GC_ERR_INVALID_PARAMETER, "Between 1 and 135 registers per read");
    std::vector<uint8_t> ack;
    const GenTL::GC_ERROR status =
        Transact([&](uint16_t id) { return BuildReadRegCommand(id, addresses); }, Gev::ReadRegAck,
                 "a register read", &ack);
    if (status != GenTL::GC_ERR_SUCCESS)
        return status;
    values.resize(addresses.size());
    const std::optional<GvcpAck> parsed = ParseAck(ack.data(), ack.size());
    if (!parsed || !ParseReadRegAck(*parsed, values.data(), values.size()))
        return Fail(GenTL::GC_ERR_IO, "The camera's answer to a register read has the wrong size");
    return GenTL::GC_ERR_SUCCESS;
}

GenTL::GC_ERROR GvcpChannel::ReadRegister(uint32_t address, uint32_t& value) {
    std::vector<uint32_t> values;
    const GenTL::GC_ERROR status = ReadRegisters({address}, values);
    if (status == GenTL::GC_ERR_SUCCESS)
        value = values[0];
    return status;
}

GenTL::GC_ERROR GvcpChannel::WriteRegister(uint32_t address, uint32_t value) {
    // The status is what counts: cameras fill the acknowledge's index field in different ways.
    return Transact(
        [&](uint16_t id) {
            return BuildWriteRegCommand(id, {{address, value}});
        },
        Gev::WriteRegAck, "a register write");
}

GenTL::GC_ERROR GvcpChannel::ReadAligned(uint32_t address, uint8_t* data, size_t size) {
    for (size_t done = 0; done < size;) {
        const size_t piece = std::min(size - done, Gev::kReadMemMax);
        const uint32_t at = address + static_cast<uint32_t>(done);
        std::vector<uint8_t> ack;
        const GenTL::GC_ERROR status = Transact(
            [&](uint16_t id) { return BuildReadMemCommand(id, at, static_cast<uint16_t>(piece)); },
            Gev::ReadMemAck, "a memory read", &ack);
        if (status != GenTL::GC_ERR_SUCCESS)
            return status;
        const std::optional<GvcpAck> parsed = ParseAck(ack.data(), ack.size());
        if (!parsed || !ParseReadMemAck(*parsed, at, data + done, piece))
            return Fail(GenTL::GC_ERR_IO, "The camera's answer to a memory read does not match it");
        done += piece;
    }
    return GenTL::GC_ERR_SUCCESS;
}

GenTL::GC_ERROR GvcpChannel::WriteAligned(uint32_t address, const uint8_t* data, size_t size) {
    for (size_t done = 0; done < size;) {
        const size_t piece = std::min(size - done, Gev::kReadMemMax);
        const uint32_t at = address + static_cast<uint32_t>(done);
        const GenTL::GC_ERROR status =
            Transact([&](uint16_t id) { return BuildWriteMemCommand(id, at, data + done, piece); },
                     Gev::WriteMemAck, "a memory write");
        if (status != GenTL::GC_ERR_SUCCESS)
            return status;
        done += piece;
    }
    return GenTL::GC_ERR_SUCCESS;
}

namespace {

// GVCP memory access works on whole 32-bit words inside a 32-bit address space.
bool Span(uint64_t address, size_t size, uint32_t& start, size_t& length) {
    if (address > 0xFFFFFFFFull || size > 0x100000000ull - address)
        return false;
    start = static_cast<uint32_t>(address & ~3ull);
    length = static_cast<size_t>(((address + size + 3) & ~3ull) - start);
    return true;
}

} // namespace

GenTL::GC_ERROR GvcpChannel::ReadMemory(uint64_t address, void* data, size_t size) {
    uint32_t start = 0;
    size_t length = 0;
    if (data == nullptr || size == 0 || !Span(address, size, start, length))
        return Fail(GenTL::GC_ERR_INVALID_PARAMETER, "Invalid memory read range");
    if (start == address && length == size)
        return ReadAligned(start, static_cast<uint8_t*>(data), size);
    std::vector<uint8_t> words(length);
    const GenTL::GC_ERROR status = ReadAligned(start, words.data(), length);
    if (status == GenTL::GC_ERR_SUCCESS)
        std::memcpy(data, words.data() + (address - start), size);
    return status;
}

GenTL::GC_ERROR GvcpChannel::WriteMemory(uint64_t address, const void* data, size_t size) {
    uint32_t start = 0;
    size_t length = 0;
    if (data == nullptr || size == 0 || !Span(address, size, start, length))
        return Fail(GenTL::GC_ERR_INVALID_PARAMETER, "Invalid memory write range");
    if (start == address && length == size)
        return WriteAligned(start, static_cast<const uint8_t*>(data), size);
    // The camera only takes whole words: keep the bytes around the written ones as they are.
    std::vector<uint8_t> words(length);
    GenTL::GC_ERROR status = ReadAligned(start, words.data(), length);
    if (status != GenTL::GC_ERR_SUCCESS)
        return status;
    std::memcpy(words.data() + (address - start), data, size);
    return WriteAligned(start, words.data(), length);
}

GenTL::GC_ERROR GvcpChannel::SendPacketResend(uint16_t streamChannel, uint64_t blockId,
                                              uint32_t firstPacket, uint32_t lastPacket,
                                              bool extendedId) {
    if (m_socket < 0)
        return Fail(GenTL::GC_ERR_IO, std::string("No control socket for the camera: ") +
                                          std::strerror(m_socketError));
    // Nothing answers a resend request, so it need not wait for a transaction under way.
    if (!Send(BuildPacketResendCommand(NextRequestId(), streamChannel, blockId, firstPacket,
                                       lastPacket, extendedId)))
        return Fail(GenTL::GC_ERR_IO,
                    std::string("Sending a packet resend request failed: ") + std::strerror(errno));
    return GenTL::GC_ERR_SUCCESS;
}

} // namespace Producer
} // namespace Orvan
