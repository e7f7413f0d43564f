// A registered event of a module. It has no Close(): the module that registered it releases it
// with UnregisterEvent.
#ifndef ORVAN_CORE_TLEVENT_H
#define ORVAN_CORE_TLEVENT_H

#include "TLBase.h"

namespace Orvan {

class TLEvent : public TLBase {
public:
    using TLBase::TLBase;

    virtual int32_t GetData(void* buffer, size_t* size, uint64_t timeout);
    virtual int32_t GetDataInfo(const void* buffer, size_t size, int32_t cmd, int32_t* type,
                                void* out, size_t* outSize);
    virtual int32_t GetInfo(int32_t cmd, int32_t* type, void* buffer, size_t* size);
    virtual int32_t Flush();
    // Ends one pending GetData with GC_ERR_ABORT.
    virtual int32_t Kill();
};

} // namespace Orvan

#endif
