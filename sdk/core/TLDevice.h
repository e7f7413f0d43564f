// A device module of the producer: the local side of an opened camera.
#ifndef ORVAN_CORE_TLDEVICE_H
#define ORVAN_CORE_TLDEVICE_H

#include "TLBase.h"

namespace Orvan {

class TLDevice : public TLBase {
public:
    using TLBase::TLBase;

    virtual int32_t Close();
    virtual int32_t GetInfo(int32_t cmd, int32_t* type, void* buffer, size_t* size);
    // The remote camera's port, for its own description and registers.
    virtual int32_t GetPort(void** portHandle);
    virtual int32_t GetNumDataStreams(uint32_t* count);
    virtual int32_t GetDataStreamID(uint32_t index, char* id, size_t* size);
    virtual int32_t OpenDataStream(const char* id, void** handle);
    virtual int32_t SendActionCommand(uint32_t deviceKey, uint32_t groupKey, uint32_t groupMask,
                                      uint64_t scheduledTime);
};

} // namespace Orvan

#endif
