// The system object: the SDK's entry point, and the functions that open and close it.
#ifndef ORVAN_SYSTEM_H
#define ORVAN_SYSTEM_H

#include <Base/GCString.h>

namespace Orvan {

class ISystem {
public:
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
