// The system object: the SDK's entry point, and the functions that open and close it.
#ifndef ORVAN_SYSTEM_H
#define ORVAN_SYSTEM_H

#include <Base/GCString.h>
#include <GenApi/INodeMap.h>
#include <Orvan/DeviceInfo.h>
#include <Orvan/InterfaceInfo.h>

#include <cstdint>
#include <vector>

namespace Orvan {

class IDevice;
class IDisconnectCallback;

class ISystem {
public:
    // Refreshes the producer's interface list and describes every interface the system holds.
    virtual std::vector<InterfaceInfo> GetInterfaces() = 0;
    // Refreshes the interface list, then every interface's device list in parallel, waiting up
    // to timeout milliseconds per interface. Fails only when every interface failed.
    virtual void UpdateDevices(uint64_t timeout) = 0;
    // The same for the one interface that the record names.
    virtual void UpdateDevices(InterfaceInfo interfaceInfo, uint64_t timeout) = 0;
    // Every device of every interface as the producer last reported them.
    virtual std::vector<DeviceInfo> GetDevices() = 0;
    virtual IDevice* CreateDevice(DeviceInfo deviceInfo) = 0;
    virtual void DestroyDevice(IDevice* device) = 0;
    virtual GenApi::INodeMap* GetTLSystemNodeMap() = 0;
    virtual GenApi::INodeMap* GetTLInterfaceNodeMap(DeviceInfo deviceInfo) = 0;
    virtual void ForceIp(uint64_t mac, uint64_t ip, uint64_t subnet, uint64_t gateway) = 0;
    virtual void ForceIp(const char* mac, const char* ip, const char* subnet,
                         const char* gateway) = 0;
    virtual void RegisterDeviceDisconnectCallback(IDevice* device,
                                                  IDisconnectCallback* callback) = 0;
    virtual void DeregisterDeviceDisconnectCallback(IDisconnectCallback* callback) = 0;
    virtual void DeregisterAllDeviceDisconnectCallbacks() = 0;
    virtual void AddUnicastDiscoveryDevice(const char* ip) = 0;
    virtual void RemoveUnicastDiscoveryDevice(const char* ip) = 0;
    virtual std::vector<GenICam::gcstring> GetUnicastDiscoveryDevices() = 0;
    virtual ~ISystem() = default;
};

// Initialises the transport layer and returns the one system of the process. The caller owns
// it and gives it back to CloseSystem.
ISystem* OpenSystem();

// Destroys the system and de-initialises the transport layer.
void CloseSystem(ISystem* system);

// The SDK's version text.
GenICam::gcstring GetVersion();

} // namespace Orvan

#endif
