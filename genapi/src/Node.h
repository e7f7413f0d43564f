// Base of every node kind: identity, attributes, the links every node may carry, access-mode
// rules, invalidation and callbacks.
#ifndef ORVAN_GENAPI_NODE_H
#define ORVAN_GENAPI_NODE_H

#include "NodeDescription.h"

#include <GenApi/INode.h>
#include <GenApi/ISelector.h>
#include <GenApi/NodeCallback.h>

#include <string>
#include <vector>

namespace GenApi {
namespace detail {

class NodeMap;

class Node : public virtual INode, public virtual ISelector {
public:
    Node(NodeMap& map, const NodeDescription& description);
    ~Node() override;
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    // Second construction phase, once every node of the map exists.
    virtual void Link(const NodeDescription& description);

    const std::string& Name() const { return m_name; }
    const std::string& Kind() const { return m_kind; }
    NodeMap& Map() const { return m_map; }

    // INode
    EAccessMode GetAccessMode() const final;
    gcstring GetName(bool fullQualified = false) const override;
    ENameSpace GetNameSpace() const override { return m_nameSpace; }
    EVisibility GetVisibility() const override;
    void InvalidateNode() override;
    bool IsCachable() const override { return GetCachingMode() != NoCache; }
    EYesNo IsAccessModeCacheable() const override { return No; }
    ECachingMode GetCachingMode() const override;
    int64_t GetPollingTime() const override { return m_pollingTime; }
    gcstring GetToolTip() const override { return m_toolTip; }
    gcstring GetDescription() const override;
    gcstring GetDisplayName() const override;
    gcstring GetDeviceName() const override;
    void GetChildren(NodeList_t& children, ELinkType linkType = ctReadingChildren) const override;
    void GetParents(NodeList_t& parents) const override;
    CallbackHandleType RegisterCallback(CNodeCallback* callback) override;
    bool DeregisterCallback(CallbackHandleType handle) override;
    INodeMap* GetNodeMap() const override;
    gcstring GetEventID() const override { return m_eventId; }
    bool IsStreamable() const override { return m_streamable; }
    void GetPropertyNames(gcstring_vector& propertyNames) const override;
    bool GetProperty(const gcstring& propertyName, gcstring& valueStr,
                     gcstring& attributeStr) override;
    void ImposeAccessMode(EAccessMode mode) override;
    void ImposeVisibility(EVisibility visibility) override;
    INode* GetAlias() const override { return m_alias; }
    INode* GetCastAlias() const override { return m_castAlias; }
    gcstring GetDocuURL() const override { return m_docuUrl; }
    bool IsDeprecated() const override { return m_deprecated; }
    bool IsFeature() const override;

    // ISelector
    bool IsSelector() const override { return !m_selected.empty(); }
    void GetSelectedFeatures(FeatureList_t& features) const override;
    void GetSelectingFeatures(FeatureList_t& features) const override;

    // Invalidation graph: `dependent` is invalidated whenever this node changes.
    void AddDependent(Node* dependent);
    // Marks this node and everything that depends on it as changed: caches dropped, callbacks
    // queued. Called after a write and by InvalidateNode.
    void Changed();
    // Drops every cache this node keeps: its access mode, its value, its register bytes.
    void Forget();
    // Drops this node's own cached register bytes, if it keeps them.
    virtual void DropCache() {}
    // True if this node's value comes from a cache (its own or its children's) right now.
    virtual bool CacheValid() const;
    void FireCallbacks(ECallbackType type);
    bool HasCallbacks() const { return !m_callbacks.empty(); }
    void Poll(int64_t elapsedTime);

