#include "System.h"

#include "ErrorTranslation.h"
#include "GetInfo.h"
#include "Orvan.h"
#include "device/Device.h"
#include "feature/NodeMapUtility.h"

#include <GenApi/AccessModeHelpers.h>
#include <GenApi/Pointer.h>
#include <GenTL/GenTLExtensions.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string>
#include <thread>

namespace Orvan {
namespace {

constexpr uint64_t kInfiniteTimeout = ~uint64_t{0};

// Closes the module, then frees its wrapper and the interface object; close failures are of
// no use to anyone during teardown.
void CleanUpInterface(Interface* iface) noexcept {
    TLInterface* tlInterface = iface->GetTLInterface();
    tlInterface->Close();
    delete tlInterface;
    delete iface;
}

// Reads an identifier in two passes, its size and then its text; query(buffer, size) is the
// producer call. Returns the producer's code.
template <class Query>
int32_t ReadId(Query query, GenICam::gcstring& id) {
    size_t size = 0;
    int32_t status = query(nullptr, &size);
    if (status != GenTL::GC_ERR_SUCCESS)
        return status;
    std::vector<char> text(size + 1, '\0');
    status = query(text.data(), &size);
    if (status == GenTL::GC_ERR_SUCCESS)
        id = text.data();
    return status;
}

int64_t SubnetMaskOf(GenApi::INodeMap* nodeMap) {
    if (!nodeMap)
        return 0;
    GenApi::CIntegerPtr mask = nodeMap->GetNode("GevInterfaceSubnetMask");
    if (!mask.IsValid() ||
        (mask->GetAccessMode() != GenApi::RO && mask->GetAccessMode() != GenApi::RW))
        return 0;
    return mask->GetValue();
}

std::string ErrnoText() {
    return "[" + std::to_string(errno) + "]";
}

// Dotted IPv4 text to a number with the first octet most significant.
uint64_t ParseIpv4(const char* text, const ErrorSite& site) {
    in_addr address = {};
    if (!text || inet_pton(AF_INET, text, &address) != 1)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Bad IP address", site);
    return ntohl(address.s_addr);
}

std::string Ipv4Text(uint32_t address) {
    in_addr value = {};
    value.s_addr = htonl(address);
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &value, text, sizeof(text));
    return text;
}

struct SocketCloser {
    int fd;
    ~SocketCloser() { close(fd); }
};

// The local IPv4 address of the interface the host routes `ip` through. Connecting a datagram
// socket only selects the route; nothing is sent. *camera receives the parsed address.
uint32_t BestRouteAddress(const char* ip, const ErrorSite& site, uint32_t* camera) {
    in_addr remote = {};
    if (!ip || inet_pton(AF_INET, ip, &remote) != 1)
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Unable to parse remote IP address. Error: " + ErrnoText() + ".", site);
    if (remote.s_addr == htonl(INADDR_ANY) || remote.s_addr == htonl(INADDR_BROADCAST))
        ThrowLibraryError<GenICam::InvalidArgumentException>("Invalid IP address specified.", site);
    const int probe = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    if (probe < 0)
        ThrowLibraryError<GenICam::RuntimeException>(
            "Failed to create socket. Error: " + ErrnoText() + ".", site);
    const SocketCloser closer{probe};
    sockaddr_in target = {};
    target.sin_family = AF_INET;
    target.sin_port = htons(9);
    target.sin_addr = remote;
    if (connect(probe, reinterpret_cast<sockaddr*>(&target), sizeof(target)) != 0)
        ThrowLibraryError<GenICam::RuntimeException>(
            "Failed to connect socket. Error: " + ErrnoText() + ".", site);
    sockaddr_in local = {};
    socklen_t length = sizeof(local);
    if (getsockname(probe, reinterpret_cast<sockaddr*>(&local), &length) != 0)
        ThrowLibraryError<GenICam::RuntimeException>(
            "Unable to determine appropriate interface. Error: " + ErrnoText(), site);
    *camera = ntohl(remote.s_addr);
    return ntohl(local.sin_addr.s_addr);
}

// The interface's unicast-discovery addresses, asking for the count first.
int32_t ReadUnicastList(TLInterface* iface, std::vector<uint32_t>& ips) {
    uint32_t count = 0;
    int32_t status = iface->GetUnicastDiscoveryDevices(nullptr, &count);
    if (status != GenTL::GC_ERR_SUCCESS || count == 0)
        return status;
    ips.resize(count);
    status = iface->GetUnicastDiscoveryDevices(ips.data(), &count);
    ips.resize(status == GenTL::GC_ERR_SUCCESS ? count : 0);
    return status;
}

} // namespace

