#include "Device.h"

#include "StreamSelection.h"
#include "core/DeviceDescription.h"
#include "core/ErrorTranslation.h"
#include "core/Interface.h"
#include "feature/NodeMapUtility.h"

#include <GenApi/AccessModeHelpers.h>
#include <GenApi/ChunkAdapterGEV.h>
#include <GenApi/NodeCallback.h>
#include <GenApi/Pointer.h>

#include <algorithm>
#include <fstream>

namespace Orvan {
namespace {

#define DEVICE_SITE(function) ORVAN_SITE("Device", function)

constexpr double kErcLinkSpeedThreshold = 3.125e8;

// The chunk part of a description, from which each chunk-carrying buffer gets its node map:
// the chunk control category if there is one, else the chunk data category, else nothing.
GenApi::CNodeMapFactory ExtractChunkSubtree(GenApi::CNodeMapFactory& factory) {
    for (const char* root : {"ChunkDataControl", "ChunkData"}) {
        try {
            return factory.ExtractSubtree(root);
        } catch (const GenICam::GenericException&) {
        }
    }
    return GenApi::CNodeMapFactory();
}

} // namespace

Device::Device() = default;

Device::Device(TLDevice* tlDevice, Interface* iface)
    : m_tlDevice(tlDevice), m_tlDevicePort(tlDevice) {
    std::lock_guard<std::mutex> lock(m_deviceMutex);
    if (!tlDevice)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Device is null",
                                                             DEVICE_SITE("Device"));
    try {
        m_tlDeviceNodeMap = InitNodeMap(tlDevice, m_tlDevicePort);
        m_interface = iface;
        LoadDescription();
        EnumerateStreams();
        for (size_t stream = 0; stream < m_streams.size(); ++stream)
            m_newBufferEvents.push_back(std::make_unique<EventSlot>());
        m_chunkAdapter = new GenApi::CChunkAdapterGEV(m_nodeMap, -1);
        ApplyEventRateControl();
        ApplyScanType();
        RegisterNodeCallbacks();
    } catch (...) {
        Release();
        throw;
    }
}

Device::~Device() {
    {
        std::lock_guard<std::mutex> lock(m_callbackMutex);
        m_imageCallbacks.clear();
    }
    StopCallbackThread();
    m_evsTriggerEvent.Take();
    // A device given back while streaming is stopped here rather than left running against
    // closed modules.
    for (size_t stream = 0; stream < m_newBufferEvents.size(); ++stream) {
        if (!m_newBufferEvents[stream]->IsSet())
            continue;
        try {
            StopStream(static_cast<int>(stream));
        } catch (const GenICam::GenericException&) {
            // The stop gives the packet size back last; a stop that failed before has not.
            try {
                if (stream == kTcpStream)
                    RestorePacketSize();
            } catch (const GenICam::GenericException&) {
            }
        }
    }
    try {
        DeinitializeEvents();
    } catch (const GenICam::GenericException&) {
    }
    Release();
}

void Device::Release() noexcept {
    GenApi::Deregister(m_multipartCallback);
    m_multipartCallback = 0;
    for (StreamInfo* info : m_streams)
        delete info;
    m_streams.clear();
    for (auto& entry : m_outstanding)
        Discard(entry.second);
    m_outstanding.clear();
    delete m_chunkAdapter;
    m_chunkAdapter = nullptr;
    m_newBufferEvents.clear();
    DestroyNodeMap(m_nodeMap);
    m_nodeMap = nullptr;
    DestroyNodeMap(m_tlDeviceNodeMap);
    m_tlDeviceNodeMap = nullptr;
}

