#include "RemotePort.h"

#include "GenTLError.h"

namespace Orvan {
namespace Producer {

namespace {

void Check(GenTL::GC_ERROR status, size_t done, size_t wanted, const char* what) {
    if (status != GenTL::GC_ERR_SUCCESS)
        throw GenTLError(status, std::string("The camera refused the ") + what);
    if (done != wanted)
        throw GenTLError(GenTL::GC_ERR_IO,
                         std::string("The camera transferred only part of the ") + what);
}

} // namespace

void RemotePort::Read(uint64_t address, void* data, size_t size) {
    if (!m_readable)
        throw GenTLError(GenTL::GC_ERR_ACCESS_DENIED, "The device was opened without access");
    size_t done = size;
    Check(m_camera->ReadPort(address, data, &done), done, size, "register read");
}

void RemotePort::Write(uint64_t address, const void* data, size_t size) {
    if (!m_writable)
        throw GenTLError(GenTL::GC_ERR_ACCESS_DENIED, "The device was opened without write access");
    size_t done = size;
    Check(m_camera->WritePort(address, data, &done), done, size, "register write");
}

DescriptionLocation RemotePort::Description() const {
    DescriptionLocation location;
    location.url = m_camera->DescriptionUrl();
    m_camera->DescriptionVersions(location.schemaMajor, location.schemaMinor, location.fileMajor,
                                  location.fileMinor, location.fileSubminor);
    return location;
}

PortIdentity RemotePort::Identity() const {
    const DeviceIdentity& camera = m_camera->Identity();
    PortIdentity identity;
    identity.id = camera.id;
    identity.vendor = camera.vendor;
    identity.model = camera.model;
    identity.tlType = camera.tlType;
    identity.module = TLRemoteDeviceModuleName;
    identity.portName = "Device";
    identity.version = camera.version;
    identity.littleEndian = false; // GigE Vision register spaces are big-endian
    identity.readable = m_readable;
    identity.writable = m_writable;
    return identity;
}

} // namespace Producer
} // namespace Orvan
