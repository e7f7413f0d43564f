#include "PortNode.h"

#include "TextParsing.h"

#include <Base/GCException.h>

namespace GenApi {
namespace detail {

PortNode::PortNode(NodeMap& map, const NodeDescription& description) : Node(map, description) {
    for (const auto& property : description.properties) {
        if (property.name == "ChunkID")
            m_chunkId = property.text;
        else if (property.name == "SwapEndianess")
            m_swapEndianess = ParseYesNo(property);
    }
}

EAccessMode PortNode::InternalAccessMode() const {
    return m_port ? m_port->GetAccessMode() : NA;
}

void PortNode::SetPortImpl(IPort* port) {
    NodeMap::Access access(m_map);
    m_port = port;
    InvalidateNode();
}

void PortNode::Read(void* buffer, int64_t address, int64_t length) {
    NodeMap::Access access(m_map);
    ReadLocked(buffer, address, length);
}

void PortNode::ReadLocked(void* buffer, int64_t address, int64_t length) {
    if (!m_port)
        throw ACCESS_EXCEPTION("Port '%s' is not connected", Name().c_str());
    m_port->Read(buffer, address, length);
}

void PortNode::Write(const void* buffer, int64_t address, int64_t length) {
    NodeMap::Access access(m_map);
    if (!m_port)
        throw ACCESS_EXCEPTION("Port '%s' is not connected", Name().c_str());
    m_port->Write(buffer, address, length);
}

void PortNode::Written(int64_t address, int64_t length, const RegisterAccess* by) {
    for (RegisterAccess* reg : m_registers)
        if (reg != by)
            reg->Overwritten(address, length);
}

} // namespace detail
} // namespace GenApi
