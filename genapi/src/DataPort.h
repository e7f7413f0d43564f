// The IPort behind a chunk or event port node: a window on the chunk inside the attached
// buffer, or a private copy of a cached chunk or a delivered event. Unavailable (NA) while it
// holds nothing, read-only otherwise: chunk and event data report what the camera sent.
#ifndef ORVAN_GENAPI_DATAPORT_H
#define ORVAN_GENAPI_DATAPORT_H

#include <GenApi/IPort.h>

#include <cstdint>
#include <vector>

namespace GenApi {
namespace detail {

class DataPort : public IPort {
public:
    EAccessMode GetAccessMode() const override { return m_attached ? RO : NA; }
    // Throws OutOfRangeException for bytes outside the data, AccessException while empty.
    void Read(void* buffer, int64_t address, int64_t length) override;
    void Write(const void* buffer, int64_t address, int64_t length) override;

    void AttachView(const uint8_t* base, int64_t offset, int64_t length);
    void AttachCopy(const uint8_t* data, int64_t length);
    void Detach();
    bool Attached() const { return m_attached; }
    bool IsCopy() const { return m_attached && m_isCopy; }
    // A view follows its buffer to a new address; a copy has no buffer.
    void Rebase(const uint8_t* base);

private:
    const uint8_t* Data() const { return m_isCopy ? m_copy.data() : m_base + m_offset; }

    bool m_attached = false;
    bool m_isCopy = false;
    const uint8_t* m_base = nullptr;
    int64_t m_offset = 0;
    int64_t m_length = 0;
    std::vector<uint8_t> m_copy;
};

} // namespace detail
} // namespace GenApi

#endif
