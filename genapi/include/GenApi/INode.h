// A node of the map: its identity, attributes, links and callbacks.
#ifndef GENAPI_INODE_H
#define GENAPI_INODE_H

#include <GenApi/Container.h>
#include <GenApi/IBase.h>

#include <cstdint>

namespace GenApi {

struct INodeMap;
class CNodeCallback;

// Opaque handle of a registered callback (the callback object's address).
using CallbackHandleType = intptr_t;

struct INode : virtual public IBase {
    virtual gcstring GetName(bool fullQualified = false) const = 0;
    virtual ENameSpace GetNameSpace() const = 0;
    virtual EVisibility GetVisibility() const = 0;
    virtual void InvalidateNode() = 0;
    virtual bool IsCachable() const = 0;
    virtual EYesNo IsAccessModeCacheable() const = 0;
    virtual ECachingMode GetCachingMode() const = 0;
    virtual int64_t GetPollingTime() const = 0;
    virtual gcstring GetToolTip() const = 0;
    virtual gcstring GetDescription() const = 0;
    virtual gcstring GetDisplayName() const = 0;
    virtual gcstring GetDeviceName() const = 0;
    virtual void GetChildren(NodeList_t& children,
                             ELinkType linkType = ctReadingChildren) const = 0;
    virtual void GetParents(NodeList_t& parents) const = 0;
    // Takes ownership of the callback; returns the handle for DeregisterCallback.
    virtual CallbackHandleType RegisterCallback(CNodeCallback* callback) = 0;
    virtual bool DeregisterCallback(CallbackHandleType handle) = 0;
    virtual INodeMap* GetNodeMap() const = 0;
    virtual gcstring GetEventID() const = 0;
    virtual bool IsStreamable() const = 0;
    virtual void GetPropertyNames(gcstring_vector& propertyNames) const = 0;
    virtual bool GetProperty(const gcstring& propertyName, gcstring& valueStr,
                             gcstring& attributeStr) = 0;
    virtual void ImposeAccessMode(EAccessMode mode) = 0;
    virtual void ImposeVisibility(EVisibility visibility) = 0;
    virtual INode* GetAlias() const = 0;
    virtual INode* GetCastAlias() const = 0;
    virtual gcstring GetDocuURL() const = 0;
    virtual bool IsDeprecated() const = 0;
    virtual EInterfaceType GetPrincipalInterfaceType() const = 0;
    virtual bool IsFeature() const = 0;
};

} // namespace GenApi

#endif
