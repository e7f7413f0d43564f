// What features.info(name) reports about one feature.
#ifndef ORVAN_PYTHON_FEATUREINFO_H
#define ORVAN_PYTHON_FEATUREINFO_H

#include <GenApi/INode.h>
#include <pybind11/pybind11.h>

#include <string>
#include <vector>

namespace OrvanPy {

struct FeatureInfo {
    std::string name;
    std::string type;   // int, float, bool, str, enum, command, register, category
    std::string access; // RW, RO, WO, NA (not available now) or NI (not implemented)
    pybind11::object minimum = pybind11::none();
    pybind11::object maximum = pybind11::none();
    pybind11::object increment = pybind11::none();
    std::string unit;
    std::vector<std::string> entries; // an enumeration's entry names
    std::string description;
};

FeatureInfo DescribeNode(GenApi::INode* node);

} // namespace OrvanPy

#endif
