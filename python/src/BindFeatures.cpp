// orvan.Features and orvan.FeatureInfo.
#include "Bindings.h"
#include "FeatureMap.h"

#include <pybind11/stl.h>

namespace py = pybind11;

namespace OrvanPy {
namespace {

void BindFeatureInfo(py::module_& m) {
    py::class_<FeatureInfo>(m, "FeatureInfo", "What Features.info() reports about a feature.")
        .def_readonly("name", &FeatureInfo::name)
        .def_readonly("type", &FeatureInfo::type,
                      "int, float, bool, str, enum, command, register or category.")
        .def_readonly("access", &FeatureInfo::access,
                      "RW, RO, WO, NA (not available now) or NI (not implemented).")
        .def_readonly("min", &FeatureInfo::minimum, "Lowest value (numbers), else None.")
        .def_readonly("max", &FeatureInfo::maximum, "Highest value (numbers), else None.")
        .def_readonly("inc", &FeatureInfo::increment, "Step between values, else None.")
        .def_readonly("unit", &FeatureInfo::unit)
        .def_readonly("entries", &FeatureInfo::entries,
                      "An enumeration's available entry names, else empty.")
        .def_readonly("description", &FeatureInfo::description)
        .def("__repr__", [](const FeatureInfo& info) {
            return "<orvan.FeatureInfo " + info.name + " " + info.type + " " + info.access + ">";
        });
}

} // namespace

void BindFeatures(py::module_& m) {
    BindFeatureInfo(m);
    py::class_<FeatureMap>(m, "Features",
                           "A node map's features by name: features['Width'] reads a value typed "
                           "by the feature (int, float, bool, str for strings and enumerations, "
                           "bytes for registers), assignment writes one.")
        .def("__getitem__", &FeatureMap::Get, py::arg("name"))
        .def("__setitem__", &FeatureMap::Set, py::arg("name"), py::arg("value"))
        .def("__contains__", &FeatureMap::Contains, py::arg("name"))
        .def("__iter__", [](const FeatureMap& map) { return py::iter(py::cast(map.Names())); })
        .def("names", &FeatureMap::Names, "Every feature's name, in the map's order.")
        .def(
            "get",
            [](const FeatureMap& map, const std::string& name, py::object fallback) {
                return map.Contains(name) ? map.Get(name) : fallback;
            },
            py::arg("name"), py::arg("default") = py::none(),
            "The value, or default for a name the map does not have.")
        .def("execute", &FeatureMap::Execute, py::arg("name"), "Runs a command feature.")
        .def("info", &FeatureMap::Info, py::arg("name"),
             "Type, access, limits, unit, entries and description of a feature.")
        .def("on_change", &FeatureMap::OnChange, py::arg("name"), py::arg("function"),
             "Calls function(name) on an SDK thread whenever the feature changes (camera "
             "events arrive this way: on_change('EventExposureEnd', fn)). Returns a handle "
             "for remove_callback.")
        .def("remove_callback", &FeatureMap::RemoveCallback, py::arg("handle"),
             "Removes an on_change callback; False when it was not registered.");
}

} // namespace OrvanPy
