#include "EnumEntryNode.h"

#include "TextParsing.h"

#include <Base/GCException.h>

namespace GenApi {
namespace detail {

EnumEntryNode::EnumEntryNode(NodeMap& map, const NodeDescription& description)
    : ValueNode<IEnumEntry>(map, description) {
    // The loader keeps the entry's own name as its symbolic unless the description sets one.
    const Property* symbolic = description.Find("Symbolic");
    m_symbolic = symbolic ? symbolic->text : description.name;
    bool hasNumeric = false;
    for (const auto& property : description.properties) {
        if (property.name == "Value")
            m_value = ParseInt64(property);
        else if (property.name == "NumericValue") {
            m_numericValue = ParseDouble(property);
            hasNumeric = true;
        } else if (property.name == "IsSelfClearing")
            m_selfClearing = ParseYesNo(property);
    }
    if (!hasNumeric)
        m_numericValue = static_cast<double>(m_value);
}

gcstring EnumEntryNode::ToString(bool, bool) {
    return m_symbolic;
}

void EnumEntryNode::FromString(const gcstring&, bool) {
    throw ACCESS_EXCEPTION("Enumeration entry '%s' cannot be written", Name().c_str());
}

} // namespace detail
} // namespace GenApi
