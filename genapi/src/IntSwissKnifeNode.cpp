#include "IntSwissKnifeNode.h"

#include <Base/GCException.h>

namespace GenApi {
namespace detail {

void IntSwissKnifeNode::Link(const NodeDescription& description) {
    IntegerBase::Link(description);
    m_context.Link(*this, description);
    m_formula = m_context.Parse(description, "Formula", {});
}

int64_t IntSwissKnifeNode::RawValue(bool, bool) {
    return m_context.EvaluateInt(m_formula);
}

void IntSwissKnifeNode::WriteRaw(int64_t, bool) {
    throw ACCESS_EXCEPTION("Node '%s' is computed and cannot be written", Name().c_str());
}

} // namespace detail
} // namespace GenApi
