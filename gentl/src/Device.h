// A device module (DEV_HANDLE): one opened camera, its remote port, its data streams and the
// camera's event channel.
#ifndef ORVAN_GENTL_DEVICE_H
#define ORVAN_GENTL_DEVICE_H

#include "LocalPort.h"
#include "Module.h"
#include "RemoteDevice.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>

namespace Orvan {
namespace Producer {

class DataStream;
class Interface;
class RemotePort;

class Device : public Module, public EventSink {
public:
    static std::shared_ptr<Device> Create(const std::shared_ptr<Interface>& parent,
                                          std::shared_ptr<RemoteDevice> camera,
                                          GenTL::DEVICE_ACCESS_FLAGS flags);
    ~Device() override;

    GenTL::DEV_HANDLE Handle() const { return m_handle; }
    GenTL::IF_HANDLE ParentHandle() const { return m_parentHandle; }
    Port& GetPort() override { return m_port; }
    void Close();

    int32_t AccessStatus() const;
    InfoValue Info(GenTL::DEVICE_INFO_CMD cmd) const;
    GenTL::PORT_HANDLE RemotePortHandle() const { return m_remoteHandle; }
    uint32_t NumStreams() const { return m_camera->StreamCount(); }
    std::string StreamId(uint32_t index) const;
    GenTL::DS_HANDLE OpenStream(const std::string& id);
    // Called by a data stream as it closes.
    void Forget(const DataStream* closed);
    void SendActionCommand(uint32_t deviceKey, uint32_t groupKey, uint32_t groupMask,
                           uint64_t scheduledTime);

    // Throws GC_ERR_IO when the camera no longer answers.
    void RequireConnected() const;
    void NotifyConnection(bool connected);

    void DeliverRemoteEvent(const void* data, size_t size) override;

protected:
    std::shared_ptr<Event> MakeEvent(GenTL::EVENT_TYPE type) override;
    void EventRegistered(GenTL::EVENT_TYPE type) override;
    void EventUnregistered(GenTL::EVENT_TYPE type) override;

private:
    Device(std::shared_ptr<RemoteDevice> camera, GenTL::DEVICE_ACCESS_FLAGS flags);
    void Describe();

    const std::shared_ptr<RemoteDevice> m_camera;
    const GenTL::DEVICE_ACCESS_FLAGS m_flags;
    std::weak_ptr<Interface> m_parent;
    GenTL::IF_HANDLE m_parentHandle = nullptr;
    GenTL::DEV_HANDLE m_handle = nullptr;
    std::shared_ptr<RemotePort> m_remote;
    GenTL::PORT_HANDLE m_remoteHandle = nullptr;
    LocalPort m_port;

    mutable std::mutex m_mutex;
    std::map<uint32_t, std::shared_ptr<DataStream>> m_streams;
    bool m_closed = false;
    std::atomic<bool> m_multipartImplemented{false};
    std::atomic<bool> m_multipartEnabled{false};
};

} // namespace Producer
} // namespace Orvan

#endif
