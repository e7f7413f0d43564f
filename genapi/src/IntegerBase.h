// The integer node kinds' base: the shared numeric logic and what only IInteger has.
#ifndef ORVAN_GENAPI_INTEGERBASE_H
#define ORVAN_GENAPI_INTEGERBASE_H

#include "NumericNode.h"

#include <GenApi/IInteger.h>

namespace GenApi {
namespace detail {

class IntegerBase : public NumericNode<IInteger, int64_t> {
public:
    using NumericNode::NumericNode;

    EInterfaceType GetPrincipalInterfaceType() const override { return intfIInteger; }
    gcstring GetUnit() override { return m_unit; }
};

} // namespace detail
} // namespace GenApi

#endif