System::System(std::unique_ptr<TLSystem> tlSystem)
    : m_tlSystem(std::move(tlSystem)), m_port(m_tlSystem.get()) {
    std::lock_guard<std::mutex> lock(m_systemMutex);
    try {
        EnumerateInterfaces();
        m_nodeMap = InitNodeMap(m_tlSystem.get(), m_port);
    } catch (...) {
        // The destructor will not run: give back the interfaces opened so far. The system
        // module stays open, as after a failed open of the system itself.
        for (auto it = m_interfaces.rbegin(); it != m_interfaces.rend(); ++it)
            CleanUpInterface(*it);
        throw;
    }
    OpenImageFactory();
}

System::~System() {
    // Devices left open are about to lose their modules: nobody is to be told about that.
    m_cbManager.DeregisterAllCallbacks();
    std::lock_guard<std::mutex> lock(m_systemMutex);
    while (!m_interfaces.empty()) {
        Interface* last = m_interfaces.back();
        m_interfaces.pop_back();
        CleanUpInterface(last);
    }
    DestroyNodeMap(m_nodeMap);
    m_nodeMap = nullptr;
    m_tlSystem->Close();
    m_tlSystem.reset();
    CloseImageFactory();
}

Interface* System::OpenInterface(const GenICam::gcstring& id) {
    void* handle = nullptr;
    int32_t status = m_tlSystem->OpenInterface(id.c_str(), &handle);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to open interface",
                        ORVAN_SITE("System", "EnumerateInterfaces"), "TLOpenInterface");
    auto* tlInterface = new TLInterface(handle);
    try {
        return new Interface(tlInterface, id);
    } catch (...) {
        tlInterface->Close();
        delete tlInterface;
        throw;
    }
}

void System::EnumerateInterfaces() {
    uint32_t count = 0;
    int32_t status = m_tlSystem->GetNumInterfaces(&count);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to get number of interfaces",
                        ORVAN_SITE("System", "EnumerateInterfaces"), "TLGetNumInterfaces");
    std::vector<Interface*> next;
    std::vector<Interface*> opened; // by this call, given back if it fails
    try {
        for (uint32_t index = 0; index < count; ++index) {
            GenICam::gcstring id;
            status =
                ReadId([&](char* text,
                           size_t* size) { return m_tlSystem->GetInterfaceID(index, text, size); },
                       id);
            if (status != GenTL::GC_ERR_SUCCESS)
                ThrowGenTLError(status, "Unable to get interface ID",
                                ORVAN_SITE("System", "EnumerateInterfaces"), "TLGetInterfaceID");
            // An interface that stays keeps its object, and with it its node map and devices.
            auto known = std::find_if(m_interfaces.begin(), m_interfaces.end(),
                                      [&](Interface* iface) { return iface->GetId() == id; });
            if (known != m_interfaces.end()) {
                next.push_back(*known);
                continue;
            }
            opened.push_back(OpenInterface(id));
            next.push_back(opened.back());
        }
    } catch (...) {
        for (auto it = opened.rbegin(); it != opened.rend(); ++it)
            CleanUpInterface(*it);
        throw;
    }
    for (auto it = m_interfaces.rbegin(); it != m_interfaces.rend(); ++it)
        if (std::find(next.begin(), next.end(), *it) == next.end())
            CleanUpInterface(*it);
    m_interfaces = std::move(next);
}

