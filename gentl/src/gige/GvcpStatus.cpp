#include "GvcpStatus.h"

#include "GevProtocol.h"

#include <cstdio>

namespace Orvan {
namespace Producer {

namespace {

struct StatusMeaning {
    uint16_t status;
    GenTL::GC_ERROR error;
    const char* text;
};

const StatusMeaning kMeanings[] = {
    {Gev::Success, GenTL::GC_ERR_SUCCESS, "success"},
    {Gev::NotImplemented, GenTL::GC_ERR_NOT_IMPLEMENTED,
     "the camera does not implement this command"},
    {Gev::InvalidParameter, GenTL::GC_ERR_INVALID_PARAMETER,
     "the camera rejected a parameter of the command"},
    {Gev::InvalidAddress, GenTL::GC_ERR_INVALID_ADDRESS,
     "the address does not exist in the camera's register space"},
    {Gev::WriteProtect, GenTL::GC_ERR_ACCESS_DENIED, "the register is write-protected"},
    {Gev::BadAlignment, GenTL::GC_ERR_INVALID_ADDRESS,
     "the address or size is not aligned as the camera requires"},
    {Gev::AccessDenied, GenTL::GC_ERR_ACCESS_DENIED,
     "the camera refused access: another application controls it"},
    {Gev::Busy, GenTL::GC_ERR_BUSY, "the camera is busy; try again later"},
    {Gev::MsgMismatch, GenTL::GC_ERR_IO, "the camera reported a message mismatch"},
    {Gev::InvalidProtocol, GenTL::GC_ERR_IO, "the camera reported a protocol error"},
    {Gev::NoMsg, GenTL::GC_ERR_TIMEOUT, "the camera's message channel timed out"},
    {Gev::PacketUnavailable, GenTL::GC_ERR_NO_DATA, "the requested packet is not available"},
    {Gev::DataOverrun, GenTL::GC_ERR_IO, "the camera's internal memory overflowed"},
    {Gev::InvalidHeader, GenTL::GC_ERR_IO, "the camera rejected the command header"},
    {Gev::WrongConfig, GenTL::GC_ERR_INVALID_VALUE,
     "the camera's current configuration does not allow this"},
    {Gev::PacketNotYetAvailable, GenTL::GC_ERR_NO_DATA, "the packet is not yet available"},
    {Gev::PacketAndPrevRemovedFromMemory, GenTL::GC_ERR_NO_DATA,
     "the packet and earlier ones were already discarded"},
    {Gev::PacketRemovedFromMemory, GenTL::GC_ERR_NO_DATA, "the packet was already discarded"},
    {Gev::NoRefTime, GenTL::GC_ERR_ERROR,
     "the camera has no reference time for a scheduled action"},
    {Gev::PacketTemporarilyUnavailable, GenTL::GC_ERR_BUSY,
     "the packet is temporarily unavailable"},
    {Gev::Overflow, GenTL::GC_ERR_RESOURCE_EXHAUSTED, "the camera's action queue is full"},
    {Gev::ActionLate, GenTL::GC_ERR_ERROR, "the action time had already passed"},
    {Gev::LeaderTrailerOverflow, GenTL::GC_ERR_IO, "a leader or trailer was too large"},
    {Gev::Error, GenTL::GC_ERR_ERROR, "the camera reported a general error"},
};

const StatusMeaning* Find(uint16_t status) {
    for (const StatusMeaning& meaning : kMeanings)
        if (meaning.status == status)
            return &meaning;
    return nullptr;
}

} // namespace

GenTL::GC_ERROR GvcpStatusError(uint16_t status) {
    const StatusMeaning* meaning = Find(status);
    if (meaning != nullptr)
        return meaning->error;
    // Codes with the high bit clear are not errors (PACKET_RESEND is informational).
    return (status & 0x8000) != 0 ? GenTL::GC_ERR_ERROR : GenTL::GC_ERR_SUCCESS;
}

std::string GvcpStatusText(uint16_t status) {
    const StatusMeaning* meaning = Find(status);
    char code[24];
    std::snprintf(code, sizeof code, " (GVCP status 0x%04X)", status);
    return std::string(meaning != nullptr ? meaning->text
                                          : "the camera reported an unknown status") +
           code;
}

} // namespace Producer
} // namespace Orvan
