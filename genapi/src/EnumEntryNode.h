// EnumEntry: one named value of an enumeration; a node of its own, named
// EnumEntry_<Enumeration>_<Entry>.
#ifndef ORVAN_GENAPI_ENUMENTRYNODE_H
#define ORVAN_GENAPI_ENUMENTRYNODE_H

#include "ValueNode.h"

#include <GenApi/IEnumEntry.h>

namespace GenApi {
namespace detail {

class EnumEntryNode : public ValueNode<IEnumEntry> {
public:
    EnumEntryNode(NodeMap& map, const NodeDescription& description);
    bool CacheValid() const override { return true; }

    EInterfaceType GetPrincipalInterfaceType() const override { return intfIEnumEntry; }
    int64_t GetValue() override { return m_value; }
    gcstring GetSymbolic() const override { return m_symbolic; }
    double GetNumericValue() override { return m_numericValue; }
    bool IsSelfClearing() override { return m_selfClearing; }
    gcstring ToString(bool verify = false, bool ignoreCache = false) override;
    void FromString(const gcstring& valueString, bool verify = true) override;

private:
    int64_t m_value = 0;
    double m_numericValue = 0.0;
    std::string m_symbolic;
    bool m_selfClearing = false;
};

} // namespace detail
} // namespace GenApi

#endif
