#include "ValueSource.h"

#include "Node.h"
#include "TextParsing.h"
#include "ValueAccess.h"

#include <Base/GCException.h>
#include <GenApi/AccessModeHelpers.h>
#include <GenApi/IFloat.h>
#include <GenApi/IInteger.h>
#include <GenApi/IString.h>

#include <cstdlib>

namespace GenApi {
namespace detail {

ValueSource::Slot ValueSource::MakeSlot(Node& owner, const Property& property, bool isNode) {
    Slot slot;
    if (isNode) {
        slot.node = owner.Resolve(property);
        slot.integer = dynamic_cast<IInteger*>(slot.node);
        slot.real = dynamic_cast<IFloat*>(slot.node);
        owner.AddReadingChild(slot.node);
        owner.AddWritingChild(slot.node);
        return slot;
    }
    slot.constant.text = property.text;
    if (!TryParseInt64(property.text, slot.constant.intValue))
        slot.constant.intValue = 0;
    slot.constant.floatValue = std::strtod(property.text.c_str(), nullptr);
    if (property.text.size() > 1 && (property.text[1] == 'x' || property.text[1] == 'X'))
        slot.constant.floatValue = static_cast<double>(slot.constant.intValue);
    return slot;
}

void ValueSource::Link(Node& owner, const NodeDescription& description) {
    for (const auto& property : description.properties) {
        const std::string& name = property.name;
        bool isNode = name[0] == 'p';
        if (name == "Value" || name == "pValue" || name == "ValueDefault" ||
            name == "pValueDefault") {
            m_default = MakeSlot(owner, property, isNode);
            m_hasDefault = true;
            if (name == "pValue") {
                m_lastListed = m_default.node;
                m_listed.push_back(m_lastListed);
            }
        } else if (name == "ValueIndexed" || name == "pValueIndexed") {
            const std::string* index = property.Attribute("Index");
            int64_t indexValue = 0;
            if (!index || !TryParseInt64(*index, indexValue))
                throw RUNTIME_EXCEPTION("Element <%s> at line %u needs a numeric Index attribute",
                                        name.c_str(), property.line);
            m_indexed.push_back({indexValue, MakeSlot(owner, property, isNode)});
        } else if (name == "pIndex") {
            m_index = owner.Resolve(property);
            owner.AddReadingChild(m_index);
            owner.AddValueInput(m_index);
        } else if (name == "pValueCopy") {
            Node* copy = owner.Resolve(property);
            m_copies.push_back(copy);
            owner.AddReadingChild(copy);
            owner.AddWritingChild(copy);
            m_lastListed = copy;
            m_listed.push_back(copy);
        }
    }
}

ValueSource::Slot& ValueSource::Current() const {
    auto& self = const_cast<ValueSource&>(*this);
    if (m_index) {
        int64_t index = ReadInt(m_index, false, false);
        for (auto& indexed : self.m_indexed)
            if (indexed.index == index)
                return indexed.slot;
    }
    if (!m_hasDefault)
        throw RUNTIME_EXCEPTION("No value for the current index");
    return self.m_default;
}

Node* ValueSource::CurrentNode() const {
    return Current().node;
}

Node* ValueSource::LimitsNode() const {
    return m_index || !m_lastListed ? ValueNode() : m_lastListed;
}

std::vector<Node*> ValueSource::WrittenNodes() const {
    if (!m_index && !m_listed.empty())
        return m_listed;
    Node* node = ValueNode();
    return node ? std::vector<Node*>{node} : std::vector<Node*>{};
}

Node* ValueSource::ValueNode() const {
    if (m_index && !IsReadable(m_index->GetAccessMode()))
        return m_default.node;
    return CurrentNode();
}

EAccessMode ValueSource::AccessMode() const {
    if (!IsSet())
        return NI;
    if (m_index && !IsReadable(m_index->GetAccessMode()))
        return NA;
    Node* node = CurrentNode();
    return node ? node->GetAccessMode() : RW;
}

bool ValueSource::CacheValid() const {
    if (m_index && !m_index->CacheValid())
        return false;
    Node* node = CurrentNode();
    return node ? node->CacheValid() : true;
}

int64_t ValueSource::GetInt(bool verify, bool ignoreCache) const {
    Slot& slot = Current();
    if (slot.integer)
        return slot.integer->GetValue(verify, ignoreCache);
    return slot.node ? ReadInt(slot.node, verify, ignoreCache) : slot.constant.intValue;
}

double ValueSource::GetFloat(bool verify, bool ignoreCache) const {
    Slot& slot = Current();
    if (slot.real)
        return slot.real->GetValue(verify, ignoreCache);
    return slot.node ? ReadFloat(slot.node, verify, ignoreCache) : slot.constant.floatValue;
}

const std::string& ValueSource::GetString(bool verify, bool ignoreCache) const {
    Slot& slot = Current();
    if (!slot.node)
        return slot.constant.text;
    auto* text = dynamic_cast<IString*>(slot.node);
    if (!text)
        throw RUNTIME_EXCEPTION("Node '%s' is not a string", slot.node->Name().c_str());
    slot.constant.text = text->GetValue(verify, ignoreCache).str();
    return slot.constant.text;
}

void ValueSource::SetInt(int64_t value, bool verify) {
    Slot& slot = Current();
    if (slot.integer)
        slot.integer->SetValue(value, verify);
    else if (slot.node)
        WriteInt(slot.node, value, verify);
    else {
        slot.constant.intValue = value;
        slot.constant.floatValue = static_cast<double>(value);
    }
    for (Node* copy : m_copies)
        WriteInt(copy, value, verify);
}

void ValueSource::SetFloat(double value, bool verify) {
    Slot& slot = Current();
    if (slot.real)
        slot.real->SetValue(value, verify);
    else if (slot.node)
        WriteFloat(slot.node, value, verify);
    else {
        slot.constant.floatValue = value;
        slot.constant.intValue = FloatToInt(value);
    }
    for (Node* copy : m_copies)
        WriteFloat(copy, value, verify);
}

void ValueSource::SetString(const std::string& value, bool verify) {
    Slot& slot = Current();
    if (!slot.node) {
        slot.constant.text = value;
        return;
    }
    auto* text = dynamic_cast<IString*>(slot.node);
    if (!text)
        throw RUNTIME_EXCEPTION("Node '%s' is not a string", slot.node->Name().c_str());
    text->SetValue(value.c_str(), verify);
}

} // namespace detail
} // namespace GenApi
