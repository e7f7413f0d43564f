// Converter and IntConverter: a view of another node, FormulaFrom turning its value (TO) into
// this node's value and FormulaTo turning a value written here (FROM) back, in the arithmetic of
// the value type (Converter: floating point, IntConverter: 64-bit integers).
#ifndef ORVAN_GENAPI_CONVERTERNODE_H
#define ORVAN_GENAPI_CONVERTERNODE_H

#include "FloatBase.h"
#include "FormulaContext.h"
#include "IntegerBase.h"

namespace GenApi {
namespace detail {

template <class Base>
class ConverterNode : public Base {
public:
    using T = typename Base::ValueType;

    ConverterNode(NodeMap& map, const NodeDescription& description);
    void Link(const NodeDescription& description) override;
    bool CacheValid() const override;

protected:
    EAccessMode InternalAccessMode() const override;
    ECachingMode DefaultCachingMode() const override { return WriteAround; }
    T RawValue(bool verify, bool ignoreCache) override;
    void WriteRaw(T value, bool verify) override;
    T RawMin() override;
    T RawMax() override;
    bool RawHasInc() override;
    T RawInc() override;

private:
    T From(T raw);
    // The converted values of the converted node's limits, ordered as the slope says.
    std::pair<T, T> Limits();

    FormulaContext m_context;
    std::unique_ptr<Formula> m_to;
    std::unique_ptr<Formula> m_from;
    Node* m_value = nullptr;
    ESlope m_slope = Automatic;
    bool m_linear = false;
};

using FloatConverterNode = ConverterNode<FloatBase>;
using IntConverterNode = ConverterNode<IntegerBase>;

} // namespace detail
} // namespace GenApi

#endif
