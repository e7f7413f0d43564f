// SwissKnife and IntSwissKnife: a read-only value computed from other nodes by a formula, in the
// arithmetic of the value type (SwissKnife: floating point, IntSwissKnife: 64-bit integers).
#ifndef ORVAN_GENAPI_SWISSKNIFENODE_H
#define ORVAN_GENAPI_SWISSKNIFENODE_H

#include "FloatBase.h"
#include "FormulaContext.h"
#include "IntegerBase.h"

namespace GenApi {
namespace detail {

template <class Base>
class SwissKnifeNode : public Base {
public:
    using T = typename Base::ValueType;
    using Base::Base;
    void Link(const NodeDescription& description) override;
    bool CacheValid() const override { return m_context.CacheValid(); }

protected:
    EAccessMode InternalAccessMode() const override { return m_context.VariablesAccessMode(); }
    T RawValue(bool verify, bool ignoreCache) override;
    void WriteRaw(T value, bool verify) override;

private:
    FormulaContext m_context;
    std::unique_ptr<Formula> m_formula;
};

using FloatSwissKnifeNode = SwissKnifeNode<FloatBase>;
using IntSwissKnifeNode = SwissKnifeNode<IntegerBase>;

} // namespace detail
} // namespace GenApi

#endif
