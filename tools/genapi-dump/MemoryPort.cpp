#include "MemoryPort.h"

uint8_t MemoryPort::Initial(int64_t address) const {
    if (m_fill == Fill::Zero)
        return 0;
    // Unsigned arithmetic, so that negative and huge addresses wrap instead of overflowing.
    return static_cast<uint8_t>(static_cast<uint64_t>(address) * 151u + 17u);
}

void MemoryPort::Read(void* buffer, int64_t address, int64_t length) {
    auto* bytes = static_cast<uint8_t*>(buffer);
    for (int64_t i = 0; i < length; ++i) {
        int64_t at =
            static_cast<int64_t>(static_cast<uint64_t>(address) + static_cast<uint64_t>(i));
        auto written = m_written.find(at);
        bytes[i] = written == m_written.end() ? Initial(at) : written->second;
    }
}

void MemoryPort::Write(const void* buffer, int64_t address, int64_t length) {
    const auto* bytes = static_cast<const uint8_t*>(buffer);
    for (int64_t i = 0; i < length; ++i)
        m_written[static_cast<int64_t>(static_cast<uint64_t>(address) + static_cast<uint64_t>(i))] =
            bytes[i];
}