    void AddSelecting(Node* selector) { m_selecting.push_back(selector); }

protected:
    // Access from the node kind itself, before implemented/available/locked/imposed apply.
    virtual EAccessMode InternalAccessMode() const { return RO; }
    // For nodes made of members (entries, features): NI when no member is implemented, NA when
    // none is available, RW otherwise. The node is then unimplemented before its own
    // availability is asked, and unavailable after.
    virtual EAccessMode MembersAccessMode() const { return RW; }
    // A category only groups features: it is never merely unavailable (its pIsAvailable and an
    // unreadable pIsLocked are not consulted), its features are asked before its own conditions,
    // and a failure to compute its access mode is not remembered.
    virtual bool IsGrouping() const { return false; }
    static EAccessMode BestOf(const std::vector<Node*>& members);
    // The caching mode a node kind has when neither its description nor its children make it
    // weaker.
    virtual ECachingMode DefaultCachingMode() const;
    // Register nodes cache their own bytes; their caching mode is their own, never derived.
    virtual bool HasOwnCache() const { return false; }

public:
    // The access mode, for a caller that holds the map's lock.
    EAccessMode AccessMode() const;
    // The caching mode, for a caller that holds the map's lock.
    ECachingMode CachingMode() const;
    // Looks up a referenced node; throws naming the line if the name is unknown.
    Node* Resolve(const Property& property) const;
    Node* Resolve(const NodeDescription& description, const char* propertyName) const;
    // Records that this node reads `child`: it appears among the children and this node is
    // invalidated when the child changes.
    // `affectsCaching`: whether this node's value is cached no better than the child's (true for
    // the value itself, false for limits and a category's features).
    void AddReadingChild(Node* child, bool affectsCaching = true);
    // A child that makes this node uncachable when it is, but otherwise leaves this node's own
    // caching mode alone (the variables of a formula).
    void AddVariableChild(Node* child);
    void AddWritingChild(Node* child);
    // A node whose value (not only its access mode) decides this node's access mode, as an
    // index choosing where the value comes from does.
    void AddValueInput(Node* input);

protected:
    // Throws AccessException unless the node is readable / writable.
    void CheckReadable() const;
    void CheckWritable() const;
    // Throws AccessException unless the node is available.
    void CheckAvailable() const;

    NodeMap& m_map;
    std::vector<Node*> m_readingChildren;
    std::vector<Node*> m_writingChildren;
    // Set by a node kind that keeps its last value; cleared whenever anything it is built on
    // changes.
    bool m_valueKnown = false;

private:
    EAccessMode ComputeAccessMode() const;
    // Whether the access mode can be kept until something it depends on changes: not while a
    // value it reads is never cached.
    bool AccessModeCacheable() const;
    void ForgetAccessModes();
    // This node and every node reached from it through `links`, each once.
    std::vector<Node*> Reached(std::vector<Node*> Node::*links);
    EAccessMode Condition(Node* node, EAccessMode whenFalse) const;
    // RW, or what the pIsImplemented / pIsAvailable conditions make the node.
    EAccessMode Implementation() const;
    EAccessMode Availability() const;
    EAccessMode Locked(EAccessMode mode) const;

    std::string m_name;
    std::string m_kind;
    ENameSpace m_nameSpace = Custom;
    EVisibility m_visibility = Beginner;
    EAccessMode m_imposedAccessMode = RW;
    ECachingMode m_cachingMode = _UndefinedCachingMode;
    int64_t m_pollingTime = -1;
    int64_t m_elapsedSincePoll = 0;
    std::string m_toolTip;
    std::string m_description;
    std::string m_displayName;
    std::string m_docuUrl;
    std::string m_eventId;
    bool m_streamable = false;
    bool m_deprecated = false;
    std::vector<Node*> m_isImplemented;
    std::vector<Node*> m_isAvailable;
    std::vector<Node*> m_isLocked;
    Node* m_blockPolling = nullptr;
    Node* m_alias = nullptr;
    Node* m_castAlias = nullptr;
    std::vector<Node*> m_selected;
    std::vector<Node*> m_selecting;
    std::vector<Node*> m_parents;
    std::vector<Node*> m_dependents;
    std::vector<Node*> m_invalidators;
    std::vector<CNodeCallback*> m_callbacks;
    mutable bool m_inAccessMode = false;
    mutable EAccessMode m_knownMode = _UndefinedAccesMode;
    mutable signed char m_modeCacheable = -1;
    std::vector<Node*> m_valueInputs;
    mutable bool m_inCachingMode = false;
    mutable ECachingMode m_derivedCachingMode = _UndefinedCachingMode;
    std::vector<Node*> m_cachingChildren;
    std::vector<Node*> m_variableChildren;
    std::vector<std::pair<std::string, std::string>> m_rawProperties;
};

} // namespace detail
} // namespace GenApi

#endif
