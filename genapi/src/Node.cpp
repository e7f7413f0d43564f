#include "Node.h"

#include "NodeMap.h"
#include "TextParsing.h"
#include "ValueAccess.h"

#include <Base/GCException.h>
#include <GenApi/AccessModeHelpers.h>
#include <GenApi/IValue.h>

#include <algorithm>
#include <exception>

namespace GenApi {
namespace detail {

namespace {

void AddUnique(std::vector<Node*>& list, Node* node) {
    if (std::find(list.begin(), list.end(), node) == list.end())
        list.push_back(node);
}

// Clears a flag when leaving scope, also by an exception.
class FlagGuard {
public:
    explicit FlagGuard(bool& flag) : m_flag(flag) { m_flag = true; }
    ~FlagGuard() { m_flag = false; }
    FlagGuard(const FlagGuard&) = delete;
    FlagGuard& operator=(const FlagGuard&) = delete;

private:
    bool& m_flag;
};

ECachingMode Weaker(ECachingMode a, ECachingMode b) {
    auto rank = [](ECachingMode mode) { return mode == WriteThrough ? 2 : mode == WriteAround; };
    return rank(a) <= rank(b) ? a : b;
}

} // namespace

Node::Node(NodeMap& map, const NodeDescription& description)
    : m_map(map), m_name(description.name), m_kind(description.kind) {
    if (description.nameSpace == "Standard")
        m_nameSpace = Standard;
    for (const auto& property : description.properties) {
        const std::string& name = property.name;
        if (name == "Visibility")
            m_visibility = ParseVisibility(property);
        else if (name == "ImposedAccessMode")
            m_imposedAccessMode = ParseAccessMode(property);
        else if (name == "Cachable")
            m_cachingMode = ParseCachingMode(property);
        else if (name == "PollingTime")
            m_pollingTime = ParseInt64(property);
        else if (name == "ToolTip")
            m_toolTip = property.text;
        else if (name == "Description")
            m_description = property.text;
        else if (name == "DisplayName")
            m_displayName = property.text;
        else if (name == "DocuURL")
            m_docuUrl = property.text;
        else if (name == "EventID")
            m_eventId = property.text;
        else if (name == "Streamable")
            m_streamable = ParseYesNo(property);
        else if (name == "IsDeprecated")
            m_deprecated = ParseYesNo(property);
        m_rawProperties.emplace_back(name, property.text);
    }
}

Node::~Node() {
    for (CNodeCallback* callback : m_callbacks)
        callback->Destroy();
}

void Node::Link(const NodeDescription& description) {
    for (const auto& property : description.properties) {
        const std::string& name = property.name;
        if (name == "pIsImplemented")
            AddUnique(m_isImplemented, Resolve(property));
        else if (name == "pIsAvailable")
            AddUnique(m_isAvailable, Resolve(property));
        else if (name == "pIsLocked")
            AddUnique(m_isLocked, Resolve(property));
        else if (name == "pBlockPolling")
            m_blockPolling = Resolve(property);
        else if (name == "pAlias")
            m_alias = Resolve(property);
        else if (name == "pCastAlias")
            m_castAlias = Resolve(property);
        else if (name == "pSelected") {
            // A feature reads the instance its selectors choose: a new selector value makes its
            // cached value stale even where no address depends on the selector (the device
            // switches the instance behind one register).
            Node* selected = Resolve(property);
            AddUnique(m_selected, selected);
            selected->AddSelecting(this);
            AddDependent(selected);
        } else if (name == "pInvalidator") {
            Node* invalidator = Resolve(property);
            AddUnique(m_invalidators, invalidator);
            invalidator->AddDependent(this);
        }
    }
    for (const std::vector<Node*>* condition : {&m_isImplemented, &m_isAvailable, &m_isLocked})
        for (Node* node : *condition)
            node->AddDependent(this);
}

Node* Node::Resolve(const Property& property) const {
    Node* node = m_map.Find(property.text);
    if (!node)
        throw RUNTIME_EXCEPTION("Node '%s' refers in <%s> at line %u to '%s', which does not exist",
                                m_name.c_str(), property.name.c_str(), property.line,
                                property.text.c_str());
    return node;
}

Node* Node::Resolve(const NodeDescription& description, const char* propertyName) const {
    const Property* property = description.Find(propertyName);
    return property ? Resolve(*property) : nullptr;
}

void Node::AddVariableChild(Node* child) {
    AddReadingChild(child, false);
    AddUnique(m_variableChildren, child);
}

void Node::AddReadingChild(Node* child, bool affectsCaching) {
    if (affectsCaching)
        AddUnique(m_cachingChildren, child);
    AddUnique(m_readingChildren, child);
    AddUnique(child->m_parents, this);
    child->AddDependent(this);
}

void Node::AddValueInput(Node* input) {
    AddUnique(m_valueInputs, input);
}

void Node::AddWritingChild(Node* child) {
    AddUnique(m_writingChildren, child);
}

void Node::AddDependent(Node* dependent) {
    if (dependent != this)
        AddUnique(m_dependents, dependent);
}

// A condition node that cannot be read passes its own unavailability on: the node is then as
// unimplemented or unavailable as the condition itself.
EAccessMode Node::Condition(Node* node, EAccessMode whenFalse) const {
    EAccessMode mode = node->GetAccessMode();
    if (mode == NI || mode == NA)
        return mode;
    if (!IsReadable(mode))
        return whenFalse;
    return ReadInt(node, false, false) != 0 ? RW : whenFalse;
}

EAccessMode Node::BestOf(const std::vector<Node*>& members) {
    if (members.empty())
        return RW;
    EAccessMode best = NI;
    for (Node* member : members) {
        EAccessMode mode = member->GetAccessMode();
        if (IsAvailable(mode))
            return RW;
        if (mode == NA)
            best = NA;
    }
    return best;
}

EAccessMode Node::GetAccessMode() const {
    NodeMap::Access access(m_map);
    return AccessMode();
}

// The access mode is kept until something it depends on changes, also one computed while a loop
// of nodes limiting each other was cut short (the node asked again inside the loop counts as
// RW): which answers a loop gives then depends on where it was entered, and stays so until a
// change. A node whose access mode fails to compute (a condition that cannot be evaluated)
// reports the failure, then counts as RW until something it depends on changes; its value
// decides from then on.
EAccessMode Node::AccessMode() const {
    if (m_knownMode != _UndefinedAccesMode)
        return m_knownMode;
    // A description whose conditions refer back to the node itself must not recurse forever.
    if (m_inAccessMode)
        return RW;
    EAccessMode mode;
    {
        FlagGuard guard(m_inAccessMode);
        try {
            mode = ComputeAccessMode();
        } catch (...) {
            if (!IsGrouping())
                m_knownMode = RW;
            throw;
        }
    }
    if (AccessModeCacheable())
        m_knownMode = mode;
    return mode;
}

bool Node::AccessModeCacheable() const {
    if (m_modeCacheable >= 0)
        return m_modeCacheable != 0;
    // Inside a loop the answer being computed counts as cacheable.
    m_modeCacheable = 1;
    bool cacheable = true;
    for (const std::vector<Node*>* values :
         {&m_isImplemented, &m_isAvailable, &m_isLocked, &m_valueInputs})
        for (Node* node : *values)
            cacheable = cacheable && node->CachingMode() != NoCache && node->AccessModeCacheable();
    for (Node* child : m_readingChildren)
        cacheable = cacheable && child->AccessModeCacheable();
    m_modeCacheable = cacheable ? 1 : 0;
    return cacheable;
}

// Implemented is settled before available, also for what the node is built on: a node built on
// an unimplemented one is unimplemented itself, whatever its own pIsAvailable says. What it is
// built on may also fail to evaluate; an unavailable node then reports NA instead.
EAccessMode Node::ComputeAccessMode() const {
    EAccessMode members = IsGrouping() ? MembersAccessMode() : RW;
    EAccessMode implemented = Implementation();
    if (implemented != RW)
        return implemented;
    if (!IsGrouping())
        members = MembersAccessMode();
    if (members == NI)
        return NI;
    EAccessMode mode = RW;
    std::exception_ptr failure;
    try {
        mode = InternalAccessMode();
    } catch (...) {
        failure = std::current_exception();
    }
    if (!failure && mode == NI)
        return NI;
    EAccessMode available = Availability();
    if (available != RW)
        return available;
    if (members == NA)
        return NA;
    if (failure)
        std::rethrow_exception(failure);
    if (mode == NA)
        return mode;
    return Combine(Locked(mode), m_imposedAccessMode);
}

EAccessMode Node::Implementation() const {
    for (Node* node : m_isImplemented) {
        EAccessMode condition = Condition(node, NI);
        if (condition != RW)
            return condition;
    }
    return RW;
}

// A lock that cannot be read leaves a feature unavailable; a category only groups features.
EAccessMode Node::Locked(EAccessMode mode) const {
    for (Node* node : m_isLocked) {
        EAccessMode locked = Condition(node, _UndefinedAccesMode);
        if ((locked == NA || locked == NI) && !IsGrouping())
            return locked;
        if (locked == RW && mode == RW)
            mode = RO;
        else if (locked == RW && mode == WO)
            mode = NA;
    }
    return mode;
}

EAccessMode Node::Availability() const {
    if (IsGrouping())
        return RW;
    for (Node* node : m_isAvailable) {
        EAccessMode condition = Condition(node, NA);
        if (condition != RW)
            return condition;
    }
    return RW;
}

gcstring Node::GetName(bool fullQualified) const {
    if (!fullQualified)
        return m_name;
    return gcstring(m_nameSpace == Standard ? "Std::" : "Cust::") + m_name;
}

EVisibility Node::GetVisibility() const {
    return m_visibility;
}

void Node::ImposeAccessMode(EAccessMode mode) {
    NodeMap::Access access(m_map);
    m_imposedAccessMode = Combine(m_imposedAccessMode, mode);
    ForgetAccessModes();
}

void Node::ForgetAccessModes() {
    for (Node* node : Reached(&Node::m_dependents))
        node->m_knownMode = _UndefinedAccesMode;
}

std::vector<Node*> Node::Reached(std::vector<Node*> Node::*links) {
    std::vector<Node*> reached{this};
    for (size_t i = 0; i < reached.size(); ++i)
        for (Node* next : reached[i]->*links)
            AddUnique(reached, next);
    return reached;
}

void Node::Forget() {
    m_knownMode = _UndefinedAccesMode;
    m_valueKnown = false;
    DropCache();
}

void Node::ImposeVisibility(EVisibility visibility) {
    NodeMap::Access access(m_map);
    if (visibility > m_visibility)
        m_visibility = visibility;
}

// A node can be cached no better than anything its value depends on; NoCache < WriteAround <
// WriteThrough. The structure never changes after loading, so the result is kept.
ECachingMode Node::GetCachingMode() const {
    if (m_cachingMode != _UndefinedCachingMode)
        return m_cachingMode;
    NodeMap::Access access(m_map);
    return CachingMode();
}

ECachingMode Node::CachingMode() const {
    if (m_cachingMode != _UndefinedCachingMode)
        return m_cachingMode;
    if (m_derivedCachingMode != _UndefinedCachingMode)
        return m_derivedCachingMode;
    if (m_inCachingMode)
        return WriteThrough;
    FlagGuard guard(m_inCachingMode);
    ECachingMode mode = DefaultCachingMode();
    if (HasOwnCache())
        return m_derivedCachingMode = mode;
    for (Node* child : m_cachingChildren)
        mode = Weaker(mode, child->CachingMode());
    for (Node* child : m_variableChildren)
        if (child->CachingMode() == NoCache)
            mode = NoCache;
    m_derivedCachingMode = mode;
    return mode;
}

ECachingMode Node::DefaultCachingMode() const {
    return WriteThrough;
}

gcstring Node::GetDescription() const {
    return m_description.empty() ? m_toolTip : m_description;
}

gcstring Node::GetDisplayName() const {
    return m_displayName.empty() ? m_name : m_displayName;
}

gcstring Node::GetDeviceName() const {
    return m_map.GetDeviceName();
}

INodeMap* Node::GetNodeMap() const {
    return &m_map;
}

void Node::GetChildren(NodeList_t& children, ELinkType linkType) const {
    NodeMap::Access access(m_map);
    children.clear();
    const std::vector<Node*>* source = &m_readingChildren;
    if (linkType == ctWritingChildren || linkType == ctTerminalNodes ||
        linkType == ctAllTerminalNodes)
        source = &m_writingChildren;
    else if (linkType == ctInvalidators)
        source = &m_invalidators;
    else if (linkType == ctDependingNodes || linkType == ctAllDependingNodes)
        source = &m_dependents;
    children.assign(source->begin(), source->end());
}

void Node::GetParents(NodeList_t& parents) const {
    NodeMap::Access access(m_map);
    parents.assign(m_parents.begin(), m_parents.end());
}

bool Node::IsFeature() const {
    for (Node* parent : m_parents)
        if (parent->GetPrincipalInterfaceType() == intfICategory)
            return true;
    return GetPrincipalInterfaceType() == intfICategory && m_name == "Root";
}

void Node::GetSelectedFeatures(FeatureList_t& features) const {
    NodeMap::Access access(m_map);
    features.clear();
    for (Node* node : m_selected)
        if (auto* value = dynamic_cast<IValue*>(node))
            features.push_back(value);
}

void Node::GetSelectingFeatures(FeatureList_t& features) const {
    NodeMap::Access access(m_map);
    features.clear();
    for (Node* node : m_selecting)
        if (auto* value = dynamic_cast<IValue*>(node))
            features.push_back(value);
}

void Node::GetPropertyNames(gcstring_vector& propertyNames) const {
    propertyNames.clear();
    for (const auto& property : m_rawProperties)
        propertyNames.push_back(property.first);
}

bool Node::GetProperty(const gcstring& propertyName, gcstring& valueStr, gcstring& attributeStr) {
    valueStr.clear();
    attributeStr.clear();
    bool found = false;
    for (const auto& property : m_rawProperties)
        if (property.first == propertyName.str()) {
            if (found)
                valueStr += "\t";
            valueStr += property.second.c_str();
            found = true;
        }
    return found;
}

CallbackHandleType Node::RegisterCallback(CNodeCallback* callback) {
    NodeMap::Access access(m_map);
    m_callbacks.push_back(callback);
    return reinterpret_cast<CallbackHandleType>(callback);
}

bool Node::DeregisterCallback(CallbackHandleType handle) {
    NodeMap::Access access(m_map);
    auto found =
        std::find(m_callbacks.begin(), m_callbacks.end(), reinterpret_cast<CNodeCallback*>(handle));
    if (found == m_callbacks.end())
        return false;
    (*found)->Destroy();
    m_callbacks.erase(found);
    return true;
}

void Node::FireCallbacks(ECallbackType type) {
    std::vector<CNodeCallback*> callbacks;
    {
        NodeMap::Access access(m_map);
        callbacks = m_callbacks;
    }
    for (CNodeCallback* callback : callbacks)
        (*callback)(type);
}

// The next read must reach the device: the caches of everything this node reads are dropped,
// and everything that depends on it is told.
void Node::InvalidateNode() {
    NodeMap::Access access(m_map);
    for (Node* node : Reached(&Node::m_readingChildren))
        node->Forget();
    Changed();
}

void Node::Changed() {
    std::vector<Node*> affected = Reached(&Node::m_dependents);
    // The node itself keeps the value just written; what it decides for others is recomputed.
    m_knownMode = _UndefinedAccesMode;
    for (size_t i = 1; i < affected.size(); ++i)
        affected[i]->Forget();
    for (Node* node : affected)
        if (node->HasCallbacks()) {
            node->FireCallbacks(cbPostInsideLock);
            m_map.QueueOutsideLock(node);
        }
}

bool Node::CacheValid() const {
    if (m_readingChildren.empty() || CachingMode() == NoCache)
        return false;
    for (Node* child : m_readingChildren)
        if (!child->CacheValid())
            return false;
    return true;
}

void Node::Poll(int64_t elapsedTime) {
    if (m_pollingTime <= 0)
        return;
    m_elapsedSincePoll += elapsedTime;
    if (m_elapsedSincePoll < m_pollingTime)
        return;
    m_elapsedSincePoll = 0;
    if (m_blockPolling && Condition(m_blockPolling, NA) == RW)
        return;
    InvalidateNode();
}

void Node::CheckReadable() const {
    if (!IsReadable(AccessMode()))
        throw ACCESS_EXCEPTION("Node '%s' is not readable", m_name.c_str());
}

void Node::CheckWritable() const {
    if (!IsWritable(AccessMode()))
        throw ACCESS_EXCEPTION("Node '%s' is not writable", m_name.c_str());
}

// Limits stay readable when the access mode itself cannot be computed (a condition that fails
// to evaluate): only a node known to be unavailable refuses them.
void Node::CheckAvailable() const {
    EAccessMode mode = RW;
    try {
        mode = GetAccessMode();
    } catch (const GenICam::GenericException&) {
        return;
    }
    if (!IsAvailable(mode))
        throw ACCESS_EXCEPTION("Node '%s' is not available", m_name.c_str());
}

} // namespace detail
} // namespace GenApi
