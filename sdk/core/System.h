#ifndef ORVAN_CORE_SYSTEM_H
#define ORVAN_CORE_SYSTEM_H

#include <Orvan/System.h>

namespace Orvan {

// Owns the producer's system module handle between OpenSystem and CloseSystem.
class System : public ISystem {
public:
    explicit System(void* systemHandle) : m_systemHandle(systemHandle) {}
    ~System() override;

private:
    void* m_systemHandle;
};

} // namespace Orvan

#endif
