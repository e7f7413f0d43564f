#include "Device.h"

#include "DataStream.h"
#include "DeviceInfoQuery.h"
#include "GenTLError.h"
#include "Interface.h"
#include "LastError.h"
#include "MessageEvent.h"
#include "RemotePort.h"

#include <GenTL/GenTLExtensions.h>

namespace Orvan {
namespace Producer {

namespace {

// GVCP packets are at most 576 bytes on the wire; extended-id events stay well inside this.
constexpr size_t kRemoteEventSize = 4096;

PortIdentity DevicePortIdentity(const DeviceIdentity& camera) {
    PortIdentity identity;
    identity.id = camera.id;
    identity.vendor = "Orvan";
    identity.model = "Orvan GenTL device module";
    identity.tlType = camera.tlType;
    identity.module = TLDeviceModuleName;
    identity.portName = "DevicePort";
    identity.version = "1.0";
    return identity;
}

} // namespace

std::shared_ptr<Device> Device::Create(const std::shared_ptr<Interface>& parent,
                                       std::shared_ptr<RemoteDevice> camera,
                                       GenTL::DEVICE_ACCESS_FLAGS flags) {
    GenTL::GC_ERROR status = camera->Open(flags);
    if (status != GenTL::GC_ERR_SUCCESS) {
        // The camera leaves its own explanation as the thread's last error.
        std::string text = LastErrorCode() == status ? LastErrorText() : std::string();
        throw GenTLError(status, "Device '" + camera->Identity().id + "' did not open" +
                                     (text.empty() ? std::string() : ": " + text));
    }
    std::shared_ptr<Device> device;
    try {
        device.reset(new Device(camera, flags));
    } catch (...) {
        camera->Close();
        throw;
    }
    device->m_parent = parent;
    device->m_parentHandle = parent->Handle();
    device->m_handle = HandleRegistry::Instance().Add(device, HandleKind::Device);
    device->m_remoteHandle =
        HandleRegistry::Instance().Add(device->m_remote, HandleKind::RemotePort);
    return device;
}

Device::Device(std::shared_ptr<RemoteDevice> camera, GenTL::DEVICE_ACCESS_FLAGS flags)
    : m_camera(std::move(camera)), m_flags(flags),
      m_remote(std::make_shared<RemotePort>(m_camera, flags != GenTL::DEVICE_ACCESS_NONE,
                                            flags >= GenTL::DEVICE_ACCESS_CONTROL)),
      m_port(DevicePortIdentity(m_camera->Identity())) {
    Describe();
}

Device::~Device() = default;

int32_t Device::AccessStatus() const {
    switch (m_flags) {
    case GenTL::DEVICE_ACCESS_CONTROL:
    case GenTL::DEVICE_ACCESS_EXCLUSIVE:
        return GenTL::DEVICE_ACCESS_STATUS_READWRITE;
    case GenTL::DEVICE_ACCESS_READONLY:
        return GenTL::DEVICE_ACCESS_STATUS_READONLY;
    default:
        return GenTL::DEVICE_ACCESS_STATUS_NOACCESS;
    }
}

void Device::Describe() {
    ModuleDescription description("GenTLDevice", "DevicePort");
    const std::shared_ptr<RemoteDevice> camera = m_camera;
    description.Category("DeviceInformation");
    description.String("DeviceID", [camera] { return camera->Identity().id; });
    description.String("DeviceVendorName", [camera] { return camera->Identity().vendor; });
    description.String("DeviceModelName", [camera] { return camera->Identity().model; });
    description.String("DeviceSerialNumber", [camera] { return camera->Identity().serialNumber; });
    description.String("DeviceVersion", [camera] { return camera->Identity().version; });
    description.String("DeviceUserID", [camera] { return camera->Identity().userDefinedName; });
    description.String("DeviceDisplayName",
                       [camera] { return DeviceDisplayName(camera->Identity()); });
    description.Enumeration("DeviceType",
                            {{"Mixed", 0},
                             {"Custom", 1},
                             {"GigEVision", 2},
                             {"CameraLink", 3},
                             {"CoaXPress", 4},
                             {"USB3Vision", 5}},
                            [camera] { return camera->Identity().tlType == "GEV" ? 2 : 1; });
    description.Enumeration("DeviceAccessStatus",
                            {{"Unknown", 0},
                             {"ReadWrite", 1},
                             {"ReadOnly", 2},
                             {"NoAccess", 3},
                             {"Busy", 4},
                             {"OpenReadWrite", 5},
                             {"OpenReadOnly", 6}},
                            [this] { return AccessStatus(); });
    description.Integer("DeviceTimestampFrequency",
                        [camera] { return static_cast<int64_t>(camera->TimestampFrequency()); });
    description.Category("GigEVisionInformation");
    description.Integer("GevDeviceIPAddress", [camera] { return camera->Identity().ip; }).Ip();
    description.Integer("GevDeviceSubnetMask", [camera] { return camera->Identity().subnet; }).Ip();
    description.Integer("GevDeviceGateway", [camera] { return camera->Identity().gateway; }).Ip();
    description
        .Integer("GevDeviceMACAddress",
                 [camera] { return static_cast<int64_t>(camera->Identity().mac); })
        .Mac();
    description.Category("StreamEnumeration");
    description.Integer("DeviceStreamCount",
                        [camera] { return static_cast<int64_t>(camera->StreamCount()); });
    description.Boolean(
        "MultipartFeaturesImplementedEnable", [this] { return m_multipartImplemented.load(); },
        [this](bool value) { m_multipartImplemented.store(value); });
    description
        .Boolean(
            "StreamMultipartEnable", [this] { return m_multipartEnabled.load(); },
            [this](bool value) { m_multipartEnabled.store(value); })
        .AvailableIf("MultipartFeaturesImplementedEnable");
    m_port.Describe(description);
}

void Device::Close() {
    std::map<uint32_t, std::shared_ptr<DataStream>> streams;
    bool wasClosed = false;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        wasClosed = m_closed;
        m_closed = true; // no stream opens from here on
        streams = m_streams;
    }
    for (auto& entry : streams)
        entry.second->Close();
    UnregisterAllEvents();
    // Streams are down and events unhooked: the camera may now give its control back.
    if (!wasClosed)
        m_camera->Close();
    HandleRegistry::Instance().Remove(m_remoteHandle);
    HandleRegistry::Instance().Remove(m_handle);
    if (auto parent = m_parent.lock())
        parent->Forget(this);
}

InfoValue Device::Info(GenTL::DEVICE_INFO_CMD cmd) const {
    if (cmd == GenTL::DEVICE_INFO_ORVAN_CONNECTED)
        return InfoValue::Bool8(m_camera->IsConnected());
    return QueryDeviceInfo(*m_camera, AccessStatus(), cmd);
}

std::string Device::StreamId(uint32_t index) const {
    if (index >= m_camera->StreamCount())
        throw GenTLError(GenTL::GC_ERR_INVALID_INDEX,
                         "The device has " + std::to_string(m_camera->StreamCount()) + " streams");
    return m_camera->StreamId(index);
}

GenTL::DS_HANDLE Device::OpenStream(const std::string& id) {
    RequireConnected();
    uint32_t index = 0;
    while (index < m_camera->StreamCount() && m_camera->StreamId(index) != id)
        ++index;
    if (index == m_camera->StreamCount())
        throw GenTLError(GenTL::GC_ERR_INVALID_ID, "No data stream '" + id + "'");
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_closed)
        throw GenTLError(GenTL::GC_ERR_INVALID_HANDLE, "The device is closed");
    if (m_streams.count(index))
        throw GenTLError(GenTL::GC_ERR_RESOURCE_IN_USE, "Data stream '" + id + "' is open");
    auto stream =
        DataStream::Create(std::static_pointer_cast<Device>(shared_from_this()), m_camera, index);
    m_streams[index] = stream;
    return stream->Handle();
}

