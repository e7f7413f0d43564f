#include "SwissKnifeNode.h"

#include <Base/GCException.h>

namespace GenApi {
namespace detail {

void SwissKnifeNode::Link(const NodeDescription& description) {
    FloatBase::Link(description);
    m_context.Link(*this, description);
    m_formula = m_context.Parse(description, "Formula", {});
}

double SwissKnifeNode::RawValue(bool, bool) {
    return m_context.EvaluateFloat(m_formula);
}

void SwissKnifeNode::WriteRaw(double, bool) {
    throw ACCESS_EXCEPTION("Node '%s' is computed and cannot be written", Name().c_str());
}

} // namespace detail
} // namespace GenApi
