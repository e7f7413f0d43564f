// The Float node: a value held in the description, in another node, or chosen by an index.
#ifndef ORVAN_GENAPI_FLOATNODE_H
#define ORVAN_GENAPI_FLOATNODE_H

#include "FloatBase.h"
#include "NumericBound.h"
#include "ValueSource.h"

namespace GenApi {
namespace detail {

class FloatNode : public FloatBase {
public:
    using FloatBase::FloatBase;
    void Link(const NodeDescription& description) override;
    bool CacheValid() const override { return m_value.CacheValid(); }

protected:
    bool KeepsValue() const override { return true; }
    EAccessMode InternalAccessMode() const override {
        return m_inc.Restrict(m_max.Restrict(m_min.Restrict(m_value.AccessMode())));
    }
    double RawValue(bool verify, bool ignoreCache) override {
        return m_value.GetFloat(verify, ignoreCache);
    }
    void WriteRaw(double value, bool verify) override { m_value.SetFloat(value, verify); }
    double RawMin() override;
    double RawMax() override;
    bool RawHasInc() override;
    double RawInc() override;

private:
    ValueSource m_value;
    NumericBound m_min;
    NumericBound m_max;
    NumericBound m_inc;
};

} // namespace detail
} // namespace GenApi

#endif
