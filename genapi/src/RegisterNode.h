// Register: a block of raw bytes.
#ifndef ORVAN_GENAPI_REGISTERNODE_H
#define ORVAN_GENAPI_REGISTERNODE_H

#include "RegisterAccess.h"
#include "ValueNode.h"

#include <GenApi/IRegister.h>

namespace GenApi {
namespace detail {

class RegisterNode : public ValueNode<IRegister> {
public:
    using ValueNode<IRegister>::ValueNode;
    void Link(const NodeDescription& description) override;
    void DropCache() override { m_register.DropCache(); }
    bool CacheValid() const override { return m_register.CacheValid() && CachingMode() != NoCache; }

    EInterfaceType GetPrincipalInterfaceType() const override { return intfIRegister; }
    void Set(const uint8_t* buffer, int64_t length, bool verify = true) override;
    void Get(uint8_t* buffer, int64_t length, bool verify = false,
             bool ignoreCache = false) override;
    int64_t GetLength() override;
    int64_t GetAddress() override;
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
