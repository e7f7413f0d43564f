#include "NodeCallbacks.h"

#include <GenApi/NodeCallback.h>

#include <algorithm>

namespace py = pybind11;

namespace OrvanPy {

void NodeCallbacks::Target::Call(GenApi::INode*) {
    py::gil_scoped_acquire gil;
    try {
        function(name);
    } catch (py::error_already_set& e) {
        e.discard_as_unraisable(function);
    }
}

NodeCallbacks::~NodeCallbacks() {
    Clear();
}

intptr_t NodeCallbacks::Add(GenApi::INode* node, py::object function) {
    auto target = std::make_unique<Target>(Target{std::move(function), node->GetName().c_str()});
    const GenApi::CallbackHandleType handle =
        GenApi::Register(node, *target, &Target::Call, GenApi::cbPostOutsideLock);
    m_registrations.push_back({handle, std::move(target)});
    return handle;
}

bool NodeCallbacks::Remove(intptr_t handle) {
    auto it = std::find_if(m_registrations.begin(), m_registrations.end(),
                           [&](const Registration& r) { return r.handle == handle; });
    if (it == m_registrations.end())
        return false;
    GenApi::Deregister(handle);
    m_registrations.erase(it);
    return true;
}

void NodeCallbacks::Clear() {
    for (const Registration& registration : m_registrations)
        GenApi::Deregister(registration.handle);
    m_registrations.clear();
}

} // namespace OrvanPy
