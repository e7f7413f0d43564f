// Which data stream carries a device's images, decided from its transport features.
#ifndef ORVAN_DEVICE_STREAMSELECTION_H
#define ORVAN_DEVICE_STREAMSELECTION_H

#include <GenApi/INodeMap.h>

#include <cstddef>
#include <cstdint>

namespace Orvan {

// Stream indices, which are the transports.
constexpr uint32_t kUdpStream = 0;
constexpr uint32_t kTcpStream = 1;
constexpr uint32_t kRdmaStream = 2;
constexpr uint32_t kEvsStream = 3;
constexpr uint32_t kMultipartStream = 4;

// The stream index for the device's current settings. An event-based sensor wins over
// multipart, multipart over the TCP switch, the TCP switch over the protocol enumeration. May
// switch "TransportStreamProtocol" to "TCP" when "TCPEnable" asks for it and the transport
// parameters are not locked. tlDeviceNodeMap may be null.
uint32_t GetStreamNumber(GenApi::INodeMap* deviceNodeMap, GenApi::INodeMap* tlDeviceNodeMap,
                         size_t streamCount);

} // namespace Orvan

#endif
