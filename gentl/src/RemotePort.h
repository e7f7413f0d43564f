// The port of the remote device (DevGetPort): the camera's own register space, reached through
// the transport, with the access the device was opened with.
#ifndef ORVAN_GENTL_REMOTEPORT_H
#define ORVAN_GENTL_REMOTEPORT_H

#include "Module.h"
#include "RemoteDevice.h"

#include <memory>

namespace Orvan {
namespace Producer {

class RemotePort : public Module, public Port {
public:
    RemotePort(std::shared_ptr<RemoteDevice> camera, bool readable, bool writable)
        : m_camera(std::move(camera)), m_readable(readable), m_writable(writable) {}

    Port& GetPort() override { return *this; }

    void Read(uint64_t address, void* data, size_t size) override;
    void Write(uint64_t address, const void* data, size_t size) override;
    DescriptionLocation Description() const override;
    PortIdentity Identity() const override;

protected:
    std::shared_ptr<Event> MakeEvent(GenTL::EVENT_TYPE) override { return nullptr; }

private:
    std::shared_ptr<RemoteDevice> m_camera;
    const bool m_readable;
    const bool m_writable;
};

} // namespace Producer
} // namespace Orvan

#endif
