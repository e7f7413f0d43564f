#include "Interface.h"

#include "Device.h"
#include "DeviceInfoQuery.h"
#include "GenTLError.h"
#include "System.h"

#include <GenTL/GenTLExtensions.h>

#include <algorithm>

namespace Orvan {
namespace Producer {

namespace {

PortIdentity InterfacePortIdentity(const InterfaceBackend& backend) {
    PortIdentity identity;
    identity.id = backend.Id();
    identity.vendor = "Orvan";
    identity.model = backend.Model();
    identity.tlType = TLTypeGEVName;
    identity.module = TLInterfaceModuleName;
    identity.portName = "InterfacePort";
    identity.version = "1.0";
    return identity;
}

// Access status values as the SFNC enumeration DeviceAccessStatus names them.
const std::vector<std::pair<std::string, int64_t>> kAccessStatusEntries = {
    {"Unknown", GenTL::DEVICE_ACCESS_STATUS_UNKNOWN},
    {"ReadWrite", GenTL::DEVICE_ACCESS_STATUS_READWRITE},
    {"ReadOnly", GenTL::DEVICE_ACCESS_STATUS_READONLY},
    {"NoAccess", GenTL::DEVICE_ACCESS_STATUS_NOACCESS},
    {"Busy", GenTL::DEVICE_ACCESS_STATUS_BUSY},
    {"OpenReadWrite", GenTL::DEVICE_ACCESS_STATUS_OPEN_READWRITE},
    {"OpenReadOnly", GenTL::DEVICE_ACCESS_STATUS_OPEN_READONLY}};

// What IFUpdateDeviceList waits for answers when told to wait for ever.
constexpr uint64_t kDefaultDiscoveryMs = 1000;

} // namespace

std::shared_ptr<Interface> Interface::Create(const std::shared_ptr<System>& system,
                                             std::shared_ptr<InterfaceBackend> backend) {
    std::shared_ptr<Interface> interface(new Interface(std::move(backend)));
    interface->m_system = system;
    interface->m_parentHandle = system->Handle();
    interface->m_handle = HandleRegistry::Instance().Add(interface, HandleKind::Interface);
    return interface;
}

Interface::Interface(std::shared_ptr<InterfaceBackend> backend)
    : m_backend(std::move(backend)), m_id(m_backend->Id()),
      m_port(InterfacePortIdentity(*m_backend)) {
    Describe();
}

Interface::~Interface() = default;

std::shared_ptr<RemoteDevice> Interface::SelectedDevice() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    uint32_t index = m_deviceSelector.load();
    if (index >= m_discovered.size())
        throw GenTLError(GenTL::GC_ERR_INVALID_INDEX, "DeviceSelector names no device");
    return m_discovered[index];
}

void Interface::Describe() {
    ModuleDescription description("GenTLInterface", "InterfacePort");
    description.Category("InterfaceInformation");
    description.String("InterfaceID", [this] { return m_id; });
    InterfaceBackend* backend = m_backend.get();
    description.String("InterfaceDisplayName", [backend] { return backend->DisplayName(); });
    description.Enumeration("InterfaceType", {{"GigEVision", 1}}, [] { return 1; });
    description.Integer("GevInterfaceGatewaySelector", [] { return 0; }).Max([] { return 0; });
    description.Integer("GevInterfaceGateway", [backend] { return backend->Address().gateway; })
        .Ip();
    description
        .Integer("GevInterfaceMACAddress",
                 [backend] { return static_cast<int64_t>(backend->Address().mac); })
        .Mac();
    description.Integer("GevInterfaceSubnetSelector", [] { return 0; }).Max([] { return 0; });
    description.Integer("GevInterfaceSubnetIPAddress", [backend] { return backend->Address().ip; })
        .Ip();
    description.Integer("GevInterfaceSubnetMask", [backend] { return backend->Address().subnet; })
        .Ip();
    description.Category("DeviceEnumeration");
    description.Command("DeviceUpdateList", [this] { UpdateDeviceList(kDefaultDiscoveryMs); });
    description
        .Integer(
            "DeviceSelector", [this] { return static_cast<int64_t>(m_deviceSelector.load()); },
            [this](int64_t value) {
                if (value < 0 || value >= std::max<int64_t>(1, NumDevices()))
                    throw GenTLError(GenTL::GC_ERR_INVALID_VALUE, "No device with that index");
                m_deviceSelector.store(static_cast<uint32_t>(value));
            })
        .Max([this] { return std::max<int64_t>(0, int64_t(NumDevices()) - 1); })
        .Selects("DeviceID")
        .Selects("DeviceVendorName")
        .Selects("DeviceModelName")
        .Selects("DeviceSerialNumber")
        .Selects("DeviceUserID")
        .Selects("DeviceAccessStatus")
        .Selects("GevDeviceIPAddress")
        .Selects("GevDeviceSubnetMask")
        .Selects("GevDeviceGateway")
        .Selects("GevDeviceMACAddress");
    auto identity = [this] { return SelectedDevice()->Identity(); };
    description.String("DeviceID", [identity] { return identity().id; });
    description.String("DeviceVendorName", [identity] { return identity().vendor; });
    description.String("DeviceModelName", [identity] { return identity().model; });
    description.String("DeviceSerialNumber", [identity] { return identity().serialNumber; });
    description.String("DeviceUserID", [identity] { return identity().userDefinedName; });
    description.Enumeration("DeviceAccessStatus", kAccessStatusEntries,
                            [this, identity] { return AccessStatus(identity().id); });
    description.Integer("GevDeviceIPAddress", [identity] { return identity().ip; }).Ip();
    description.Integer("GevDeviceSubnetMask", [identity] { return identity().subnet; }).Ip();
    description.Integer("GevDeviceGateway", [identity] { return identity().gateway; }).Ip();
    description.Integer("GevDeviceMACAddress", [identity] { return identity().mac; }).Mac();
    m_port.Describe(description);
}

void Interface::Close() {
    std::map<std::string, std::shared_ptr<Device>> open;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_closed = true; // no device opens from here on
        open = m_open;
    }
    for (auto& entry : open)
        entry.second->Close();
    UnregisterAllEvents();
    HandleRegistry::Instance().Remove(m_handle);
    if (auto system = m_system.lock())
        system->Forget(this);
}

