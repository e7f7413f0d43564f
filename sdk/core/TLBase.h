// The common wrapper of a producer handle: the register-port and event functions that every
// GenTL module answers.
#ifndef ORVAN_CORE_TLBASE_H
#define ORVAN_CORE_TLBASE_H

#include <GenTL/GenTL.h>

#include <cstddef>
#include <cstdint>

namespace Orvan {

// Forwards one to one to the producer and returns its code untouched; callers translate. The
// destructor never closes the handle: the owner calls Close() first, so that a failed close
// stays visible to it.
class TLBase {
public:
    TLBase() = default;
    explicit TLBase(void* handle) : m_handle(handle) {}
    TLBase(const TLBase&) = delete;
    TLBase& operator=(const TLBase&) = delete;
    virtual ~TLBase();

    virtual int32_t ReadPort(uint64_t address, void* buffer, size_t* size);
    virtual int32_t WritePort(uint64_t address, const void* buffer, size_t* size);
    virtual int32_t GetPortURL(char* url, size_t* size);
    virtual int32_t GetPortInfo(int32_t cmd, int32_t* type, void* buffer, size_t* size);
    virtual int32_t RegisterEvent(int32_t eventType, void** eventHandle);
    virtual int32_t UnregisterEvent(int32_t eventType);
    virtual int32_t GetNumPortURLs(uint32_t* count);
    virtual int32_t GetPortURLInfo(uint32_t index, int32_t cmd, int32_t* type, void* buffer,
                                   size_t* size);
    virtual int32_t ReadPortStacked(GenTL::S_PORT_REGISTER_STACK_ENTRY* entries, size_t* count);
    virtual int32_t WritePortStacked(GenTL::S_PORT_REGISTER_STACK_ENTRY* entries, size_t* count);
    virtual void* GetHandle();

protected:
    void* m_handle = nullptr;
};

} // namespace Orvan

#endif
