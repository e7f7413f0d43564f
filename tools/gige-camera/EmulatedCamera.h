// One GigE Vision camera on the network, made of a virtual camera: GVCP on a UDP socket
// (discovery, register and memory access, control privilege with heartbeat, FORCEIP, ACTION,
// packet resend), its stream channel (GVSP) and its message channel (events). Several may run
// in one process, at different addresses or ports; Stop and Start again is a camera that
// dropped off the network and came back (its feature values are kept, its bootstrap registers
// and a forced address are not, as after a power cycle).
#ifndef ORVAN_TOOLS_GIGE_CAMERA_EMULATEDCAMERA_H
#define ORVAN_TOOLS_GIGE_CAMERA_EMULATEDCAMERA_H

#include "ControlPrivilege.h"
#include "DeviceRegisters.h"
#include "GvcpServerCodec.h"
#include "MessageChannel.h"
#include "RemoteDevice.h"
#include "StreamChannel.h"
#include "UdpSocket.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace Orvan {
namespace Emulator {

struct EmulatorOptions {
    std::string model = "Mono";   // a virtual camera model
    uint32_t index = 0;           // makes serial number and MAC unique
    uint32_t bindIp = 0x7F000001; // host order; 0 listens on every address
    uint16_t port = 3956;         // GVCP port; 0 picks a free one
    uint32_t heartbeatTimeoutMs = 3000;
    double packetLossPercent = 0; // of first transmissions of stream packets
    double reorderPercent = 0;
    uint32_t seed = 1;
    uint32_t resendFrames = 32; // recent frames kept for resends (memory: this many payloads)
    // Above 0, writes to the camera's features first answer PENDING_ACK and complete this much
    // later, like a camera with slow operations.
    uint32_t pendingAckMs = 0;
    // Stream packets larger than this (IP and UDP headers counted) never arrive, test packets
    // included, as on a path with a smaller MTU; 0 for no limit.
    uint32_t maxPacketSize = 0;
    // Frames a multipart buffer holds (the line-scan camera's multipart stream).
    uint32_t multipartParts = 3;
};

class EmulatedCamera {
public:
    // Throws std::invalid_argument for an unknown model.
    explicit EmulatedCamera(const EmulatorOptions& options);
    ~EmulatedCamera();
    EmulatedCamera(const EmulatedCamera&) = delete;
    EmulatedCamera& operator=(const EmulatedCamera&) = delete;

    // False, with Error() telling why, when the address cannot be bound.
    bool Start();
    void Stop();
    bool Running() const { return m_running; }
    const std::string& Error() const { return m_error; }

    // Where the camera listens for GVCP (the bound port, when port 0 was asked for; a restart
    // keeps it).
    Endpoint ControlEndpoint() const { return m_control.Local(); }
    Producer::DeviceIdentity Identity() const { return m_camera->Identity(); }
    Producer::RemoteDevice& Camera() { return *m_camera; }
    Producer::VirtualControls& Controls();

    // One stream channel per stream of the virtual camera.
    StreamChannel::Counters StreamStatistics(uint32_t channel = 0) const {
        return m_streams.at(channel)->Statistics();
    }
    MessageChannel::Counters MessageStatistics() const { return m_messages.Statistics(); }
    uint64_t ActionsExecuted() const { return m_actions; }

private:
    void Run();
    void Handle(const uint8_t* data, size_t size, const Endpoint& from);
    void Answer(const GvcpCommand& command, const Endpoint& to, const std::vector<uint8_t>& ack);
    void Discovery(const GvcpCommand& command, const Endpoint& from);
    void ForceIp(const GvcpCommand& command, const Endpoint& from);
    void ReadReg(const GvcpCommand& command, const Endpoint& from);
    void WriteReg(const GvcpCommand& command, const Endpoint& from);
    void ReadMem(const GvcpCommand& command, const Endpoint& from);
    void WriteMem(const GvcpCommand& command, const Endpoint& from);
    void Action(const GvcpCommand& command, const Endpoint& from);
    void DelayIfSlow(const GvcpCommand& command, uint32_t address, const Endpoint& from);
    uint32_t ReportedIp() const;
    bool OpenStreams();
    void CloseStreams();

    const EmulatorOptions m_options;
    std::unique_ptr<Producer::RemoteDevice> m_camera;
    ControlPrivilege m_privilege;
    std::vector<std::unique_ptr<StreamChannel>> m_streams;
    MessageChannel m_messages;
    std::unique_ptr<DeviceRegisters> m_registers;
    UdpSocket m_control;
    // Limited broadcasts (255.255.255.255) reach only sockets bound to that address or to all
    // addresses: a camera bound to one address hears discovery through this one.
    UdpSocket m_discovery;
    std::thread m_thread;
    std::atomic<bool> m_running{false};
    std::atomic<uint64_t> m_actions{0};
    std::string m_error;
    uint16_t m_port; // a restart comes back on the port first bound
};

} // namespace Emulator
} // namespace Orvan

#endif
