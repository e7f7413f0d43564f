// IntConverter: the integer counterpart of Converter, evaluated in integer arithmetic.
#ifndef ORVAN_GENAPI_INTCONVERTERNODE_H
#define ORVAN_GENAPI_INTCONVERTERNODE_H

#include "FormulaContext.h"
#include "IntegerBase.h"

namespace GenApi {
namespace detail {

class IntConverterNode : public IntegerBase {
public:
    IntConverterNode(NodeMap& map, const NodeDescription& description);
    void Link(const NodeDescription& description) override;
    bool CacheValid() const override;

protected:
    EAccessMode InternalAccessMode() const override;
    ECachingMode DefaultCachingMode() const override { return WriteAround; }
    int64_t RawValue(bool verify, bool ignoreCache) override;
    void WriteRaw(int64_t value, bool verify) override;
    int64_t RawMin() override;
    int64_t RawMax() override;

private:
    int64_t From(int64_t raw);

    FormulaContext m_context;
    std::unique_ptr<Formula> m_to;
    std::unique_ptr<Formula> m_from;
    Node* m_value = nullptr;
    ESlope m_slope = Automatic;
};

} // namespace detail
} // namespace GenApi

#endif
