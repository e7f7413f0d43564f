// IntSwissKnife: a read-only integer computed from other nodes by a formula in integer
// arithmetic.
#ifndef ORVAN_GENAPI_INTSWISSKNIFENODE_H
#define ORVAN_GENAPI_INTSWISSKNIFENODE_H

#include "FormulaContext.h"
#include "IntegerBase.h"

namespace GenApi {
namespace detail {

class IntSwissKnifeNode : public IntegerBase {
public:
    using IntegerBase::IntegerBase;
    void Link(const NodeDescription& description) override;
    bool CacheValid() const override { return m_context.CacheValid(); }

protected:
    EAccessMode InternalAccessMode() const override { return m_context.VariablesAccessMode(); }
    int64_t RawValue(bool verify, bool ignoreCache) override;
    void WriteRaw(int64_t value, bool verify) override;

private:
    FormulaContext m_context;
    std::unique_ptr<Formula> m_formula;
};

} // namespace detail
} // namespace GenApi

#endif
