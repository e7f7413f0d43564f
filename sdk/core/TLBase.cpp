#include "TLBase.h"

namespace Orvan {

TLBase::~TLBase() = default;

int32_t TLBase::ReadPort(uint64_t address, void* buffer, size_t* size) {
    return GenTL::GCReadPort(m_handle, address, buffer, size);
}

int32_t TLBase::WritePort(uint64_t address, const void* buffer, size_t* size) {
    return GenTL::GCWritePort(m_handle, address, buffer, size);
}

int32_t TLBase::GetPortURL(char* url, size_t* size) {
    return GenTL::GCGetPortURL(m_handle, url, size);
}

int32_t TLBase::GetPortInfo(int32_t cmd, int32_t* type, void* buffer, size_t* size) {
    return GenTL::GCGetPortInfo(m_handle, cmd, type, buffer, size);
}

int32_t TLBase::RegisterEvent(int32_t eventType, void** eventHandle) {
    return GenTL::GCRegisterEvent(m_handle, eventType, eventHandle);
}

int32_t TLBase::UnregisterEvent(int32_t eventType) {
    return GenTL::GCUnregisterEvent(m_handle, eventType);
}

int32_t TLBase::GetNumPortURLs(uint32_t* count) {
    return GenTL::GCGetNumPortURLs(m_handle, count);
}

int32_t TLBase::GetPortURLInfo(uint32_t index, int32_t cmd, int32_t* type, void* buffer,
                               size_t* size) {
    return GenTL::GCGetPortURLInfo(m_handle, index, cmd, type, buffer, size);
}

int32_t TLBase::ReadPortStacked(GenTL::S_PORT_REGISTER_STACK_ENTRY* entries, size_t* count) {
    return GenTL::GCReadPortStacked(m_handle, entries, count);
}

int32_t TLBase::WritePortStacked(GenTL::S_PORT_REGISTER_STACK_ENTRY* entries, size_t* count) {
    return GenTL::GCWritePortStacked(m_handle, entries, count);
}

void* TLBase::GetHandle() {
    return m_handle;
}

} // namespace Orvan
