// What every integer and floating-point node kind shares: locking, access checks, verification
// against the limits and the valid values, imposed limits, string conversion. The value type
// decides the few places where integers and floats behave differently; the kinds supply the raw
// value and limits.
#ifndef ORVAN_GENAPI_NUMERICNODE_H
#define ORVAN_GENAPI_NUMERICNODE_H

#include "ValueNode.h"

#include <limits>
#include <string>
#include <vector>

namespace GenApi {
namespace detail {

template <class Interface, class T>
class NumericNode : public ValueNode<Interface> {
public:
    using ValueType = T;
    using ValueList =
        std::conditional_t<std::is_integral_v<T>, int64_autovector_t, double_autovector_t>;

    NumericNode(NodeMap& map, const NodeDescription& description);

    void SetValue(T value, bool verify = true) override;
    Interface& operator=(T value) override;
    T GetValue(bool verify = false, bool ignoreCache = false) override;
    T operator()() override { return GetValue(); }
    T operator*() override { return GetValue(); }
    T GetMin() override;
    T GetMax() override;
    EIncMode GetIncMode() override;
    T GetInc() override;
    ValueList GetListOfValidValues(bool bounded = true) override;
    ERepresentation GetRepresentation() override;
    void ImposeMin(T value) override;
    void ImposeMax(T value) override;

    gcstring ToString(bool verify = false, bool ignoreCache = false) override;
    void FromString(const gcstring& valueString, bool verify = true) override;

protected:
    static constexpr T kLowest =
        std::is_integral_v<T> ? std::numeric_limits<T>::min() : -std::numeric_limits<T>::max();
    static constexpr T kHighest = std::numeric_limits<T>::max();

    ECachingMode DefaultCachingMode() const override;
    virtual T RawValue(bool verify, bool ignoreCache) = 0;
    virtual void WriteRaw(T value, bool verify) = 0;
    virtual T RawMin() { return kLowest; }
    virtual T RawMax() { return kHighest; }
    // Integers always step; floats only where the kind knows an increment.
    virtual bool RawHasInc() { return std::is_integral_v<T>; }
    virtual T RawInc() { return std::is_integral_v<T> ? 1 : 0; }
    virtual ERepresentation DefaultRepresentation() { return PureNumber; }
    // Kinds whose value is exactly that of what they are built on (a register, another node, a
    // constant) keep it between reads; the map tells them when anything below changes.
    virtual bool KeepsValue() const { return false; }

    void Verify(T value);
    std::string Format(T value);

    std::string m_unit;
    EDisplayNotation m_notation = fnAutomatic;
    int64_t m_precision = 6;

private:
    void VerifyStep(T value, T min);

    T m_knownValue{};
    std::vector<T> m_validValues;
    ERepresentation m_representation = _UndefinedRepresentation;
    T m_imposedMin = kLowest;
    T m_imposedMax = kHighest;
};

} // namespace detail
} // namespace GenApi

#endif
