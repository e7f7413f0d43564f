// orvan.DeviceInfo and orvan.InterfaceInfo: what discovery reports, as read-only properties.
#include "Bindings.h"

#include <Orvan/DeviceInfo.h>
#include <Orvan/InterfaceInfo.h>

#include <string>

namespace py = pybind11;

namespace OrvanPy {
namespace {

template <class Info, class Getter>
auto Text(Getter getter) {
    return [getter](const Info& info) { return std::string((info.*getter)().c_str()); };
}

std::string DeviceRepr(const Orvan::DeviceInfo& info) {
    return "<orvan.DeviceInfo " + std::string(info.ModelName().c_str()) + " serial " +
           info.SerialNumber().c_str() + ">";
}

void BindDeviceInfo(py::module_& m) {
    using D = Orvan::DeviceInfo;
    py::class_<D>(m, "DeviceInfo", "A camera found by System.devices(); give it to System.open().")
        .def_property_readonly("model", Text<D>(&D::ModelName), "Model name.")
        .def_property_readonly("vendor", Text<D>(&D::VendorName), "Vendor name.")
        .def_property_readonly("serial", Text<D>(&D::SerialNumber), "Serial number.")
        .def_property_readonly("user_name", Text<D>(&D::UserDefinedName),
                               "The user-defined name, empty when none is set.")
        .def_property_readonly("version", Text<D>(&D::DeviceVersion), "Device version.")
        .def_property_readonly("ip", Text<D>(&D::IpAddressStr), "IPv4 address, dotted.")
        .def_property_readonly("mac", Text<D>(&D::MacAddressStr), "MAC address, colon-separated.")
        .def_property_readonly("subnet", Text<D>(&D::SubnetMaskStr), "IPv4 subnet mask.")
        .def_property_readonly("gateway", Text<D>(&D::DefaultGatewayStr), "Default gateway.")
        .def_property_readonly("device_id", Text<D>(&D::DeviceId),
                               "The transport's identifier of the camera.")
        .def("__repr__", DeviceRepr);
}

void BindInterfaceInfo(py::module_& m) {
    using I = Orvan::InterfaceInfo;
    py::class_<I>(m, "InterfaceInfo", "A transport interface the system holds.")
        .def_property_readonly("id", Text<I>(&I::Id), "The transport's identifier.")
        .def_property_readonly("ip", Text<I>(&I::IpAddressStr), "IPv4 address, dotted.")
        .def_property_readonly("mac", Text<I>(&I::MacAddressStr), "MAC address.")
        .def_property_readonly("subnet", Text<I>(&I::SubnetMaskStr), "IPv4 subnet mask.")
        .def("__repr__", [](const I& info) {
            return "<orvan.InterfaceInfo " + std::string(info.Id().c_str()) + ">";
        });
}

} // namespace

void BindInfo(py::module_& module) {
    BindDeviceInfo(module);
    BindInterfaceInfo(module);
}

} // namespace OrvanPy
