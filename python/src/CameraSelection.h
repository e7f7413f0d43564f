// Finds the camera that system.open() names: a DeviceInfo, an index into the device list, or a
// text tried as serial number, user-defined name, IPv4 address and finally index, the first
// kind that matches winning (as the orvan tool names cameras).
#ifndef ORVAN_PYTHON_CAMERASELECTION_H
#define ORVAN_PYTHON_CAMERASELECTION_H

#include <Orvan/DeviceInfo.h>
#include <pybind11/pybind11.h>

#include <vector>

namespace OrvanPy {

// Throws orvan.InvalidArgumentException when nothing or more than one camera matches.
Orvan::DeviceInfo SelectCamera(const std::vector<Orvan::DeviceInfo>& devices,
                               pybind11::handle which);

} // namespace OrvanPy

#endif