InfoValue Interface::InfoOf(const InterfaceBackend& backend, GenTL::INTERFACE_INFO_CMD cmd) {
    switch (cmd) {
    case GenTL::INTERFACE_INFO_ID:
        return InfoValue::String(backend.Id());
    case GenTL::INTERFACE_INFO_DISPLAYNAME:
        return InfoValue::String(backend.DisplayName());
    case GenTL::INTERFACE_INFO_TLTYPE:
        return InfoValue::String(TLTypeGEVName);
    case GenTL::INTERFACE_INFO_ORVAN_GEV_MAC_ADDRESS:
        return InfoValue::UInt64(backend.Address().mac);
    case GenTL::INTERFACE_INFO_ORVAN_GEV_IP_ADDRESS:
        return InfoValue::UInt64(backend.Address().ip);
    default:
        throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER,
                         "Unknown interface info command " + std::to_string(cmd));
    }
}

bool Interface::UpdateDeviceList(uint64_t timeoutMs) {
    if (timeoutMs == GENTL_INFINITE)
        timeoutMs = kDefaultDiscoveryMs;
    std::vector<std::shared_ptr<RemoteDevice>> found =
        m_backend->Discover(timeoutMs, UnicastDevices());
    std::lock_guard<std::mutex> lock(m_mutex);
    bool changed = found != m_discovered;
    m_discovered = std::move(found);
    return changed;
}

uint32_t Interface::NumDevices() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<uint32_t>(m_discovered.size());
}

std::string Interface::DeviceId(uint32_t index) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (index >= m_discovered.size())
        throw GenTLError(GenTL::GC_ERR_INVALID_INDEX,
                         "The interface lists " + std::to_string(m_discovered.size()) + " devices");
    return m_discovered[index]->Identity().id;
}

std::shared_ptr<RemoteDevice> Interface::Discovered(const std::string& deviceId) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const auto& camera : m_discovered)
        if (camera->Identity().id == deviceId)
            return camera;
    throw GenTLError(GenTL::GC_ERR_INVALID_ID, "No device '" + deviceId + "' on " + m_id +
                                                   " (IFUpdateDeviceList finds devices)");
}

// Device ids outlive interface handles: a consumer lists the cameras through one handle, closes
// it (or the whole system module) and later opens a camera by its id through a new handle
// without updating that handle's list. An empty list is therefore filled by a discovery before
// the id is judged unknown; a list the consumer did fill is taken as it is, and no list is
// changed behind the back of a consumer that walks it by index.
std::shared_ptr<RemoteDevice> Interface::Reported(const std::string& deviceId) {
    if (NumDevices() == 0)
        UpdateDeviceList(kDefaultDiscoveryMs);
    return Discovered(deviceId);
}

