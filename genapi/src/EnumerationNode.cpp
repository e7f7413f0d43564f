#include "EnumerationNode.h"

#include <Base/GCException.h>
#include <GenApi/AccessModeHelpers.h>

#include <cinttypes>

namespace GenApi {
namespace detail {

void EnumerationNode::Link(const NodeDescription& description) {
    ValueNode<IEnumeration>::Link(description);
    m_value.Link(*this, description);
    for (const Property* property : description.FindAll("pEnumEntry")) {
        auto* entry = dynamic_cast<EnumEntryNode*>(Resolve(*property));
        if (!entry)
            throw RUNTIME_EXCEPTION("Entry '%s' of enumeration '%s' is not an entry",
                                    property->text.c_str(), Name().c_str());
        m_entries.push_back(entry);
        AddReadingChild(entry);
    }
}

EAccessMode EnumerationNode::MembersAccessMode() const {
    return BestOf(EntryNodes());
}

EnumEntryNode* EnumerationNode::EntryFor(int64_t value) const {
    for (EnumEntryNode* entry : m_entries)
        if (entry->GetValue() == value)
            return entry;
    return nullptr;
}

// Entries may share a value, typically one per model of a family of which only one is
// available: the current entry is the first available one with the value, or else the first
// listed with it. Finding it asks every entry in turn whether it is available.
EnumEntryNode* EnumerationNode::CurrentEntryFor(int64_t value) const {
    for (EnumEntryNode* entry : m_entries)
        if (IsAvailable(entry->GetAccessMode()) && entry->GetValue() == value)
            return entry;
    return EntryFor(value);
}

void EnumerationNode::GetSymbolics(StringList_t& symbolics) {
    NodeMap::Access access(m_map);
    symbolics.clear();
    for (EnumEntryNode* entry : m_entries)
        if (IsAvailable(entry->GetAccessMode()))
            symbolics.push_back(entry->GetSymbolic());
}

void EnumerationNode::GetEntries(NodeList_t& entries) {
    NodeMap::Access access(m_map);
    entries.assign(m_entries.begin(), m_entries.end());
}

IEnumeration& EnumerationNode::operator=(const gcstring& symbolic) {
    FromString(symbolic);
    return *this;
}

void EnumerationNode::SetIntValue(int64_t value, bool verify) {
    NodeMap::Access access(m_map);
    CheckWritable();
    if (verify) {
        EnumEntryNode* entry = EntryFor(value);
        if (!entry || !IsAvailable(entry->GetAccessMode()))
            throw OUT_OF_RANGE_EXCEPTION("Enumeration '%s' has no available entry with the "
                                         "value %" PRId64,
                                         Name().c_str(), value);
    }
    m_value.SetInt(value, verify);
    Changed();
}

int64_t EnumerationNode::GetIntValue(bool verify, bool ignoreCache) {
    NodeMap::Access access(m_map);
    CheckReadable();
    int64_t value = m_value.GetInt(verify, ignoreCache);
    if (verify && !EntryFor(value))
        throw OUT_OF_RANGE_EXCEPTION("Enumeration '%s' has no entry with the value %" PRId64,
                                     Name().c_str(), value);
    return value;
}

IEnumEntry* EnumerationNode::GetEntryByName(const gcstring& symbolic) {
    NodeMap::Access access(m_map);
    for (EnumEntryNode* entry : m_entries)
        if (entry->GetSymbolic() == symbolic)
            return entry;
    return nullptr;
}

IEnumEntry* EnumerationNode::GetEntry(const int64_t intValue) {
    NodeMap::Access access(m_map);
    return EntryFor(intValue);
}

IEnumEntry* EnumerationNode::GetCurrentEntry(bool verify, bool ignoreCache) {
    NodeMap::Access access(m_map);
    int64_t value = GetIntValue(verify, ignoreCache);
    EnumEntryNode* entry = CurrentEntryFor(value);
    if (!entry)
        throw INVALID_ARGUMENT_EXCEPTION("Enumeration '%s' has no entry with the value %" PRId64,
                                         Name().c_str(), value);
    return entry;
}

gcstring EnumerationNode::ToString(bool verify, bool ignoreCache) {
    NodeMap::Access access(m_map);
    return GetCurrentEntry(verify, ignoreCache)->GetSymbolic();
}

void EnumerationNode::FromString(const gcstring& valueString, bool verify) {
    NodeMap::Access access(m_map);
    IEnumEntry* entry = GetEntryByName(valueString);
    if (!entry)
        throw INVALID_ARGUMENT_EXCEPTION("Enumeration '%s' has no entry '%s'", Name().c_str(),
                                         valueString.c_str());
    if (verify && !IsAvailable(entry->GetAccessMode()))
        throw ACCESS_EXCEPTION("Entry '%s' of enumeration '%s' is not available",
                               valueString.c_str(), Name().c_str());
    SetIntValue(entry->GetValue(), verify);
}

} // namespace detail
} // namespace GenApi
