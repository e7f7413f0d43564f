#include "EmulatedCamera.h"

#include "gige/BigEndian.h"
#include "gige/GevProtocol.h"
#include "virtual/CameraModel.h"
#include "virtual/VirtualCamera.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <stdexcept>

using Orvan::Gev::Put16;
using Orvan::Gev::Put32;

namespace Orvan {
namespace Emulator {

namespace {

constexpr int kPollMs = 20; // how soon a heartbeat loss or a stop is noticed
constexpr uint32_t kLoopbackNet = 0x7F000000;
constexpr uint32_t kClassA = 0xFF000000;
constexpr uint32_t kBroadcast = 0xFFFFFFFF;

std::unique_ptr<Producer::RemoteDevice> MakeCamera(const EmulatorOptions& options) {
    auto camera = Producer::CreateVirtualCamera(options.model, options.index);
    if (!camera)
        throw std::invalid_argument("unknown camera model '" + options.model + "'");
    return camera;
}

DeviceRegisters::Features FindFeatures(Producer::RemoteDevice& camera) {
    const auto* described = dynamic_cast<Producer::VirtualCamera*>(&camera);
    const std::string xml = described ? described->DescriptionXml() : std::string();
    DeviceRegisters::Features features;
    features.packetSize = FindFeatureRegister(xml, "DeviceStreamChannelPacketSize");
    features.actionDeviceKey = FindFeatureRegister(xml, "ActionDeviceKey");
    features.actionGroupKey = FindFeatureRegister(xml, "ActionGroupKey");
    features.actionGroupMask = FindFeatureRegister(xml, "ActionGroupMask");
    features.acquisitionStop = FindFeatureRegister(xml, "AcquisitionStop");
    return features;
}

std::vector<std::unique_ptr<StreamChannel>> MakeStreams(Producer::RemoteDevice& camera,
                                                        const EmulatorOptions& options) {
    const Producer::CameraModel* model = Producer::FindCameraModel(options.model);
    std::vector<std::unique_ptr<StreamChannel>> streams;
    for (uint32_t index = 0; index < camera.StreamCount(); ++index) {
        const bool multipart = model && model->streams.at(index) == Producer::StreamRole::Multipart;
        StreamChannel::Options channel{options.packetLossPercent,
                                       options.reorderPercent,
                                       options.seed,
                                       options.resendFrames,
                                       index,
                                       multipart ? options.multipartParts : 1,
                                       options.maxPacketSize};
        streams.push_back(std::make_unique<StreamChannel>(camera, channel));
    }
    return streams;
}

std::vector<StreamChannel*> Pointers(const std::vector<std::unique_ptr<StreamChannel>>& streams) {
    std::vector<StreamChannel*> out;
    for (const auto& stream : streams)
        out.push_back(stream.get());
    return out;
}

bool IsLoopback(uint32_t ip) {
    return (ip & kClassA) == kLoopbackNet;
}

} // namespace

EmulatedCamera::EmulatedCamera(const EmulatorOptions& options)
    : m_options(options), m_camera(MakeCamera(options)), m_privilege(options.heartbeatTimeoutMs),
      m_streams(MakeStreams(*m_camera, options)), m_port(options.port) {
    m_registers =
        std::make_unique<DeviceRegisters>(*m_camera, m_privilege, Pointers(m_streams), m_messages,
                                          FindFeatures(*m_camera), options.heartbeatTimeoutMs);
}

EmulatedCamera::~EmulatedCamera() {
    Stop();
}

Producer::VirtualControls& EmulatedCamera::Controls() {
    return dynamic_cast<Producer::VirtualControls&>(*m_camera);
}

uint32_t EmulatedCamera::ReportedIp() const {
    // A camera listening on every address is reached through loopback from this host.
    return m_options.bindIp ? m_options.bindIp : kLoopbackNet | 1;
}

bool EmulatedCamera::Start() {
    if (m_running)
        return true;
    if (!m_control.Bind({m_options.bindIp, m_port}, UdpSocket::kAllowBroadcast) || !OpenStreams() ||
        !m_messages.Open(m_options.bindIp)) {
        m_error = std::string("cannot bind: ") + std::strerror(errno);
        m_control.Close();
        CloseStreams();
        m_messages.Close();
        return false;
    }
    m_port = m_control.Local().port;
    // Best effort: a camera bound to every address already hears broadcasts on its own.
    if (m_options.bindIp != 0)
        m_discovery.Bind({kBroadcast, m_port}, UdpSocket::kShareAddress);
    // The address clients reach; FORCEIP changes what the camera reports, never the socket.
    m_camera->ForceIp(ReportedIp(), kClassA, 0);
    m_registers->Reset();
    m_camera->SetEventSink(&m_messages);
    for (uint32_t index = 0; index < m_streams.size(); ++index)
        m_camera->StartStream(index, m_streams[index].get(), GENTL_INFINITE);
    m_running = true;
    m_thread = std::thread([this] { Run(); });
    return true;
}

void EmulatedCamera::Stop() {
    if (!m_running.exchange(false))
        return;
    m_thread.join();
    m_registers->ReleaseControl();
    m_camera->SetEventSink(nullptr);
    for (uint32_t index = 0; index < m_streams.size(); ++index)
        m_camera->StopStream(index);
    m_messages.Close();
    CloseStreams();
    m_discovery.Close();
    m_control.Close();
}

bool EmulatedCamera::OpenStreams() {
    return std::all_of(m_streams.begin(), m_streams.end(),
                       [this](const auto& stream) { return stream->Open(m_options.bindIp); });
}

void EmulatedCamera::CloseStreams() {
    for (const auto& stream : m_streams)
        stream->Close();
}

void EmulatedCamera::Run() {
    std::vector<uint8_t> datagram(2048);
    while (m_running) {
        Endpoint from;
        const UdpSocket* ready = UdpSocket::WaitReadable(m_control, m_discovery, kPollMs);
        const long size =
            ready ? ready->ReceiveFrom(datagram.data(), datagram.size(), from, 0) : -1;
        if (size > 0)
            Handle(datagram.data(), size_t(size), from);
        if (m_privilege.Expire(ControlPrivilege::Clock::now()))
            m_registers->ReleaseControl();
    }
}

void EmulatedCamera::Answer(const GvcpCommand& command, const Endpoint& to,
                            const std::vector<uint8_t>& ack) {
    if (command.AckRequired())
        m_control.SendTo(to, ack.data(), ack.size());
}

void EmulatedCamera::Handle(const uint8_t* data, size_t size, const Endpoint& from) {
    const auto command = ParseGvcpCommand(data, size);
    if (!command)
        return; // not GVCP: a camera ignores it
    m_privilege.Touch(from, ControlPrivilege::Clock::now());
    switch (command->command) {
    case Gev::DiscoveryCmd:
        return Discovery(*command, from);
    case Gev::ForceIpCmd:
        return ForceIp(*command, from);
    case Gev::ReadRegCmd:
        return ReadReg(*command, from);
    case Gev::WriteRegCmd:
        return WriteReg(*command, from);
    case Gev::ReadMemCmd:
        return ReadMem(*command, from);
    case Gev::WriteMemCmd:
        return WriteMem(*command, from);
    case Gev::ActionCmd:
        return Action(*command, from);
    case Gev::PacketResendCmd:
        if (const auto request = ParsePacketResend(*command);
            request && request->streamChannel < m_streams.size())
            m_streams[request->streamChannel]->Resend(*request);
        return;
    default:
        Answer(*command, from,
               BuildAck(Gev::NotImplemented, uint16_t(command->command + 1), command->requestId));
    }
}

void EmulatedCamera::Discovery(const GvcpCommand& command, const Endpoint& from) {
    DiscoveryDetails details;
    details.deviceMode = DeviceRegisters::kDeviceMode;
    details.ipConfigOptions = Gev::kIpConfigPersistent | Gev::kIpConfigDhcp | Gev::kIpConfigLla;
    details.ipConfigCurrent = Gev::kIpConfigLla;
    details.manufacturerInfo = "GigE Vision emulator";
    const auto ack = BuildDiscoveryAck(command.requestId, m_camera->Identity(), details);
    // Loopback has no broadcast: a host asking from there hears the answer directly.
    const bool broadcast =
        (command.flags & Gev::kFlagDiscoveryBroadcastAck) != 0 && !IsLoopback(from.ip);
    m_control.SendTo(broadcast ? Endpoint{kBroadcast, from.port} : from, ack.data(), ack.size());
}

void EmulatedCamera::ForceIp(const GvcpCommand& command, const Endpoint& from) {
    const auto request = ParseForceIp(command);
    if (!request || request->mac != m_camera->Identity().mac)
        return; // meant for another camera
    if (request->ip != 0)
        m_camera->ForceIp(request->ip, request->subnet, request->gateway);
    Answer(command, from, BuildAck(Gev::Success, Gev::ForceIpAck, command.requestId));
}

void EmulatedCamera::ReadReg(const GvcpCommand& command, const Endpoint& from) {
    const auto addresses = ParseReadReg(command);
    uint16_t status = !addresses                   ? Gev::InvalidParameter
                      : !m_privilege.MayRead(from) ? Gev::AccessDenied
                                                   : Gev::Success;
    std::vector<uint8_t> values;
    for (size_t i = 0; status == Gev::Success && i < addresses->size(); ++i) {
        uint8_t value[4];
        status = m_registers->Read((*addresses)[i], value, sizeof value);
        if (status == Gev::Success)
            values.insert(values.end(), value, value + 4);
    }
    Answer(command, from, BuildAck(status, Gev::ReadRegAck, command.requestId, values));
}

void EmulatedCamera::WriteReg(const GvcpCommand& command, const Endpoint& from) {
    const auto writes = ParseWriteReg(command);
    uint16_t status = writes ? Gev::Success : Gev::InvalidParameter;
    uint16_t written = 0;
    if (writes && !writes->empty())
        DelayIfSlow(command, writes->front().first, from);
    for (size_t i = 0; status == Gev::Success && i < writes->size(); ++i) {
        const auto [address, value] = (*writes)[i];
        // Anyone may ask for control; everything else needs it.
        if (address != Gev::Reg::ControlChannelPrivilege && !m_privilege.MayWrite(from)) {
            status = Gev::AccessDenied;
            break;
        }
        uint8_t bytes[4];
        Put32(bytes, value);
        status = m_registers->Write(address, bytes, sizeof bytes, from);
        if (status == Gev::Success)
            written++;
    }
    std::vector<uint8_t> payload(4);
    Put16(payload.data() + 2, written);
    Answer(command, from, BuildAck(status, Gev::WriteRegAck, command.requestId, payload));
}

void EmulatedCamera::ReadMem(const GvcpCommand& command, const Endpoint& from) {
    const auto request = ParseReadMem(command);
    uint16_t status = !request || request->count == 0 || request->count > Gev::kReadMemMax
                          ? Gev::InvalidParameter
                      : !m_privilege.MayRead(from) ? Gev::AccessDenied
                                                   : Gev::Success;
    std::vector<uint8_t> payload(4);
    if (request)
        Put32(payload.data(), request->address);
    if (status == Gev::Success) {
        payload.resize(4 + request->count);
        status = m_registers->Read(request->address, payload.data() + 4, request->count);
        if (status != Gev::Success)
            payload.resize(4);
    }
    Answer(command, from, BuildAck(status, Gev::ReadMemAck, command.requestId, payload));
}

void EmulatedCamera::WriteMem(const GvcpCommand& command, const Endpoint& from) {
    const auto address = ParseWriteMemAddress(command);
    const size_t size = address ? command.size - 4 : 0;
    uint16_t status = !address || size == 0 || size > Gev::kReadMemMax ? Gev::InvalidParameter
                      : *address != Gev::Reg::ControlChannelPrivilege && !m_privilege.MayWrite(from)
                          ? Gev::AccessDenied
                          : Gev::Success;
    if (status == Gev::Success) {
        DelayIfSlow(command, *address, from);
        status = m_registers->Write(*address, command.payload + 4, size, from);
    }
    std::vector<uint8_t> payload(4);
    Put16(payload.data() + 2, uint16_t(status == Gev::Success ? size : 0));
    Answer(command, from, BuildAck(status, Gev::WriteMemAck, command.requestId, payload));
}

void EmulatedCamera::Action(const GvcpCommand& command, const Endpoint& from) {
    const auto request = ParseAction(command);
    // Actions are broadcast to many cameras; one not meant for this camera gets no answer.
    if (!request ||
        !m_registers->ActionMatches(request->deviceKey, request->groupKey, request->groupMask))
        return;
    m_camera->ActionCommand(request->deviceKey, request->groupKey, request->groupMask,
                            request->scheduled ? request->actionTime : 0);
    m_actions++;
    Answer(command, from, BuildAck(Gev::Success, Gev::ActionAck, command.requestId));
}

void EmulatedCamera::DelayIfSlow(const GvcpCommand& command, uint32_t address,
                                 const Endpoint& from) {
    if (m_options.pendingAckMs == 0 || address < Gev::Reg::ManufacturerSpecific)
        return;
    // Tells the host how long to wait instead of letting it time out and retry.
    Answer(
        command, from,
        BuildPendingAck(command.requestId, uint16_t(std::min(m_options.pendingAckMs * 2, 65535u))));
    std::this_thread::sleep_for(std::chrono::milliseconds(m_options.pendingAckMs));
}

} // namespace Emulator
} // namespace Orvan
