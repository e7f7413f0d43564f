// Converter: a floating-point view of another node, FormulaFrom turning its value (TO) into this
// node's value and FormulaTo turning a value written here (FROM) back.
#ifndef ORVAN_GENAPI_CONVERTERNODE_H
#define ORVAN_GENAPI_CONVERTERNODE_H

#include "FloatBase.h"
#include "FormulaContext.h"

namespace GenApi {
namespace detail {

class ConverterNode : public FloatBase {
public:
    ConverterNode(NodeMap& map, const NodeDescription& description);
    void Link(const NodeDescription& description) override;
    bool CacheValid() const override;

protected:
    EAccessMode InternalAccessMode() const override;
    double RawValue(bool verify, bool ignoreCache) override;
    void WriteRaw(double value, bool verify) override;
    double RawMin() override;
    double RawMax() override;

private:
    double From(double raw);

    FormulaContext m_context;
    std::unique_ptr<Formula> m_to;
    std::unique_ptr<Formula> m_from;
    Node* m_value = nullptr;
    ESlope m_slope = Automatic;
};

} // namespace detail
} // namespace GenApi

#endif