void System::UpdateInterfaceList(const char* function, bool* changed) {
    int32_t status = m_tlSystem->UpdateInterfaceList(changed, kInfiniteTimeout);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to update list of interfaces",
                        ORVAN_SITE("System", function), "TLUpdateInterfaceList");
}

std::vector<InterfaceInfo> System::GetInterfaces() {
    std::lock_guard<std::mutex> lock(m_systemMutex);
    bool changed = false;
    UpdateInterfaceList("GetInterfaces", &changed);
    std::vector<InterfaceInfo> infos;
    for (Interface* iface : m_interfaces) {
        TLInterface* tlInterface = iface->GetTLInterface();
        infos.emplace_back(
            iface->GetId(),
            GetInfo<uint64_t>(tlInterface, GenTL::INTERFACE_INFO_ORVAN_GEV_IP_ADDRESS),
            static_cast<uint64_t>(SubnetMaskOf(iface->GetNodeMap())),
            GetInfo<uint64_t>(tlInterface, GenTL::INTERFACE_INFO_ORVAN_GEV_MAC_ADDRESS));
    }
    return infos;
}

std::vector<TLInterface*> System::RefreshInterfaces(const GenICam::gcstring* onlyId) {
    std::lock_guard<std::mutex> lock(m_systemMutex);
    bool changed = false;
    UpdateInterfaceList("UpdateDevices", &changed);
    if (changed || m_interfaces.empty())
        EnumerateInterfaces();
    std::vector<TLInterface*> interfaces;
    for (Interface* iface : m_interfaces)
        if (!onlyId || iface->GetId() == *onlyId)
            interfaces.push_back(iface->GetTLInterface());
    return interfaces;
}

void System::UpdateDevices(uint64_t timeout) {
    std::lock_guard<std::mutex> update(m_updateMutex);
    UpdateDeviceLists(RefreshInterfaces(nullptr), timeout);
}

void System::UpdateDevices(InterfaceInfo interfaceInfo, uint64_t timeout) {
    std::lock_guard<std::mutex> update(m_updateMutex);
    std::vector<TLInterface*> interfaces = RefreshInterfaces(&interfaceInfo.Id());
    if (interfaces.empty())
        ThrowLibraryError<GenICam::InvalidArgumentException>("Interface not found",
                                                             ORVAN_SITE("System", "UpdateDevices"));
    UpdateDeviceLists(interfaces, timeout);
}

