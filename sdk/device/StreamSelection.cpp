#include "StreamSelection.h"

#include "core/ErrorTranslation.h"

#include <Orvan/ALogger.h>
#include <Orvan/GenApiCustom.h>

#include <GenApi/AccessModeHelpers.h>
#include <GenApi/Pointer.h>

#include <string>

namespace Orvan {
namespace {

#define SELECTION_SITE ORVAN_SITE("Device", "GetStreamNumber")

// Present and not NI; unlike GenApi's IsAvailable this admits NA.
bool Available(GenApi::INodeMap* nodeMap, const char* name) {
    GenApi::INode* node = nodeMap ? nodeMap->GetNode(name) : nullptr;
    return node && node->GetAccessMode() != GenApi::NI;
}

template <class T>
GenApi::CPointer<T> Required(GenApi::INodeMap* nodeMap, const char* name) {
    GenApi::CPointer<T> node = nodeMap->GetNode(name);
    if (!node.IsValid())
        ThrowLibraryError<GenICam::LogicalErrorException>("NULL pointer dereferenced",
                                                          SELECTION_SITE);
    return node;
}

std::string CurrentEntry(GenApi::INodeMap* nodeMap, const char* name) {
    GenApi::CEnumerationPtr enumeration = Required<GenApi::IEnumeration>(nodeMap, name);
    GenApi::IEnumEntry* entry = enumeration->GetCurrentEntry();
    if (!entry)
        ThrowLibraryError<GenICam::LogicalErrorException>("NULL pointer dereferenced",
                                                          SELECTION_SITE);
    return entry->GetSymbolic().c_str();
}

[[noreturn]] void RefuseEventFormat(const std::string& value, const char* logText) {
    ALogger::Error((logText + value).c_str());
    ThrowLibraryError<GenICam::RuntimeException>("Unsupported Event Format type: " + value,
                                                 SELECTION_SITE);
}

uint32_t EventSensorStream(GenApi::INodeMap* deviceNodeMap, size_t streamCount) {
    std::string format = CurrentEntry(deviceNodeMap, "EventFormat");
    if (format != "EVT3_0")
        RefuseEventFormat(format, "Unsupported Event Format Detected(2): ");
    if (streamCount <= kEvsStream)
        RefuseEventFormat(format, "Unsupported Event Format Detected: ");
    return kEvsStream;
}

bool MultipartEnabled(GenApi::INodeMap* tlDeviceNodeMap) {
    if (!Available(tlDeviceNodeMap, "StreamMultipartEnable"))
        return false;
    GenApi::CBooleanPtr enable = tlDeviceNodeMap->GetNode("StreamMultipartEnable");
    return enable.IsValid() && GenApi::IsReadable(enable) && enable->GetValue();
}

uint32_t ProtocolStream(GenApi::INodeMap* deviceNodeMap, size_t streamCount) {
    std::string protocol = CurrentEntry(deviceNodeMap, "TransportStreamProtocol");
    if (protocol == "UDP" && streamCount > kUdpStream)
        return kUdpStream;
    if (protocol == "TCP" && streamCount > kTcpStream)
        return kTcpStream;
    if (protocol == "RDMA" && streamCount > kRdmaStream)
        return kRdmaStream;
    ThrowLibraryError<GenICam::RuntimeException>(
        "Unsupported Transport Stream Protocol: " + protocol, SELECTION_SITE);
}

// "TCPEnable" is set and the device has "TransportStreamProtocol": the protocol follows the
// switch unless the transport parameters are locked for a running stream.
uint32_t SwitchToTcp(GenApi::INodeMap* deviceNodeMap, size_t streamCount) {
    if (streamCount <= kTcpStream)
        return kUdpStream;
    GenApi::CIntegerPtr locked = Required<GenApi::IInteger>(deviceNodeMap, "TLParamsLocked");
    GenApi::CEnumerationPtr protocol = deviceNodeMap->GetNode("TransportStreamProtocol");
    if (locked->GetValue() == 0 && GenApi::IsWritable(protocol))
        SetNodeValue<GenICam::gcstring>(deviceNodeMap, "TransportStreamProtocol", "TCP");
    return kTcpStream;
}

} // namespace

uint32_t GetStreamNumber(GenApi::INodeMap* deviceNodeMap, GenApi::INodeMap* tlDeviceNodeMap,
                         size_t streamCount) {
    const bool hasTcpEnable = Available(deviceNodeMap, "TCPEnable");
    const bool hasProtocol = Available(deviceNodeMap, "TransportStreamProtocol");
    if (Available(deviceNodeMap, "EventFormat"))
        return EventSensorStream(deviceNodeMap, streamCount);
    if (MultipartEnabled(tlDeviceNodeMap)) {
        if (streamCount > kMultipartStream)
            return kMultipartStream;
        ALogger::Error("Unsupported Camera Detected");
        ThrowLibraryError<GenICam::RuntimeException>("Unsupported Camera Detected", SELECTION_SITE);
    }
    if (!hasTcpEnable)
        return kUdpStream;
    bool tcpEnabled = false;
    try {
        tcpEnabled = GenApi::CBooleanPtr(deviceNodeMap->GetNode("TCPEnable"))->GetValue();
    } catch (const GenICam::GenericException&) {
        return hasProtocol ? ProtocolStream(deviceNodeMap, streamCount) : kUdpStream;
    }
    if (!hasProtocol)
        return tcpEnabled && streamCount > kTcpStream ? kTcpStream : kUdpStream;
    if (!tcpEnabled)
        return ProtocolStream(deviceNodeMap, streamCount);
    return SwitchToTcp(deviceNodeMap, streamCount);
}

} // namespace Orvan
