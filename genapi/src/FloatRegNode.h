// FloatReg: an IEEE 754 number of 4 or 8 bytes in a register.
#ifndef ORVAN_GENAPI_FLOATREGNODE_H
#define ORVAN_GENAPI_FLOATREGNODE_H

#include "FloatBase.h"
#include "RegisterAccess.h"

namespace GenApi {
namespace detail {

class FloatRegNode : public FloatBase {
public:
    using FloatBase::FloatBase;
    void Link(const NodeDescription& description) override;
    void DropCache() override { m_register.DropCache(); }
    bool CacheValid() const override { return m_register.CacheValid() && CachingMode() != NoCache; }

protected:
    bool KeepsValue() const override { return true; }
    EAccessMode InternalAccessMode() const override { return m_register.AccessMode(); }
    bool HasOwnCache() const override { return true; }
    double RawValue(bool verify, bool ignoreCache) override;
    void WriteRaw(double value, bool verify) override;
    // A single-precision register cannot hold more than the float range.
    double RawMin() override;
    double RawMax() override;

private:
    RegisterAccess m_register;
};

} // namespace detail
} // namespace GenApi

#endif
