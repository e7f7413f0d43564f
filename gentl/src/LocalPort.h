// The port of a producer module: its register space and generated description.
#ifndef ORVAN_GENTL_LOCALPORT_H
#define ORVAN_GENTL_LOCALPORT_H

#include "ModuleDescription.h"
#include "Port.h"
#include "RegisterSpace.h"

namespace Orvan {
namespace Producer {

class LocalPort : public Port {
public:
    explicit LocalPort(PortIdentity identity) : m_identity(std::move(identity)) {}

    // Binds the module's features; called once, while the module is built.
    void Describe(const ModuleDescription& description) { m_url = description.Build(m_space); }

    void Read(uint64_t address, void* data, size_t size) override;
    void Write(uint64_t address, const void* data, size_t size) override;
    DescriptionLocation Description() const override;
    PortIdentity Identity() const override { return m_identity; }

private:
    PortIdentity m_identity;
    RegisterSpace m_space;
    // Set while the module is built, read-only after: accesses need no lock of their own (the
    // bound values lock their module).
    std::string m_url;
};

} // namespace Producer
} // namespace Orvan

#endif
