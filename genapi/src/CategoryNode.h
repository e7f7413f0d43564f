// Category: a named group of features, for presentation.
#ifndef ORVAN_GENAPI_CATEGORYNODE_H
#define ORVAN_GENAPI_CATEGORYNODE_H

#include "ValueNode.h"

#include <GenApi/ICategory.h>

namespace GenApi {
namespace detail {

class CategoryNode : public ValueNode<ICategory> {
public:
    using ValueNode<ICategory>::ValueNode;
    void Link(const NodeDescription& description) override;
    bool CacheValid() const override { return true; }

    EInterfaceType GetPrincipalInterfaceType() const override { return intfICategory; }
    // A category is shown as soon as the first of its features is; one without features never.
    EVisibility GetVisibility() const override;
    void GetFeatures(FeatureList_t& features) const override;
    gcstring ToString(bool verify = false, bool ignoreCache = false) override;
    void FromString(const gcstring& valueString, bool verify = true) override;

protected:
    EAccessMode MembersAccessMode() const override;
    bool IsGrouping() const override { return true; }

private:
    std::vector<Node*> m_features;
    mutable bool m_inVisibility = false;
};

} // namespace detail
} // namespace GenApi

#endif
