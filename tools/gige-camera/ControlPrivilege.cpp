#include "ControlPrivilege.h"

#include "gige/GevProtocol.h"

namespace Orvan {
namespace Emulator {

namespace {

constexpr uint32_t kAccessBits = Gev::kPrivilegeExclusive | Gev::kPrivilegeControl;

} // namespace

ControlPrivilege::ControlPrivilege(uint32_t heartbeatTimeoutMs) : m_timeoutMs(heartbeatTimeoutMs) {}

uint16_t ControlPrivilege::Write(const Endpoint& from, uint32_t value, Clock::time_point now) {
    if (Held() && from != m_primary)
        return Gev::AccessDenied;
    if ((value & kAccessBits) == 0) {
        Release();
        return Gev::Success;
    }
    m_value = value & (kAccessBits | Gev::kPrivilegeSwitchoverEnable);
    m_primary = from;
    m_lastSeen = now;
    return Gev::Success;
}

bool ControlPrivilege::MayRead(const Endpoint& from) const {
    return !Held() || (m_value & Gev::kPrivilegeExclusive) == 0 || from == m_primary;
}

void ControlPrivilege::Touch(const Endpoint& from, Clock::time_point now) {
    if (IsPrimary(from))
        m_lastSeen = now;
}

bool ControlPrivilege::Expire(Clock::time_point now) {
    if (!Held() || m_heartbeatDisabled || now - m_lastSeen < std::chrono::milliseconds(m_timeoutMs))
        return false;
    Release();
    return true;
}

void ControlPrivilege::Release() {
    m_value = 0;
    m_primary = {};
}

} // namespace Emulator
} // namespace Orvan
