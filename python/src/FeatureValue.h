// Feature values in Python's types, chosen by the node: int, float, bool, str (strings and
// enumerations, by entry name), bytes (registers).
#ifndef ORVAN_PYTHON_FEATUREVALUE_H
#define ORVAN_PYTHON_FEATUREVALUE_H

#include <GenApi/INode.h>
#include <GenApi/INodeMap.h>
#include <pybind11/pybind11.h>

#include <string>

namespace OrvanPy {

// Both look the node up first: a name the map does not have raises KeyError.
pybind11::object ReadFeature(GenApi::INodeMap* nodeMap, const std::string& name);
void WriteFeature(GenApi::INodeMap* nodeMap, const std::string& name, pybind11::handle value);

// A node reached without its name (chunks).
pybind11::object ReadNode(GenApi::INode* node);

GenApi::INode* FindNode(GenApi::INodeMap* nodeMap, const std::string& name);

} // namespace OrvanPy

#endif
