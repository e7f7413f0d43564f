// An interface module of the producer (a network adapter or another transport).
#ifndef ORVAN_CORE_TLINTERFACE_H
#define ORVAN_CORE_TLINTERFACE_H

#include "TLBase.h"

namespace Orvan {

class TLInterface : public TLBase {
public:
    using TLBase::TLBase;

    virtual int32_t Close();
    virtual int32_t UpdateDeviceList(bool* changed, uint64_t timeout);
    virtual int32_t GetInfo(int32_t cmd, int32_t* type, void* buffer, size_t* size);
    virtual int32_t GetNumDevices(uint32_t* count);
    virtual int32_t GetDeviceID(uint32_t index, char* id, size_t* size);
    virtual int32_t GetDeviceInfo(const char* id, int32_t cmd, int32_t* type, void* buffer,
                                  size_t* size);
    virtual int32_t OpenDevice(const char* id, int32_t accessFlags, void** handle);
    virtual int32_t ForceIp(uint64_t mac, uint32_t ip, uint32_t subnet, uint32_t gateway);
    virtual int32_t AddUnicastDiscoveryDevice(uint32_t ip);
    virtual int32_t RemoveUnicastDiscoveryDevice(uint32_t ip);
    virtual int32_t GetUnicastDiscoveryDevices(uint32_t* ips, uint32_t* count);
};

} // namespace Orvan

#endif