void System::UpdateDeviceLists(const std::vector<TLInterface*>& interfaces, uint64_t timeout) {
    const size_t count = interfaces.size();
    std::vector<int32_t> results(count, GenTL::GC_ERR_SUCCESS);
    std::unique_ptr<bool[]> changed(new bool[count]());
    // The producer keeps its error text per thread, so each thread fetches its own.
    std::vector<std::string> texts(count);
    std::vector<std::thread> threads;
    threads.reserve(count);
    auto refresh = [&](size_t i) {
        results[i] = interfaces[i]->UpdateDeviceList(&changed[i], timeout);
        if (results[i] != GenTL::GC_ERR_SUCCESS)
            texts[i] = ProducerErrorText();
    };
    try {
        for (size_t i = 0; i < count; ++i)
            threads.emplace_back(refresh, i);
    } catch (...) {
        for (std::thread& thread : threads)
            thread.join();
        throw;
    }
    for (std::thread& thread : threads)
        thread.join();
    // One interface that answered is enough; only when all failed is the last one reported.
    size_t i = 0;
    while (i + 1 < count && results[i] != GenTL::GC_ERR_SUCCESS)
        ++i;
    if (count > 0 && results[i] != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(results[i], "Unable to update list of devices",
                        ORVAN_SITE("System", "UpdateDevices"), "IFUpdateDeviceList", texts[i]);
}

std::vector<DeviceInfo> System::GetDevices() {
    std::lock_guard<std::mutex> lock(m_systemMutex);
    std::vector<DeviceInfo> devices;
    for (Interface* iface : m_interfaces)
        AppendDevices(iface, devices);
    return devices;
}

void System::AppendDevices(Interface* iface, std::vector<DeviceInfo>& devices) {
    TLInterface* tl = iface->GetTLInterface();
    uint32_t count = 0;
    int32_t status = tl->GetNumDevices(&count);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to get number of devices",
                        ORVAN_SITE("System", "GetDevices"), "IFGetNumDevices");
    for (uint32_t index = 0; index < count; ++index) {
        DeviceInfo info;
        status =
            ReadId([&](char* text, size_t* size) { return tl->GetDeviceID(index, text, size); },
                   info.m_deviceId);
        if (status != GenTL::GC_ERR_SUCCESS)
            ThrowGenTLError(status, "Unable to get device ID", ORVAN_SITE("System", "GetDevices"),
                            "IFGetDeviceID");
        const char* id = info.m_deviceId.c_str();
        info.m_modelName = GetInfoString(tl, id, GenTL::DEVICE_INFO_MODEL);
        info.m_vendorName = GetInfoString(tl, id, GenTL::DEVICE_INFO_VENDOR);
        info.m_serialNumber = GetInfoString(tl, id, GenTL::DEVICE_INFO_SERIAL_NUMBER);
        info.m_ipAddress = GetInfo<uint32_t>(tl, id, GenTL::DEVICE_INFO_ORVAN_GEV_IP_ADDRESS);
        info.m_macAddress = static_cast<uint64_t>(
            GetInfo<int64_t>(tl, id, GenTL::DEVICE_INFO_ORVAN_GEV_MAC_ADDRESS));
        info.m_subnetMask = GetInfo<uint32_t>(tl, id, GenTL::DEVICE_INFO_ORVAN_GEV_SUBNET_MASK);
        info.m_userDefinedName = GetInfoString(tl, id, GenTL::DEVICE_INFO_USER_DEFINED_NAME);
        info.m_defaultGateway =
            GetInfo<uint32_t>(tl, id, GenTL::DEVICE_INFO_ORVAN_GEV_DEFAULT_GATEWAY);
        info.m_dhcpEnabled = GetInfo<bool>(tl, id, GenTL::DEVICE_INFO_ORVAN_GEV_DHCP_ENABLED);
        info.m_persistentIpEnabled =
            GetInfo<bool>(tl, id, GenTL::DEVICE_INFO_ORVAN_GEV_PERSISTENT_IP_ENABLED);
        info.m_llaEnabled = GetInfo<bool>(tl, id, GenTL::DEVICE_INFO_ORVAN_GEV_LLA_ENABLED);
        info.m_interfaceMacAddress =
            GetInfo<uint64_t>(tl, GenTL::INTERFACE_INFO_ORVAN_GEV_MAC_ADDRESS);
        info.m_interfaceIpAddress =
            GetInfo<uint64_t>(tl, GenTL::INTERFACE_INFO_ORVAN_GEV_IP_ADDRESS);
        info.m_deviceVersion = GetInfoString(tl, id, GenTL::DEVICE_INFO_VERSION);
        info.m_interfaceId = iface->GetId();
        devices.push_back(info);
    }
}

GenApi::INodeMap* System::GetTLSystemNodeMap() {
    return m_nodeMap;
}

// With the system mutex held: the interface the record's device was found on, recognised by
// its id, or else by the MAC and IPv4 address the record carries for it.
Interface* System::FindInterface(const DeviceInfo& info, const char* function) {
    // Interfaces of other producers have no network address to tell them apart by.
    for (Interface* iface : m_interfaces)
        if (!info.m_interfaceId.empty() && iface->GetId() == info.m_interfaceId)
            return iface;
    for (Interface* iface : m_interfaces) {
        GenApi::INodeMap* nodeMap = iface->GetNodeMap();
        if (!nodeMap)
            ThrowLibraryError<GenICam::LogicalErrorException>("TL Interface nodemap is null.",
                                                              ORVAN_SITE("System", function));
        GenApi::CIntegerPtr mac = nodeMap->GetNode("GevInterfaceMACAddress");
        GenApi::CIntegerPtr ip = nodeMap->GetNode("GevInterfaceSubnetIPAddress");
        if (static_cast<uint64_t>(mac->GetValue()) == info.InterfaceMacAddress() &&
            static_cast<uint64_t>(ip->GetValue()) == info.InterfaceIpAddress())
            return iface;
    }
    ThrowLibraryError<GenICam::LogicalErrorException>("Camera Interface not found",
                                                      ORVAN_SITE("System", function));
}

