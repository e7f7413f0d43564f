// The floating-point node kinds' base: the shared numeric logic and what only IFloat has.
#ifndef ORVAN_GENAPI_FLOATBASE_H
#define ORVAN_GENAPI_FLOATBASE_H

#include "NumericNode.h"

#include <GenApi/IFloat.h>

namespace GenApi {
namespace detail {

class FloatBase : public NumericNode<IFloat, double> {
public:
    using NumericNode::NumericNode;

    EInterfaceType GetPrincipalInterfaceType() const override { return intfIFloat; }
    bool HasInc() override {
        NodeMap::Access access(m_map);
        return RawHasInc();
    }
    gcstring GetUnit() const override { return m_unit; }
    EDisplayNotation GetDisplayNotation() const override { return m_notation; }
    int64_t GetDisplayPrecision() const override { return m_precision; }
};

} // namespace detail
} // namespace GenApi

#endif
