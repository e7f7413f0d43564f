// What every floating-point node kind shares; the kinds supply the raw value and limits.
#ifndef ORVAN_GENAPI_FLOATBASE_H
#define ORVAN_GENAPI_FLOATBASE_H

#include "ValueNode.h"

#include <GenApi/IFloat.h>

#include <limits>

namespace GenApi {
namespace detail {

class FloatBase : public ValueNode<IFloat> {
public:
    FloatBase(NodeMap& map, const NodeDescription& description);

    EInterfaceType GetPrincipalInterfaceType() const override { return intfIFloat; }

    void SetValue(double value, bool verify = true) override;
    IFloat& operator=(double value) override;
    double GetValue(bool verify = false, bool ignoreCache = false) override;
    double operator()() override { return GetValue(); }
    double operator*() override { return GetValue(); }
    double GetMin() override;
    double GetMax() override;
    bool HasInc() override;
    EIncMode GetIncMode() override;
    double GetInc() override;
    double_autovector_t GetListOfValidValues(bool bounded = true) override;
    ERepresentation GetRepresentation() override;
    gcstring GetUnit() const override { return m_unit; }
    EDisplayNotation GetDisplayNotation() const override { return m_notation; }
    int64_t GetDisplayPrecision() const override { return m_precision; }
    void ImposeMin(double value) override;
    void ImposeMax(double value) override;

    gcstring ToString(bool verify = false, bool ignoreCache = false) override;
    void FromString(const gcstring& valueString, bool verify = true) override;

protected:
    ECachingMode DefaultCachingMode() const override { return WriteAround; }
    virtual double RawValue(bool verify, bool ignoreCache) = 0;
    virtual void WriteRaw(double value, bool verify) = 0;
    virtual double RawMin() { return -std::numeric_limits<double>::max(); }
    virtual double RawMax() { return std::numeric_limits<double>::max(); }
    virtual bool RawHasInc() { return false; }
    virtual double RawInc() { return 0.0; }

private:
    void Verify(double value);

    std::string m_unit;
    ERepresentation m_representation = PureNumber;
    EDisplayNotation m_notation = fnAutomatic;
    int64_t m_precision = 6;
    std::vector<double> m_validValues;
    double m_imposedMin = -std::numeric_limits<double>::max();
    double m_imposedMax = std::numeric_limits<double>::max();
};

} // namespace detail
} // namespace GenApi

#endif