IDevice* System::CreateDevice(DeviceInfo deviceInfo) {
    std::lock_guard<std::mutex> lock(m_systemMutex);
    Interface* iface = FindInterface(deviceInfo, "CreateDevice");
    void* handle = nullptr;
    int32_t status = iface->GetTLInterface()->OpenDevice(deviceInfo.DeviceId().c_str(),
                                                         GenTL::DEVICE_ACCESS_CONTROL, &handle);
    if (status == GenTL::GC_ERR_RESOURCE_IN_USE)
        ThrowGenTLError(status, "Failure opening device due to device already being open",
                        ORVAN_SITE("System", "CreateDevice"), "IFOpenDevice");
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to open device", ORVAN_SITE("System", "CreateDevice"),
                        "IFOpenDevice");
    auto* tlDevice = new TLDevice(handle);
    Device* device = nullptr;
    try {
        device = new Device(tlDevice, iface);
        iface->AddDevice(device);
    } catch (...) {
        delete device;
        tlDevice->Close();
        delete tlDevice;
        throw;
    }
    m_cbManager.ConnectDevice(device);
    return device;
}

void System::DestroyDevice(IDevice* device) {
    auto* concrete = dynamic_cast<Device*>(device);
    if (!concrete)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Device is null",
                                                             ORVAN_SITE("System", "DestroyDevice"));
    // The poller must not ask a device that is gone. It may be running a callback that itself
    // needs the system mutex, so it is waited for before that mutex is taken.
    m_cbManager.DisconnectDevice(concrete);
    std::lock_guard<std::mutex> lock(m_systemMutex);
    if (Interface* iface = concrete->GetInterface())
        iface->RemoveDevice(concrete);
    TLDevice* tlDevice = concrete->GetTLDevice();
    delete concrete;
    if (tlDevice) {
        // A device module that will not close is of no further use either way.
        tlDevice->Close();
        delete tlDevice;
    }
}

GenApi::INodeMap* System::GetTLInterfaceNodeMap(DeviceInfo deviceInfo) {
    std::lock_guard<std::mutex> lock(m_systemMutex);
    return FindInterface(deviceInfo, "GetTLInterfaceNodeMap")->GetNodeMap();
}

// The camera may sit behind any interface, so each is asked in turn until one reaches it.
void System::ForceIp(uint64_t mac, uint64_t ip, uint64_t subnet, uint64_t gateway) {
    // Enumerating again may close interfaces that a running device-list refresh still uses.
    std::lock_guard<std::mutex> update(m_updateMutex);
    std::lock_guard<std::mutex> lock(m_systemMutex);
    bool changed = false;
    UpdateInterfaceList("ForceIp", &changed);
    EnumerateInterfaces();
    int32_t status = GenTL::GC_ERR_INVALID_ID;
    for (Interface* iface : m_interfaces) {
        status = iface->GetTLInterface()->ForceIp(mac, static_cast<uint32_t>(ip),
                                                  static_cast<uint32_t>(subnet),
                                                  static_cast<uint32_t>(gateway));
        if (status == GenTL::GC_ERR_SUCCESS)
            return;
        if (status != GenTL::GC_ERR_INVALID_ID)
            break;
    }
    if (m_interfaces.empty())
        ThrowLibraryError<GenICam::LogicalErrorException>("Camera Interface not found",
                                                          ORVAN_SITE("System", "ForceIp"));
    ThrowGenTLError(status, "Unable to force IP address", ORVAN_SITE("System", "ForceIp"),
                    "IFForceIp");
}

