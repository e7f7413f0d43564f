// The Port node: the map's way to the registers of a device, forwarding to the IPort that the
// application connected to it.
#ifndef ORVAN_GENAPI_PORTNODE_H
#define ORVAN_GENAPI_PORTNODE_H

#include "RegisterAccess.h"
#include "ValueNode.h"

#include <GenApi/IPort.h>

#include <vector>

namespace GenApi {
namespace detail {

class PortNode : public Node, public IPortConstruct {
public:
    PortNode(NodeMap& map, const NodeDescription& description);

    EInterfaceType GetPrincipalInterfaceType() const override { return intfIPort; }
    void Read(void* buffer, int64_t address, int64_t length) override;
    void Write(const void* buffer, int64_t address, int64_t length) override;
    void SetPortImpl(IPort* port) override;
    // Read for a caller that holds the map's lock.
    void ReadLocked(void* buffer, int64_t address, int64_t length);
    // Reported to the transport layer, which swaps if it has to; the bytes pass through here
    // unchanged.
    EYesNo GetSwapEndianess() override { return m_swapEndianess ? Yes : No; }

    const std::string& ChunkId() const { return m_chunkId; }

    // The registers reached through this port, so that a write through one of them makes the
    // cached copies of the others that share its bytes stale.
    void AddRegister(RegisterAccess* reg) { m_registers.push_back(reg); }
    void Written(int64_t address, int64_t length, const RegisterAccess* by);

protected:
    EAccessMode InternalAccessMode() const override;

private:
    IPort* m_port = nullptr;
    std::vector<RegisterAccess*> m_registers;
    std::string m_chunkId;
    bool m_swapEndianess = false;
};

} // namespace detail
} // namespace GenApi

#endif
