#include "DataPort.h"

#include <Base/GCException.h>

#include <cinttypes>
#include <cstring>

namespace GenApi {
namespace detail {

void DataPort::Read(void* buffer, int64_t address, int64_t length) {
    if (!m_attached)
        throw ACCESS_EXCEPTION("No chunk or event data is attached to the port");
    if (address < 0 || length < 0 || address > m_length || length > m_length - address)
        throw OUT_OF_RANGE_EXCEPTION("Reading %" PRId64 " bytes at %" PRId64 " leaves the %" PRId64
                                     " bytes of attached data",
                                     length, address, m_length);
    if (length > 0)
        std::memcpy(buffer, Data() + address, static_cast<size_t>(length));
}

void DataPort::Write(const void*, int64_t, int64_t) {
    throw ACCESS_EXCEPTION("Chunk and event data cannot be written");
}

void DataPort::AttachView(const uint8_t* base, int64_t offset, int64_t length) {
    m_copy.clear();
    m_base = base;
    m_offset = offset;
    m_length = length;
    m_isCopy = false;
    m_attached = true;
}

void DataPort::AttachCopy(const uint8_t* data, int64_t length) {
    m_copy.assign(data, data + length);
    m_base = nullptr;
    m_offset = 0;
    m_length = length;
    m_isCopy = true;
    m_attached = true;
}

void DataPort::Detach() {
    m_attached = false;
    m_isCopy = false;
    m_base = nullptr;
    m_length = 0;
    m_copy.clear();
}

void DataPort::Rebase(const uint8_t* base) {
    if (m_attached && !m_isCopy)
        m_base = base;
}

} // namespace detail
} // namespace GenApi