void System::ForceIp(const char* mac, const char* ip, const char* subnet, const char* gateway) {
    const ErrorSite site = ORVAN_SITE("System", "ForceIp");
    unsigned char bytes[6] = {};
    int consumed = 0;
    if (!mac ||
        std::sscanf(mac, "%hhx:%hhx:%hhx:%hhx:%hhx:%hhx%n", &bytes[0], &bytes[1], &bytes[2],
                    &bytes[3], &bytes[4], &bytes[5], &consumed) != 6 ||
        mac[consumed] != '\0')
        ThrowLibraryError<GenICam::InvalidArgumentException>("Bad MAC address", site);
    uint64_t macValue = 0;
    for (unsigned char byte : bytes)
        macValue = macValue << 8 | byte;
    ForceIp(macValue, ParseIpv4(ip, site), ParseIpv4(subnet, site), ParseIpv4(gateway, site));
}

void System::RegisterDeviceDisconnectCallback(IDevice* device, IDisconnectCallback* callback) {
    m_cbManager.RegisterCallback(device, callback);
}

void System::DeregisterDeviceDisconnectCallback(IDisconnectCallback* callback) {
    m_cbManager.DeregisterCallback(callback);
}

void System::DeregisterAllDeviceDisconnectCallbacks() {
    m_cbManager.DeregisterAllCallbacks();
}

// With the system mutex held: the interface whose address is the one the host routes the
// camera address through.
TLInterface* System::RouteInterface(const char* ip, const char* function, uint32_t* camera) {
    const ErrorSite site = ORVAN_SITE("System", function);
    const uint32_t local = BestRouteAddress(ip, site, camera);
    for (Interface* iface : m_interfaces) {
        GenApi::INodeMap* nodeMap = iface->GetNodeMap();
        GenApi::CIntegerPtr address =
            nodeMap ? nodeMap->GetNode("GevInterfaceSubnetIPAddress") : nullptr;
        if (GenApi::IsReadable(address) && static_cast<uint32_t>(address->GetValue()) == local)
            return iface->GetTLInterface();
    }
    ThrowLibraryError<GenICam::LogicalErrorException>("Camera Interface not found", site);
}

void System::AddUnicastDiscoveryDevice(const char* ip) {
    std::lock_guard<std::mutex> lock(m_systemMutex);
    uint32_t camera = 0;
    TLInterface* iface = RouteInterface(ip, "AddUnicastDiscoveryDevice", &camera);
    int32_t status = iface->AddUnicastDiscoveryDevice(camera);
    // The add reports with the remove's text, as applications already match on it.
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowLibraryError<GenICam::LogicalErrorException>(
            "GenTL::System::RemoveUnicastDiscoveryDevice() failed. Error: [" +
                std::to_string(status) + "].",
            ORVAN_SITE("System", "AddUnicastDiscoveryDevice"));
}

void System::RemoveUnicastDiscoveryDevice(const char* ip) {
    std::lock_guard<std::mutex> lock(m_systemMutex);
    uint32_t camera = 0;
    TLInterface* iface = RouteInterface(ip, "RemoveUnicastDiscoveryDevice", &camera);
    int32_t status = iface->RemoveUnicastDiscoveryDevice(camera);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowLibraryError<GenICam::LogicalErrorException>(
            "GenTL::System::RemoveUnicastDiscoveryDevice() failed. Error: [" +
                std::to_string(status) + "].",
            ORVAN_SITE("System", "RemoveUnicastDiscoveryDevice"));
}

std::vector<GenICam::gcstring> System::GetUnicastDiscoveryDevices() {
    std::lock_guard<std::mutex> lock(m_systemMutex);
    std::vector<GenICam::gcstring> addresses;
    for (Interface* iface : m_interfaces) {
        std::vector<uint32_t> ips;
        int32_t status = ReadUnicastList(iface->GetTLInterface(), ips);
        if (status != GenTL::GC_ERR_SUCCESS)
            ThrowLibraryError<GenICam::LogicalErrorException>(
                "GenTL::System::GetUnicastDiscoveryDevices() failed. Error: [" +
                    std::to_string(status) + "].",
                ORVAN_SITE("System", "GetUnicastDiscoveryDevices"));
        for (uint32_t address : ips)
            addresses.push_back(Ipv4Text(address).c_str());
    }
    return addresses;
}

} // namespace Orvan
