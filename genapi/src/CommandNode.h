// Command: executing writes the command value to the underlying node; the command is done once
// that node no longer reads back the command value.
#ifndef ORVAN_GENAPI_COMMANDNODE_H
#define ORVAN_GENAPI_COMMANDNODE_H

#include "NumericBound.h"
#include "ValueNode.h"
#include "ValueSource.h"

#include <GenApi/ICommand.h>

namespace GenApi {
namespace detail {

class CommandNode : public ValueNode<ICommand> {
public:
    using ValueNode<ICommand>::ValueNode;
    void Link(const NodeDescription& description) override;
    bool CacheValid() const override { return false; }

    EInterfaceType GetPrincipalInterfaceType() const override { return intfICommand; }
    void Execute(bool verify = true) override;
    void operator()() override { Execute(); }
    bool IsDone(bool verify = true) override;
    gcstring ToString(bool verify = false, bool ignoreCache = false) override;
    void FromString(const gcstring& valueString, bool verify = true) override;

protected:
    EAccessMode InternalAccessMode() const override { return m_value.AccessMode(); }

private:
    ValueSource m_value;
    NumericBound m_commandValue;
};

} // namespace detail
} // namespace GenApi

#endif
