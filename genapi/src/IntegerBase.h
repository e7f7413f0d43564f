// What every integer node kind shares: locking, access checks, verification against the limits,
// imposed limits, string conversion. The kinds supply the raw value and limits.
#ifndef ORVAN_GENAPI_INTEGERBASE_H
#define ORVAN_GENAPI_INTEGERBASE_H

#include "ValueNode.h"

#include <GenApi/IInteger.h>

#include <limits>

namespace GenApi {
namespace detail {

class IntegerBase : public ValueNode<IInteger> {
public:
    IntegerBase(NodeMap& map, const NodeDescription& description);

    EInterfaceType GetPrincipalInterfaceType() const override { return intfIInteger; }

    void SetValue(int64_t value, bool verify = true) override;
    IInteger& operator=(int64_t value) override;
    int64_t GetValue(bool verify = false, bool ignoreCache = false) override;
    int64_t operator()() override { return GetValue(); }
    int64_t operator*() override { return GetValue(); }
    int64_t GetMin() override;
    int64_t GetMax() override;
    EIncMode GetIncMode() override;
    int64_t GetInc() override;
    int64_autovector_t GetListOfValidValues(bool bounded = true) override;
    ERepresentation GetRepresentation() override;
    gcstring GetUnit() override { return m_unit; }
    void ImposeMin(int64_t value) override;
    void ImposeMax(int64_t value) override;

    gcstring ToString(bool verify = false, bool ignoreCache = false) override;
    void FromString(const gcstring& valueString, bool verify = true) override;

protected:
    virtual int64_t RawValue(bool verify, bool ignoreCache) = 0;
    virtual void WriteRaw(int64_t value, bool verify) = 0;
    virtual int64_t RawMin() { return std::numeric_limits<int64_t>::min(); }
    virtual int64_t RawMax() { return std::numeric_limits<int64_t>::max(); }
    virtual int64_t RawInc() { return 1; }
    virtual ERepresentation DefaultRepresentation() { return PureNumber; }

    void Verify(int64_t value);

private:
    std::vector<int64_t> m_validValues;
    std::string m_unit;
    ERepresentation m_representation = _UndefinedRepresentation;
    int64_t m_imposedMin = std::numeric_limits<int64_t>::min();
    int64_t m_imposedMax = std::numeric_limits<int64_t>::max();
};

} // namespace detail
} // namespace GenApi

#endif
