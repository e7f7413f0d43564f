#include "NumericBound.h"

#include "Node.h"
#include "TextParsing.h"
#include "ValueAccess.h"

#include <GenApi/AccessModeHelpers.h>

namespace GenApi {
namespace detail {

void NumericBound::Link(Node& owner, const NodeDescription& description, const char* constantName,
                        const char* pointerName) {
    if (const Property* pointer = description.Find(pointerName)) {
        m_node = owner.Resolve(*pointer);
        owner.AddReadingChild(m_node, false);
    } else if (const Property* constant = description.Find(constantName)) {
        m_hasConstant = true;
        m_float = ParseDouble(*constant);
        if (!TryParseInt64(constant->text, m_int))
            m_int = FloatToInt(m_float);
        else if (constant->text.find_first_of("xX") != std::string::npos)
            m_float = static_cast<double>(m_int);
    }
}

EAccessMode NumericBound::Restrict(EAccessMode mode) const {
    if (!m_node || mode == NI || mode == NA)
        return mode;
    EAccessMode nodeMode = m_node->GetAccessMode();
    if (nodeMode == NI || nodeMode == NA)
        return nodeMode;
    return IsReadable(nodeMode) ? mode : NA;
}

int64_t NumericBound::GetInt() const {
    return m_node ? ReadInt(m_node, false, false) : m_int;
}

double NumericBound::GetFloat() const {
    return m_node ? ReadFloat(m_node, false, false) : m_float;
}

} // namespace detail
} // namespace GenApi