int32_t Interface::AccessStatus(const std::string& deviceId) const {
    std::shared_ptr<Device> open;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        auto it = m_open.find(deviceId);
        if (it != m_open.end())
            open = it->second;
    }
    // Asking a network camera takes a round trip: not under the lock.
    if (!open)
        return m_backend->AccessStatus(*Discovered(deviceId));
    return open->AccessStatus() == GenTL::DEVICE_ACCESS_STATUS_READWRITE
               ? GenTL::DEVICE_ACCESS_STATUS_OPEN_READWRITE
               : GenTL::DEVICE_ACCESS_STATUS_OPEN_READONLY;
}

InfoValue Interface::DeviceInfo(const std::string& deviceId, GenTL::DEVICE_INFO_CMD cmd) {
    std::shared_ptr<RemoteDevice> camera = Reported(deviceId);
    if (cmd == GenTL::DEVICE_INFO_ORVAN_CONNECTED)
        throw GenTLError(GenTL::GC_ERR_NOT_IMPLEMENTED,
                         "The connection state is a DevGetInfo query of an open device");
    // Only the access status may cost a round trip to the camera.
    const int32_t status = cmd == GenTL::DEVICE_INFO_ACCESS_STATUS
                               ? AccessStatus(deviceId)
                               : GenTL::DEVICE_ACCESS_STATUS_UNKNOWN;
    return QueryDeviceInfo(*camera, status, cmd);
}

GenTL::DEV_HANDLE Interface::OpenDevice(const std::string& deviceId,
                                        GenTL::DEVICE_ACCESS_FLAGS flags) {
    if (flags < GenTL::DEVICE_ACCESS_NONE || flags > GenTL::DEVICE_ACCESS_EXCLUSIVE)
        throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER,
                         "Unknown access flags " + std::to_string(flags));
    std::shared_ptr<RemoteDevice> camera = Reported(deviceId);
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_closed)
            throw GenTLError(GenTL::GC_ERR_INVALID_HANDLE, "The interface is closed");
        if (m_open.count(deviceId) || m_opening.count(deviceId))
            throw GenTLError(GenTL::GC_ERR_RESOURCE_IN_USE, "Device '" + deviceId + "' is open");
        if (!camera->IsConnected())
            throw GenTLError(GenTL::GC_ERR_IO, "Device '" + deviceId + "' does not answer");
        m_opening.insert(deviceId);
    }
    // A network camera takes round trips to open, and may report its connection meanwhile
    // (which takes the lock): the open happens outside it, the name reserved.
    std::shared_ptr<Device> device;
    try {
        device =
            Device::Create(std::static_pointer_cast<Interface>(shared_from_this()), camera, flags);
    } catch (...) {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_opening.erase(deviceId);
        throw;
    }
    bool closed = false;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_opening.erase(deviceId);
        closed = m_closed;
        if (!closed)
            m_open[deviceId] = device;
    }
    if (closed) {
        device->Close();
        throw GenTLError(GenTL::GC_ERR_INVALID_HANDLE, "The interface closed during the open");
    }
    return device->Handle();
}

void Interface::Forget(const Device* closed) {
    std::lock_guard<std::mutex> lock(m_mutex);
    for (auto it = m_open.begin(); it != m_open.end(); ++it) {
        if (it->second.get() == closed) {
            m_open.erase(it);
            return;
        }
    }
}

void Interface::ForceIp(uint64_t mac, uint32_t ip, uint32_t subnet, uint32_t gateway) {
    m_backend->ForceIp(mac, ip, subnet, gateway, UnicastDevices());
}

void Interface::AddUnicastDevice(uint32_t ip) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (std::find(m_unicast.begin(), m_unicast.end(), ip) == m_unicast.end())
        m_unicast.push_back(ip);
}

void Interface::RemoveUnicastDevice(uint32_t ip) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_unicast.erase(std::remove(m_unicast.begin(), m_unicast.end(), ip), m_unicast.end());
}

std::vector<uint32_t> Interface::UnicastDevices() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_unicast;
}

void Interface::NotifyConnection(const std::string& deviceId, bool connected) {
    std::shared_ptr<Device> device;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        auto it = m_open.find(deviceId);
        if (it == m_open.end())
            return;
        device = it->second;
    }
    device->NotifyConnection(connected);
}

} // namespace Producer
} // namespace Orvan
