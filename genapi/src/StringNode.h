// String: text held in the description (writable in memory) or in another string node.
#ifndef ORVAN_GENAPI_STRINGNODE_H
#define ORVAN_GENAPI_STRINGNODE_H

#include "ValueNode.h"
#include "ValueSource.h"

#include <GenApi/IString.h>

namespace GenApi {
namespace detail {

class StringNode : public ValueNode<IString> {
public:
    using ValueNode<IString>::ValueNode;
    void Link(const NodeDescription& description) override;
    bool CacheValid() const override { return m_value.CacheValid(); }

    EInterfaceType GetPrincipalInterfaceType() const override { return intfIString; }
    void SetValue(const gcstring& value, bool verify = true) override;
    IString& operator=(const gcstring& value) override;
    gcstring GetValue(bool verify = false, bool ignoreCache = false) override;
    gcstring operator()() override { return GetValue(); }
    gcstring operator*() override { return GetValue(); }
    int64_t GetMaxLength() override;
    gcstring ToString(bool verify = false, bool ignoreCache = false) override;
    void FromString(const gcstring& valueString, bool verify = true) override;

protected:
    EAccessMode InternalAccessMode() const override { return m_value.AccessMode(); }

private:
    ValueSource m_value;
};

} // namespace detail
} // namespace GenApi

#endif
