// Which application controls the camera (the control channel privilege register) and the
// heartbeat that keeps it: an application that goes quiet for the heartbeat timeout loses
// control, so a crashed client never locks the camera.
#ifndef ORVAN_TOOLS_GIGE_CAMERA_CONTROLPRIVILEGE_H
#define ORVAN_TOOLS_GIGE_CAMERA_CONTROLPRIVILEGE_H

#include "UdpSocket.h"

#include <chrono>
#include <cstdint>

namespace Orvan {
namespace Emulator {

class ControlPrivilege {
public:
    using Clock = std::chrono::steady_clock;

    explicit ControlPrivilege(uint32_t heartbeatTimeoutMs);

    // A write of the privilege register; returns a GVCP status.
    uint16_t Write(const Endpoint& from, uint32_t value, Clock::time_point now);
    // Everyone reads the same value: that is how others tell that the camera is taken.
    uint32_t Value() const { return m_value; }

    bool Held() const { return m_value != 0; }
    bool IsPrimary(const Endpoint& from) const { return Held() && from == m_primary; }
    Endpoint Primary() const { return m_primary; }
    // Others may read unless the primary holds exclusive access; only the primary writes.
    bool MayRead(const Endpoint& from) const;
    bool MayWrite(const Endpoint& from) const { return IsPrimary(from); }

    // Any command of the primary counts as its heartbeat.
    void Touch(const Endpoint& from, Clock::time_point now);
    // True (once) when the primary's heartbeat ran out; control is then released.
    bool Expire(Clock::time_point now);
    void Release();

    uint32_t HeartbeatTimeoutMs() const { return m_timeoutMs; }
    void SetHeartbeatTimeoutMs(uint32_t ms) { m_timeoutMs = ms; }
    void SetHeartbeatDisabled(bool disabled) { m_heartbeatDisabled = disabled; }

private:
    uint32_t m_value = 0;
    Endpoint m_primary;
    Clock::time_point m_lastSeen;
    uint32_t m_timeoutMs;
    bool m_heartbeatDisabled = false;
};

} // namespace Emulator
} // namespace Orvan

#endif