void Device::LoadDescription() {
    m_remoteModule = std::make_unique<TLBase>(GetRemotePort(m_tlDevice));
    XmlUrlInfo url = GetUrlInfo(m_remoteModule.get());
    char* data = nullptr;
    uint64_t size = 0;
    ReadXML(m_remoteModule.get(), url, &data, size);
    std::unique_ptr<char[]> owner(data);
    GenApi::CNodeMapFactory factory(GenApi::ContentType_Auto, data, size);
    owner.reset();
    m_chunkFactory = ExtractChunkSubtree(factory);
    m_nodeMap = factory.CreateNodeMap("Device", false);
    if (!factory.IsPreprocessed())
        factory.Preprocess();
    factory.ReleaseCameraDescriptionFileData();
    m_xml = factory.ToXml().c_str();
    m_remotePort = Port(m_remoteModule.get());
    m_nodeMap->Connect(&m_remotePort);
}

void Device::EnumerateStreams() {
    uint32_t count = 0;
    int32_t status = m_tlDevice->GetNumDataStreams(&count);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to get number of datastreams",
                        DEVICE_SITE("EnumerateStreams"), "DevGetNumDataStreams");
    m_streams.reserve(count);
    for (uint32_t index = 0; index < count; ++index) {
        char id[256] = {};
        size_t size = sizeof(id);
        status = m_tlDevice->GetDataStreamID(index, id, &size);
        if (status != GenTL::GC_ERR_SUCCESS)
            ThrowGenTLError(status, "error indexing a stream!", DEVICE_SITE("EnumerateStreams"),
                            "DevGetDataStreamID");
        void* handle = nullptr;
        status = m_tlDevice->OpenDataStream(id, &handle);
        if (status != GenTL::GC_ERR_SUCCESS)
            ThrowGenTLError(status, "Unable to open datastream", DEVICE_SITE("EnumerateStreams"),
                            "DevOpenDataStream");
        auto* stream = new TLDataStream(handle);
        try {
            m_streams.push_back(new StreamInfo(stream));
        } catch (...) {
            stream->Close();
            delete stream;
            throw;
        }
    }
}

// Event-based sensors on a slow link must not produce more events than the link carries.
void Device::ApplyEventRateControl() {
    try {
        if (!m_nodeMap->GetNode("EventFormat"))
            return;
        GenApi::CIntegerPtr linkSpeed = m_nodeMap->GetNode("DeviceLinkSpeed");
        if (!GenApi::IsReadable(linkSpeed))
            return;
        const int64_t speed = linkSpeed->GetValue();
        if (static_cast<double>(speed) >= kErcLinkSpeedThreshold)
            return;
        GenApi::CFloatPtr rateLimit = m_nodeMap->GetNode("ErcRateLimit");
        if (!GenApi::IsWritable(rateLimit) || !GenApi::IsReadable(rateLimit))
            return;
        const double limit = static_cast<double>(speed) / 6.25 / 1000000.0;
        if (rateLimit->GetValue() > limit)
            rateLimit->SetValue(limit);
        GenApi::CBooleanPtr enable = m_nodeMap->GetNode("ErcEnable");
        if (GenApi::IsWritable(enable))
            enable->SetValue(true);
    } catch (const GenICam::GenericException&) {
    }
}

// Multipart buffers exist for line-scan cameras only; the TL device offers the multipart
// switch when told the camera is one.
void Device::ApplyScanType() {
    GenApi::CEnumerationPtr scanType = m_nodeMap->GetNode("DeviceScanType");
    GenApi::IEnumEntry* entry =
        GenApi::IsReadable(scanType) ? scanType->GetCurrentEntry() : nullptr;
    const bool lineScan = entry && entry->GetSymbolic() == "Linescan";
    GenApi::CBooleanPtr implemented =
        m_tlDeviceNodeMap ? m_tlDeviceNodeMap->GetNode("MultipartFeaturesImplementedEnable")
                          : nullptr;
    if (GenApi::IsWritable(implemented))
        implemented->SetValue(lineScan);
}

