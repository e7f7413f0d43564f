// The register port through which a module's node map reads and writes that module.
#ifndef ORVAN_CORE_PORT_H
#define ORVAN_CORE_PORT_H

#include "TLBase.h"

#include <GenApi/IPort.h>

namespace Orvan {

class Port : public GenApi::IPort {
public:
    Port() = default;
    explicit Port(TLBase* module) : m_module(module) {}

    GenApi::EAccessMode GetAccessMode() const override;
    ~Port() override;
    void Read(void* buffer, int64_t address, int64_t length) override;
    void Write(const void* buffer, int64_t address, int64_t length) override;

private:
    TLBase* m_module = nullptr; // not owned
};

} // namespace Orvan

#endif
