// Python callables registered on feature nodes. They run on whichever thread changed the node
// (the event thread for camera events), after the node map's lock is released, so that the
// callable can read features without waiting on a thread that waits for the GIL.
#ifndef ORVAN_PYTHON_NODECALLBACKS_H
#define ORVAN_PYTHON_NODECALLBACKS_H

#include <GenApi/INode.h>
#include <pybind11/pybind11.h>

#include <memory>
#include <string>
#include <vector>

namespace OrvanPy {

class NodeCallbacks {
public:
    NodeCallbacks() = default;
    ~NodeCallbacks();
    NodeCallbacks(const NodeCallbacks&) = delete;
    NodeCallbacks& operator=(const NodeCallbacks&) = delete;

    // Calls function(name) whenever the node changes; returns a handle for Remove.
    intptr_t Add(GenApi::INode* node, pybind11::object function);
    // False when the handle is not (or no longer) registered here.
    bool Remove(intptr_t handle);
    // Every registration goes; needed before the node maps are destroyed.
    void Clear();

    // The callable of one registration; the node map calls it through a member pointer.
    struct Target {
        pybind11::object function;
        std::string name;
        void Call(GenApi::INode* node);
    };

private:
    struct Registration {
        GenApi::CallbackHandleType handle;
        std::unique_ptr<Target> target;
    };
    std::vector<Registration> m_registrations;
};

} // namespace OrvanPy

#endif