void Device::RegisterNodeCallbacks() {
    if (!m_tlDeviceNodeMap)
        return;
    GenApi::CBooleanPtr multipart = m_tlDeviceNodeMap->GetNode("StreamMultipartEnable");
    if (!multipart.IsValid() || multipart->GetAccessMode() < GenApi::WO)
        return;
    m_multipartCallback = GenApi::Register(
        multipart->GetNode(), *this, &Device::MultipartStreamCallback, GenApi::cbPostInsideLock);
}

// Runs inside the TL-device node map's lock on the writer's thread: no library lock here.
void Device::MultipartStreamCallback(GenApi::INode*) {
    m_selectedStream = kMultipartStream;
    const size_t count = std::min<size_t>(m_streams.size(), kMultipartStream + 1);
    for (size_t stream = 0; stream < count; ++stream)
        if (GenApi::INodeMap* nodeMap = m_streams[stream]->GetNodeMap())
            nodeMap->InvalidateNodes();
}

bool Device::HasControl() {
    GenApi::CEnumerationPtr status =
        m_tlDeviceNodeMap ? m_tlDeviceNodeMap->GetNode("DeviceAccessStatus") : nullptr;
    if (!GenApi::IsReadable(status))
        return false;
    GenApi::IEnumEntry* entry = status->GetCurrentEntry();
    return entry && entry->GetSymbolic() == "ReadWrite";
}

uint32_t Device::SelectStream() {
    m_selectedStream = GetStreamNumber(m_nodeMap, m_tlDeviceNodeMap, m_streams.size());
    return m_selectedStream;
}

void Device::CheckHasStreams(const char* function) {
    if (m_streams.empty())
        ThrowLibraryError<GenICam::LogicalErrorException>("Device has no available streams",
                                                          DEVICE_SITE(function));
}

// The per-stream operations are reached with indices the library chose or the caller gave;
// a wrong one must not touch memory outside the list.
StreamInfo* Device::Stream(int stream, const char* function) {
    CheckHasStreams(function);
    if (stream < 0 || static_cast<size_t>(stream) >= m_streams.size())
        ThrowLibraryError<GenICam::OutOfRangeException>("error indexing a stream!",
                                                        DEVICE_SITE(function));
    return m_streams[static_cast<size_t>(stream)];
}

GenApi::INodeMap* Device::GetNodeMap() {
    return m_nodeMap;
}

GenApi::INodeMap* Device::GetTLDeviceNodeMap() {
    return m_tlDeviceNodeMap;
}

GenApi::INodeMap* Device::GetTLStreamNodeMap() {
    CheckHasStreams("GetTLStreamNodeMap");
    return GetTLStreamNodeMap(static_cast<int>(SelectStream()));
}

GenApi::INodeMap* Device::GetTLStreamNodeMap(int stream) {
    return Stream(stream, "GetTLStreamNodeMap")->GetNodeMap();
}

GenApi::INodeMap* Device::GetTLInterfaceNodeMap() {
    std::lock_guard<std::mutex> lock(m_deviceMutex);
    return m_interface ? m_interface->GetNodeMap() : nullptr;
}

Interface* Device::GetInterface() {
    std::lock_guard<std::mutex> lock(m_deviceMutex);
    return m_interface;
}

void Device::ResetInterface() {
    std::lock_guard<std::mutex> lock(m_deviceMutex);
    m_interface = nullptr;
}

void Device::DownloadXml() {
    GenApi::CStringPtr serial = m_nodeMap ? m_nodeMap->GetNode("DeviceSerialNumber") : nullptr;
    if (!GenApi::IsReadable(serial))
        ThrowLibraryError<GenICam::LogicalErrorException>("Unable to download XML",
                                                          DEVICE_SITE("DownloadXml"));
    GenICam::gcstring name = serial->GetValue();
    if (name.empty())
        return;
    std::ofstream file(std::string(name.c_str()) + ".xml", std::ios::out | std::ios::trunc);
    file << m_xml;
    if (!file)
        ThrowLibraryError<GenICam::RuntimeException>("Unable to download XML",
                                                     DEVICE_SITE("DownloadXml"));
}

} // namespace Orvan
