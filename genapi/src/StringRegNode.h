// StringReg: text stored in a register, ending at the first zero byte or at the register's end.
#ifndef ORVAN_GENAPI_STRINGREGNODE_H
#define ORVAN_GENAPI_STRINGREGNODE_H

#include "RegisterAccess.h"
#include "ValueNode.h"

#include <GenApi/IString.h>

namespace GenApi {
namespace detail {

class StringRegNode : public ValueNode<IString> {
public:
    using ValueNode<IString>::ValueNode;
    void Link(const NodeDescription& description) override;
    void DropCache() override { m_register.DropCache(); }
    bool CacheValid() const override { return m_register.CacheValid() && CachingMode() != NoCache; }

    EInterfaceType GetPrincipalInterfaceType() const override { return intfIString; }
    void SetValue(const gcstring& value, bool verify = true) override;
    IString& operator=(const gcstring& value) override;
    gcstring GetValue(bool verify = false, bool ignoreCache = false) override;
    gcstring operator()() override { return GetValue(); }
    gcstring operator*() override { return GetValue(); }
    int64_t GetMaxLength() override;
    gcstring ToString(bool verify = false, bool ignoreCache = false) override;
    void FromString(const gcstring& valueString, bool verify = true) override;

protected:
    EAccessMode InternalAccessMode() const override { return m_register.AccessMode(); }
    bool HasOwnCache() const override { return true; }

private:
    RegisterAccess m_register;
};

} // namespace detail
} // namespace GenApi

#endif
