// Boolean: true when the underlying value equals OnValue, false when it equals OffValue.
#ifndef ORVAN_GENAPI_BOOLEANNODE_H
#define ORVAN_GENAPI_BOOLEANNODE_H

#include "ValueNode.h"
#include "ValueSource.h"

#include <GenApi/IBoolean.h>

namespace GenApi {
namespace detail {

class BooleanNode : public ValueNode<IBoolean> {
public:
    BooleanNode(NodeMap& map, const NodeDescription& description);
    void Link(const NodeDescription& description) override;
    bool CacheValid() const override { return m_value.CacheValid(); }

    EInterfaceType GetPrincipalInterfaceType() const override { return intfIBoolean; }
    void SetValue(bool value, bool verify = true) override;
    void operator=(bool value) override { SetValue(value); }
    bool GetValue(bool verify = false, bool ignoreCache = false) const override;
    bool operator()() const override { return GetValue(); }
    gcstring ToString(bool verify = false, bool ignoreCache = false) override;
    void FromString(const gcstring& valueString, bool verify = true) override;

protected:
    EAccessMode InternalAccessMode() const override { return m_value.AccessMode(); }

private:
    ValueSource m_value;
    int64_t m_onValue = 1;
    int64_t m_offValue = 0;
};

} // namespace detail
} // namespace GenApi

#endif
