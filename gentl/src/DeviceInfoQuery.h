// DEVICE_INFO_* answers from what discovery knows about a camera, shared by IFGetDeviceInfo and
// DevGetInfo.
#ifndef ORVAN_GENTL_DEVICEINFOQUERY_H
#define ORVAN_GENTL_DEVICEINFOQUERY_H

#include "InfoValue.h"
#include "RemoteDevice.h"

namespace Orvan {
namespace Producer {

InfoValue QueryDeviceInfo(const RemoteDevice& camera, int32_t accessStatus,
                          GenTL::DEVICE_INFO_CMD cmd);

std::string DeviceDisplayName(const DeviceIdentity& identity);

} // namespace Producer
} // namespace Orvan

#endif
