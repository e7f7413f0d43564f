#include "GigeMessageChannel.h"

#include "../LastError.h"
#include "BoundUdpSocket.h"
#include "GevProtocol.h"
#include "GvcpCodec.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Orvan {
namespace Producer {

namespace {

// How often the receive thread looks whether it should stop.
constexpr int kStopCheckMs = 50;

} // namespace

GigeMessageChannel::GigeMessageChannel(uint32_t localIp) : m_localIp(localIp) {
    m_socket = OpenBoundUdpSocket(localIp, m_port);
}

GigeMessageChannel::~GigeMessageChannel() {
    Stop();
    if (m_socket >= 0)
        close(m_socket);
}

GenTL::GC_ERROR GigeMessageChannel::Start(std::shared_ptr<GvcpChannel> control, EventSink* sink) {
    if (m_socket < 0) {
        SetLastError(GenTL::GC_ERR_IO, "No socket for the camera's message channel");
        return GenTL::GC_ERR_IO;
    }
    GenTL::GC_ERROR status = control->WriteRegister(Gev::Reg::MessageChannelDestination, m_localIp);
    if (status == GenTL::GC_ERR_SUCCESS)
        status = control->WriteRegister(Gev::Reg::MessageChannelPort, m_port);
    if (status != GenTL::GC_ERR_SUCCESS) {
        SetLastError(status,
                     "Setting up the camera's message channel failed: " + control->LastErrorText());
        return status;
    }
    m_control = std::move(control);
    m_running = true;
    m_thread = std::thread([this, sink] { Run(sink); });
    return GenTL::GC_ERR_SUCCESS;
}

void GigeMessageChannel::Stop() {
    if (!m_thread.joinable())
        return;
    m_running = false;
    m_thread.join();
    // Port 0 switches the camera's message channel off; a lost camera does not care.
    m_control->WriteRegister(Gev::Reg::MessageChannelPort, 0);
}

void GigeMessageChannel::Run(EventSink* sink) {
    uint8_t buffer[2048];
    bool seenAny = false;
    uint16_t lastId = 0;
    while (m_running) {
        pollfd waiting{m_socket, POLLIN, 0};
        if (poll(&waiting, 1, kStopCheckMs) <= 0)
            continue;
        sockaddr_in sender{};
        socklen_t senderLength = sizeof sender;
        const ssize_t received = recvfrom(m_socket, buffer, sizeof buffer, 0,
                                          reinterpret_cast<sockaddr*>(&sender), &senderLength);
        if (received <= 0)
            continue;
        const std::optional<GvcpCommandHeader> command =
            ParseCommandHeader(buffer, static_cast<size_t>(received));
        if (!command ||
            (command->command != Gev::EventCmd && command->command != Gev::EventDataCmd))
            continue;
        if ((command->flags & Gev::kFlagAckRequired) != 0) {
            const std::vector<uint8_t> ack =
                BuildEventAck(command->requestId, command->command == Gev::EventDataCmd);
            sendto(m_socket, ack.data(), ack.size(), 0, reinterpret_cast<sockaddr*>(&sender),
                   senderLength);
        }
        // A camera whose acknowledge got lost sends the same message again.
        if (seenAny && command->requestId == lastId)
            continue;
        seenAny = true;
        lastId = command->requestId;
        sink->DeliverRemoteEvent(buffer, Gev::kGvcpHeaderSize + command->payloadSize);
    }
}

} // namespace Producer
} // namespace Orvan
