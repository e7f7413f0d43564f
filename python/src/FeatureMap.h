// orvan.Features: one node map as a mapping of feature names to typed values, with commands,
// descriptions and change callbacks.
#ifndef ORVAN_PYTHON_FEATUREMAP_H
#define ORVAN_PYTHON_FEATUREMAP_H

#include "FeatureInfo.h"

#include <GenApi/INodeMap.h>
#include <pybind11/pybind11.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace OrvanPy {

class NodeCallbacks;

class FeatureMap {
public:
    struct Source {
        std::shared_ptr<void> owner;                // keeps the map's owner alive
        std::function<GenApi::INodeMap*()> nodeMap; // throws once the owner is closed
        std::function<NodeCallbacks&()> callbacks;
        std::function<void()> beforeCallback; // starts what makes the callbacks fire
    };

    explicit FeatureMap(Source source) : m_source(std::move(source)) {}

    pybind11::object Get(const std::string& name) const;
    void Set(const std::string& name, pybind11::handle value) const;
    void Execute(const std::string& name) const;
    FeatureInfo Info(const std::string& name) const;
    bool Contains(const std::string& name) const;
    // Names of the features (not categories, entries or internal nodes), in map order.
    std::vector<std::string> Names() const;
    intptr_t OnChange(const std::string& name, pybind11::object function) const;
    bool RemoveCallback(intptr_t handle) const;

private:
    Source m_source;
};

} // namespace OrvanPy

#endif