void Device::Forget(const DataStream* closed) {
    std::lock_guard<std::mutex> lock(m_mutex);
    for (auto it = m_streams.begin(); it != m_streams.end(); ++it) {
        if (it->second.get() == closed) {
            m_streams.erase(it);
            return;
        }
    }
}

void Device::SendActionCommand(uint32_t deviceKey, uint32_t groupKey, uint32_t groupMask,
                               uint64_t scheduledTime) {
    RequireConnected();
    GenTL::GC_ERROR status = m_camera->ActionCommand(deviceKey, groupKey, groupMask, scheduledTime);
    if (status != GenTL::GC_ERR_SUCCESS)
        throw GenTLError(status, "The action command was not accepted");
}

void Device::RequireConnected() const {
    if (!m_camera->IsConnected())
        throw GenTLError(GenTL::GC_ERR_IO,
                         "Device '" + m_camera->Identity().id + "' no longer answers");
}

void Device::NotifyConnection(bool connected) {
    if (!connected)
        RaiseError(GenTL::GC_ERR_IO, "Device '" + m_camera->Identity().id + "' was lost");
}

void Device::DeliverRemoteEvent(const void* data, size_t size) {
    auto event = std::static_pointer_cast<MessageEvent>(FindEvent(GenTL::EVENT_REMOTE_DEVICE));
    if (event)
        event->Push(data, size);
}

std::shared_ptr<Event> Device::MakeEvent(GenTL::EVENT_TYPE type) {
    if (type == GenTL::EVENT_REMOTE_DEVICE)
        return std::make_shared<MessageEvent>(type, kRemoteEventSize);
    return Module::MakeEvent(type);
}

void Device::EventRegistered(GenTL::EVENT_TYPE type) {
    if (type == GenTL::EVENT_REMOTE_DEVICE)
        m_camera->SetEventSink(this);
}

void Device::EventUnregistered(GenTL::EVENT_TYPE type) {
    if (type == GenTL::EVENT_REMOTE_DEVICE)
        m_camera->SetEventSink(nullptr);
}

} // namespace Producer
} // namespace Orvan
