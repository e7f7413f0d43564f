// SwissKnife: a read-only floating-point value computed from other nodes by a formula.
#ifndef ORVAN_GENAPI_SWISSKNIFENODE_H
#define ORVAN_GENAPI_SWISSKNIFENODE_H

#include "FloatBase.h"
#include "FormulaContext.h"

namespace GenApi {
namespace detail {

class SwissKnifeNode : public FloatBase {
public:
    using FloatBase::FloatBase;
    void Link(const NodeDescription& description) override;
    bool CacheValid() const override { return m_context.CacheValid(); }

protected:
    EAccessMode InternalAccessMode() const override { return m_context.VariablesAccessMode(); }
    double RawValue(bool verify, bool ignoreCache) override;
    void WriteRaw(double value, bool verify) override;

private:
    FormulaContext m_context;
    std::unique_ptr<Formula> m_formula;
};

} // namespace detail
} // namespace GenApi

#endif
