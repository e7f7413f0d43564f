// The producer's system module.
#ifndef ORVAN_CORE_TLSYSTEM_H
#define ORVAN_CORE_TLSYSTEM_H

#include "TLBase.h"

namespace Orvan {

class TLSystem : public TLBase {
public:
    using TLBase::TLBase;

    // Opens the producer's system module into this wrapper's own handle.
    virtual int32_t Open();
    virtual int32_t Close();
    virtual int32_t GetInfo(int32_t cmd, int32_t* type, void* buffer, size_t* size);
    virtual int32_t GetNumInterfaces(uint32_t* count);
    virtual int32_t GetInterfaceID(uint32_t index, char* id, size_t* size);
    virtual int32_t GetInterfaceInfo(const char* id, int32_t cmd, int32_t* type, void* buffer,
                                     size_t* size);
    virtual int32_t OpenInterface(const char* id, void** handle);
    virtual int32_t UpdateInterfaceList(bool* changed, uint64_t timeout);
};

} // namespace Orvan

#endif
