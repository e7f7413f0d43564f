// Callbacks that fire after a node was written or invalidated, or after anything it depends on
// was.
#ifndef GENAPI_NODECALLBACK_H
#define GENAPI_NODECALLBACK_H

#include <GenApi/INode.h>

namespace GenApi {

class CNodeCallback {
public:
    CNodeCallback(INode* node, ECallbackType callbackType)
        : m_pNode(node), m_CallbackType(callbackType) {}
    virtual ~CNodeCallback() = default;

    // Runs the callback if it was registered for this phase.
    virtual void operator()(ECallbackType callbackType) const = 0;
    virtual void Destroy() = 0;
    INode* GetNode() const { return m_pNode; }

protected:
    INode* m_pNode;
    ECallbackType m_CallbackType;
};

template <class Function>
class Function_NodeCallback : public CNodeCallback {
public:
    Function_NodeCallback(INode* node, const Function& function, ECallbackType callbackType)
        : CNodeCallback(node, callbackType), m_pFunction(function) {}

    void operator()(ECallbackType callbackType) const override {
        if (m_pFunction && m_CallbackType == callbackType)
            m_pFunction(m_pNode);
    }
    void Destroy() override { delete this; }

private:
    const Function m_pFunction;
};

template <class Client, class Member>
class Member_NodeCallback : public CNodeCallback {
public:
    Member_NodeCallback(INode* node, Client& client, Member member, ECallbackType callbackType)
        : CNodeCallback(node, callbackType), m_Client(client), m_pMemberFunc(member) {}

    void operator()(ECallbackType callbackType) const override {
        if (m_pMemberFunc && m_CallbackType == callbackType)
            (m_Client.*m_pMemberFunc)(m_pNode);
    }
    void Destroy() override { delete this; }

private:
    Client& m_Client;
    Member m_pMemberFunc;
};

template <class Function>
CNodeCallback* make_NodeCallback(INode* node, Function function, ECallbackType callbackType) {
    return new Function_NodeCallback<Function>(node, function, callbackType);
}

template <class Client, class Member>
CNodeCallback* make_NodeCallback(INode* node, Client& client, Member member,
                                 ECallbackType callbackType) {
    return new Member_NodeCallback<Client, Member>(node, client, member, callbackType);
}

template <class Function>
CallbackHandleType Register(INode* node, Function function,
                            ECallbackType callbackType = cbPostInsideLock) {
    return node->RegisterCallback(make_NodeCallback(node, function, callbackType));
}

template <class Client, class Member>
CallbackHandleType Register(INode* node, Client& client, Member member,
                            ECallbackType callbackType = cbPostInsideLock) {
    return node->RegisterCallback(make_NodeCallback(node, client, member, callbackType));
}

// Removes and frees a callback registered with Register; a zero handle is ignored.
inline void Deregister(CallbackHandleType handle) {
    if (!handle)
        return;
    CNodeCallback* callback = reinterpret_cast<CNodeCallback*>(handle);
    callback->GetNode()->DeregisterCallback(handle);
}

} // namespace GenApi

#endif
