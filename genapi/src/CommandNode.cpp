#include "CommandNode.h"

#include <Base/GCException.h>
#include <GenApi/AccessModeHelpers.h>

namespace GenApi {
namespace detail {

void CommandNode::Link(const NodeDescription& description) {
    ValueNode<ICommand>::Link(description);
    m_value.Link(*this, description);
    m_commandValue.Link(*this, description, "CommandValue", "pCommandValue");
}

void CommandNode::Execute(bool verify) {
    NodeMap::Access access(m_map);
    CheckWritable();
    m_value.SetInt(m_commandValue.IsSet() ? m_commandValue.GetInt() : 1, verify);
    Changed();
}

bool CommandNode::IsDone(bool) {
    NodeMap::Access access(m_map);
    if (!IsReadable(m_value.AccessMode()))
        return true;
    int64_t commandValue = m_commandValue.IsSet() ? m_commandValue.GetInt() : 1;
    bool done = m_value.GetInt(false, true) != commandValue;
    if (done)
        Changed();
    return done;
}

gcstring CommandNode::ToString(bool, bool) {
    throw LOGICAL_ERROR_EXCEPTION("Command '%s' has no string value", Name().c_str());
}

void CommandNode::FromString(const gcstring&, bool verify) {
    Execute(verify);
}

} // namespace detail
} // namespace GenApi
