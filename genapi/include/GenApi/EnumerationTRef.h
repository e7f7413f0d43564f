// A typed enumeration bound to an enumeration node of a map: the node keeps the value, this
// object only translates between enumerators and the node's symbolic names.
#ifndef GENAPI_ENUMERATIONTREF_H
#define GENAPI_ENUMERATIONTREF_H

#include <Base/GCException.h>
#include <GenApi/IEnumerationT.h>

#include <vector>

namespace GenApi {

template <typename EnumT>
class CEnumerationTRef : public IEnumerationT<EnumT>, public IEnumReference {
public:
    using IEnumerationT<EnumT>::operator=;

    void SetReference(IBase* base) { m_node = dynamic_cast<IEnumeration*>(base); }

    void SetNumEnums(int numEnums) override {
        m_names.assign(static_cast<size_t>(numEnums < 0 ? 0 : numEnums), gcstring());
        m_known.assign(m_names.size(), false);
    }
    void SetEnumReference(int index, gcstring name) override {
        if (index < 0 || static_cast<size_t>(index) >= m_names.size())
            throw OUT_OF_RANGE_EXCEPTION("Enumerator %d is outside the %zu declared", index,
                                         m_names.size());
        // Entries the device does not implement stay unknown, so that using them fails clearly.
        m_known[static_cast<size_t>(index)] = Node().GetEntryByName(name) != nullptr;
        m_names[static_cast<size_t>(index)] = name;
    }

    void SetValue(EnumT value, bool verify = true) override {
        Node().FromString(NameOf(value), verify);
    }
    IEnumeration& operator=(EnumT value) override {
        SetValue(value);
        return *this;
    }
    EnumT GetValue(bool verify = false, bool ignoreCache = false) override {
        gcstring current = Node().ToString(verify, ignoreCache);
        for (size_t i = 0; i < m_names.size(); ++i)
            if (m_known[i] && m_names[i] == current)
                return static_cast<EnumT>(i);
        throw ACCESS_EXCEPTION("Entry '%s' has no enumerator", current.c_str());
    }
    EnumT operator()() override { return GetValue(); }
    IEnumEntry* GetEntry(const EnumT value) override {
        return Node().GetEntryByName(NameOf(value));
    }

    EAccessMode GetAccessMode() const override { return m_node ? m_node->GetAccessMode() : NI; }
    INode* GetNode() override { return Node().GetNode(); }
    gcstring ToString(bool verify = false, bool ignoreCache = false) override {
        return Node().ToString(verify, ignoreCache);
    }
    void FromString(const gcstring& value, bool verify = true) override {
        Node().FromString(value, verify);
    }
    bool IsValueCacheValid() const override { return Node().IsValueCacheValid(); }
    void GetSymbolics(StringList_t& symbolics) override { Node().GetSymbolics(symbolics); }
    void GetEntries(NodeList_t& entries) override { Node().GetEntries(entries); }
    IEnumeration& operator=(const gcstring& symbolic) override {
        Node().FromString(symbolic);
        return *this;
    }
    void SetIntValue(int64_t value, bool verify = true) override {
        Node().SetIntValue(value, verify);
    }
    gcstring operator*() override { return Node().ToString(); }
    int64_t GetIntValue(bool verify = false, bool ignoreCache = false) override {
        return Node().GetIntValue(verify, ignoreCache);
    }
    IEnumEntry* GetEntryByName(const gcstring& symbolic) override {
        return Node().GetEntryByName(symbolic);
    }
    IEnumEntry* GetEntry(const int64_t intValue) override { return Node().GetEntry(intValue); }
    IEnumEntry* GetCurrentEntry(bool verify = false, bool ignoreCache = false) override {
        return Node().GetCurrentEntry(verify, ignoreCache);
    }

private:
    IEnumeration& Node() const {
        if (!m_node)
            throw ACCESS_EXCEPTION("Typed enumeration is not bound to a node");
        return *m_node;
    }
    const gcstring& NameOf(EnumT value) const {
        size_t index = static_cast<size_t>(value);
        if (index >= m_names.size() || !m_known[index])
            throw ACCESS_EXCEPTION("Enumerator %zu names no entry of the node", index);
        return m_names[index];
    }

    IEnumeration* m_node = nullptr;
    std::vector<gcstring> m_names;
    std::vector<bool> m_known;
};

} // namespace GenApi

#endif
