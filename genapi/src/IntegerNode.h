// The Integer node: a value held in the description, in another node, or chosen by an index.
#ifndef ORVAN_GENAPI_INTEGERNODE_H
#define ORVAN_GENAPI_INTEGERNODE_H

#include "IntegerBase.h"
#include "NumericBound.h"
#include "ValueSource.h"

namespace GenApi {
namespace detail {

class IntegerNode : public IntegerBase {
public:
    using IntegerBase::IntegerBase;
    void Link(const NodeDescription& description) override;

protected:
    bool KeepsValue() const override { return true; }
    EAccessMode InternalAccessMode() const override {
        return m_inc.Restrict(m_max.Restrict(m_min.Restrict(m_value.AccessMode())));
    }
    bool CacheValid() const override { return m_value.CacheValid(); }
    int64_t RawValue(bool verify, bool ignoreCache) override;
    void WriteRaw(int64_t value, bool verify) override { m_value.SetInt(value, verify); }
    int64_t RawMin() override;
    int64_t RawMax() override;
    int64_t RawInc() override;

private:
    ValueSource m_value;
    NumericBound m_min;
    NumericBound m_max;
    NumericBound m_inc;
};

} // namespace detail
} // namespace GenApi

#endif
