#include "SwissKnifeNode.h"

#include <Base/GCException.h>

namespace GenApi {
namespace detail {

template <class Base>
void SwissKnifeNode<Base>::Link(const NodeDescription& description) {
    Base::Link(description);
    m_context.Link(*this, description);
    m_formula = m_context.Parse(description, "Formula", {});
}

template <class Base>
typename SwissKnifeNode<Base>::T SwissKnifeNode<Base>::RawValue(bool, bool) {
    return m_context.template Evaluate<T>(m_formula);
}

template <class Base>
void SwissKnifeNode<Base>::WriteRaw(T, bool) {
    throw ACCESS_EXCEPTION("Node '%s' is computed and cannot be written", this->Name().c_str());
}

template class SwissKnifeNode<FloatBase>;
template class SwissKnifeNode<IntegerBase>;

} // namespace detail
} // namespace GenApi
