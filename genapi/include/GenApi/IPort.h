// Register access to a device or module. Transport layers implement IPort; the node map's port
// nodes implement IPortConstruct and forward to the port connected to them.
#ifndef GENAPI_IPORT_H
#define GENAPI_IPORT_H

#include <GenApi/IBase.h>

namespace GenApi {

struct IPort : virtual public IBase {
    virtual void Read(void* buffer, int64_t address, int64_t length) = 0;
    virtual void Write(const void* buffer, int64_t address, int64_t length) = 0;
};

struct IPortConstruct : virtual public IPort {
    virtual void SetPortImpl(IPort* port) = 0;
    virtual EYesNo GetSwapEndianess() = 0;
};

} // namespace GenApi

#endif
