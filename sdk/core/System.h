// The one system of the process: the producer's system module, its interfaces and node map.
#ifndef ORVAN_CORE_SYSTEM_H
#define ORVAN_CORE_SYSTEM_H

#include "Interface.h"
#include "Port.h"
#include "TLSystem.h"
#include "device/DeviceCbManager.h"
#include "log/ALogger.h"

#include <Orvan/System.h>

#include <memory>
#include <mutex>
#include <vector>

namespace Orvan {

class System : public ISystem {
public:
    // Takes the opened system module, enumerates its interfaces, builds its node map and turns
    // the image factory on.
    explicit System(std::unique_ptr<TLSystem> tlSystem);
    System(const System&) = delete;
    System& operator=(const System&) = delete;

    std::vector<InterfaceInfo> GetInterfaces() override;
    void UpdateDevices(uint64_t timeout) override;
    void UpdateDevices(InterfaceInfo interfaceInfo, uint64_t timeout) override;
    std::vector<DeviceInfo> GetDevices() override;
    IDevice* CreateDevice(DeviceInfo deviceInfo) override;
    void DestroyDevice(IDevice* device) override;
    GenApi::INodeMap* GetTLSystemNodeMap() override;
    GenApi::INodeMap* GetTLInterfaceNodeMap(DeviceInfo deviceInfo) override;
    void ForceIp(uint64_t mac, uint64_t ip, uint64_t subnet, uint64_t gateway) override;
    void ForceIp(const char* mac, const char* ip, const char* subnet, const char* gateway) override;
    void RegisterDeviceDisconnectCallback(IDevice* device, IDisconnectCallback* callback) override;
    void DeregisterDeviceDisconnectCallback(IDisconnectCallback* callback) override;
    void DeregisterAllDeviceDisconnectCallbacks() override;
    void AddUnicastDiscoveryDevice(const char* ip) override;
    void RemoveUnicastDiscoveryDevice(const char* ip) override;
    std::vector<GenICam::gcstring> GetUnicastDiscoveryDevices() override;
    ~System() override;

private:
    // These three run with the system mutex held.
    void EnumerateInterfaces();
    Interface* OpenInterface(const GenICam::gcstring& id);
    void UpdateInterfaceList(const char* function, bool* changed);
    // Refreshes the producer's interface list under the system mutex, enumerating again when it
    // changed or is empty, and returns the interfaces to refresh (all, or the one with onlyId).
    std::vector<TLInterface*> RefreshInterfaces(const GenICam::gcstring* onlyId);
    // Runs the device-list refreshes of the given interfaces on one thread each.
    void UpdateDeviceLists(const std::vector<TLInterface*>& interfaces, uint64_t timeout);
    void AppendDevices(Interface* iface, std::vector<DeviceInfo>& devices);
    // These two run with the system mutex held.
    Interface* FindInterface(const DeviceInfo& info, const char* function);
    TLInterface* RouteInterface(const char* ip, const char* function, uint32_t* camera);

    std::unique_ptr<TLSystem> m_tlSystem;
    std::vector<Interface*> m_interfaces; // owned
    GenApi::INodeMap* m_nodeMap = nullptr;
    Port m_port;
    std::mutex m_systemMutex;
    std::mutex m_updateMutex; // taken before m_systemMutex
    ALogger m_logger;
    DeviceCbManager m_cbManager;
};

} // namespace Orvan

#endif
