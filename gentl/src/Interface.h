// An interface module (IF_HANDLE): the cameras it discovers, opening them, and the GigE Vision
// network extensions (ForceIP, unicast discovery).
#ifndef ORVAN_GENTL_INTERFACE_H
#define ORVAN_GENTL_INTERFACE_H

#include "InterfaceBackend.h"
#include "LocalPort.h"
#include "Module.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <vector>

namespace Orvan {
namespace Producer {

class Device;
class System;

class Interface : public Module {
public:
    static std::shared_ptr<Interface> Create(const std::shared_ptr<System>& system,
                                             std::shared_ptr<InterfaceBackend> backend);
    ~Interface() override;

    GenTL::IF_HANDLE Handle() const { return m_handle; }
    GenTL::TL_HANDLE ParentHandle() const { return m_parentHandle; }
    Port& GetPort() override { return m_port; }
    void Close();

    // INTERFACE_INFO_* of an interface, open or not (TLGetInterfaceInfo and IFGetInfo).
    static InfoValue InfoOf(const InterfaceBackend& backend, GenTL::INTERFACE_INFO_CMD cmd);
    InfoValue Info(GenTL::INTERFACE_INFO_CMD cmd) const { return InfoOf(*m_backend, cmd); }
    // GENTL_INFINITE waits a default time: discovery cannot know when every camera answered.
    bool UpdateDeviceList(uint64_t timeoutMs);
    uint32_t NumDevices() const;
    std::string DeviceId(uint32_t index) const;
    InfoValue DeviceInfo(const std::string& deviceId, GenTL::DEVICE_INFO_CMD cmd);
    GenTL::DEV_HANDLE OpenDevice(const std::string& deviceId, GenTL::DEVICE_ACCESS_FLAGS flags);
    // Called by a device module as it closes.
    void Forget(const Device* closed);

    void ForceIp(uint64_t mac, uint32_t ip, uint32_t subnet, uint32_t gateway);
    void AddUnicastDevice(uint32_t ip);
    void RemoveUnicastDevice(uint32_t ip);
    std::vector<uint32_t> UnicastDevices() const;

    void NotifyConnection(const std::string& deviceId, bool connected);

private:
    explicit Interface(std::shared_ptr<InterfaceBackend> backend);
    void Describe();
    std::shared_ptr<RemoteDevice> Discovered(const std::string& deviceId) const;
    std::shared_ptr<RemoteDevice> Reported(const std::string& deviceId);
    int32_t AccessStatus(const std::string& deviceId) const;
    std::shared_ptr<RemoteDevice> SelectedDevice() const;

    const std::shared_ptr<InterfaceBackend> m_backend;
    const std::string m_id;
    std::weak_ptr<System> m_system;
    GenTL::TL_HANDLE m_parentHandle = nullptr;
    GenTL::IF_HANDLE m_handle = nullptr;
    LocalPort m_port;

    mutable std::mutex m_mutex;
    std::vector<std::shared_ptr<RemoteDevice>> m_discovered;
    std::map<std::string, std::shared_ptr<Device>> m_open;
    std::set<std::string> m_opening; // reserved while their camera opens
    std::vector<uint32_t> m_unicast;
    bool m_closed = false;
    std::atomic<uint32_t> m_deviceSelector{0};
};

} // namespace Producer
} // namespace Orvan

#endif
