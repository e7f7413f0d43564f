#include "FeatureMap.h"

#include "FeatureValue.h"
#include "NodeCallbacks.h"

#include <GenApi/ICategory.h>
#include <Orvan/GenApiCustom.h>

namespace py = pybind11;

namespace OrvanPy {

py::object FeatureMap::Get(const std::string& name) const {
    return ReadFeature(m_source.nodeMap(), name);
}

void FeatureMap::Set(const std::string& name, py::handle value) const {
    WriteFeature(m_source.nodeMap(), name, value);
}

void FeatureMap::Execute(const std::string& name) const {
    GenApi::INodeMap* nodeMap = m_source.nodeMap();
    FindNode(nodeMap, name);
    py::gil_scoped_release release;
    Orvan::ExecuteNode(nodeMap, name.c_str());
}

FeatureInfo FeatureMap::Info(const std::string& name) const {
    return DescribeNode(FindNode(m_source.nodeMap(), name));
}

bool FeatureMap::Contains(const std::string& name) const {
    return m_source.nodeMap()->GetNode(name.c_str()) != nullptr;
}

std::vector<std::string> FeatureMap::Names() const {
    GenApi::NodeList_t nodes;
    m_source.nodeMap()->GetNodes(nodes);
    std::vector<std::string> names;
    for (GenApi::INode* node : nodes) {
        const GenApi::EInterfaceType type = node->GetPrincipalInterfaceType();
        if (node->IsFeature() && type != GenApi::intfICategory && type != GenApi::intfIPort)
            names.emplace_back(node->GetName().c_str());
    }
    return names;
}

intptr_t FeatureMap::OnChange(const std::string& name, py::object function) const {
    if (!PyCallable_Check(function.ptr()))
        throw py::type_error("on_change needs a callable");
    GenApi::INode* node = FindNode(m_source.nodeMap(), name);
    if (m_source.beforeCallback)
        m_source.beforeCallback();
    return m_source.callbacks().Add(node, std::move(function));
}

bool FeatureMap::RemoveCallback(intptr_t handle) const {
    m_source.nodeMap();
    return m_source.callbacks().Remove(handle);
}

} // namespace OrvanPy
