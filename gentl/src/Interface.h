// An interface module (IF_HANDLE): the cameras it discovers, opening them, and the GigE Vision
// network extensions (ForceIP, unicast discovery).
#ifndef ORVAN_GENTL_INTERFACE_H
#define ORVAN_GENTL_INTERFACE_H

#include "LocalPort.h"
#include "Module.h"
#include "RemoteDevice.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace Orvan {
namespace Producer {

class Device;
class System;

class Interface : public Module {
public:
    struct Address {
        uint64_t mac;
        uint32_t ip;
        uint32_t subnet;
    };

    static std::shared_ptr<Interface> Create(const std::shared_ptr<System>& system,
                                             const std::string& id, const Address& address,
                                             std::vector<std::shared_ptr<RemoteDevice>> cameras);
    ~Interface() override;

    GenTL::IF_HANDLE Handle() const { return m_handle; }
    GenTL::TL_HANDLE ParentHandle() const { return m_parentHandle; }
    Port& GetPort() override { return m_port; }
    void Close();

    InfoValue Info(GenTL::INTERFACE_INFO_CMD cmd) const;
    bool UpdateDeviceList();
    uint32_t NumDevices() const;
    std::string DeviceId(uint32_t index) const;
    InfoValue DeviceInfo(const std::string& deviceId, GenTL::DEVICE_INFO_CMD cmd) const;
    GenTL::DEV_HANDLE OpenDevice(const std::string& deviceId, GenTL::DEVICE_ACCESS_FLAGS flags);
    // Called by a device module as it closes.
    void Forget(const Device* closed);

    void ForceIp(uint64_t mac, uint32_t ip, uint32_t subnet, uint32_t gateway);
    void AddUnicastDevice(uint32_t ip);
    void RemoveUnicastDevice(uint32_t ip);
    std::vector<uint32_t> UnicastDevices() const;

    void NotifyConnection(const std::string& deviceId, bool connected);

private:
    Interface(const std::string& id, const Address& address,
              std::vector<std::shared_ptr<RemoteDevice>> cameras);
    void Describe();
    std::shared_ptr<RemoteDevice> Discovered(const std::string& deviceId) const;
    int32_t AccessStatus(const std::string& deviceId) const;
    std::shared_ptr<RemoteDevice> SelectedDevice() const;

    const std::string m_id;
    const Address m_address;
    const std::vector<std::shared_ptr<RemoteDevice>> m_cameras;
    std::weak_ptr<System> m_system;
    GenTL::TL_HANDLE m_parentHandle = nullptr;
    GenTL::IF_HANDLE m_handle = nullptr;
    LocalPort m_port;

    mutable std::mutex m_mutex;
    std::vector<std::shared_ptr<RemoteDevice>> m_discovered;
    std::map<std::string, std::shared_ptr<Device>> m_open;
    std::vector<uint32_t> m_unicast;
    bool m_closed = false;
    std::atomic<uint32_t> m_deviceSelector{0};
};

} // namespace Producer
} // namespace Orvan

#endif
