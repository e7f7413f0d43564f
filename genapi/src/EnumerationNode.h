// Enumeration: an integer value presented as the symbolic name of the entry that carries it.
#ifndef ORVAN_GENAPI_ENUMERATIONNODE_H
#define ORVAN_GENAPI_ENUMERATIONNODE_H

#include "EnumEntryNode.h"
#include "ValueNode.h"
#include "ValueSource.h"

#include <GenApi/IEnumeration.h>

namespace GenApi {
namespace detail {

class EnumerationNode : public ValueNode<IEnumeration> {
public:
    using ValueNode<IEnumeration>::ValueNode;
    void Link(const NodeDescription& description) override;
    bool CacheValid() const override { return m_value.CacheValid(); }

    EInterfaceType GetPrincipalInterfaceType() const override { return intfIEnumeration; }
    void GetSymbolics(StringList_t& symbolics) override;
    void GetEntries(NodeList_t& entries) override;
    IEnumeration& operator=(const gcstring& symbolic) override;
    void SetIntValue(int64_t value, bool verify = true) override;
    gcstring operator*() override { return ToString(); }
    int64_t GetIntValue(bool verify = false, bool ignoreCache = false) override;
    IEnumEntry* GetEntryByName(const gcstring& symbolic) override;
    IEnumEntry* GetEntry(const int64_t intValue) override;
    IEnumEntry* GetCurrentEntry(bool verify = false, bool ignoreCache = false) override;
    gcstring ToString(bool verify = false, bool ignoreCache = false) override;
    void FromString(const gcstring& valueString, bool verify = true) override;

protected:
    EAccessMode InternalAccessMode() const override { return m_value.AccessMode(); }
    EAccessMode MembersAccessMode() const override;

private:
    EnumEntryNode* EntryFor(int64_t value) const;
    EnumEntryNode* CurrentEntryFor(int64_t value) const;
    std::vector<Node*> EntryNodes() const { return {m_entries.begin(), m_entries.end()}; }

    ValueSource m_value;
    std::vector<EnumEntryNode*> m_entries;
};

} // namespace detail
} // namespace GenApi

#endif
