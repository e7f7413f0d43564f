// A register space in memory: unwritten addresses read as a fill pattern, writes are kept.
#ifndef ORVAN_TOOLS_MEMORYPORT_H
#define ORVAN_TOOLS_MEMORYPORT_H

#include <GenApi/IPort.h>

#include <unordered_map>

class MemoryPort : public GenApi::IPort {
public:
    enum class Fill { Pattern, Zero };

    explicit MemoryPort(Fill fill) : m_fill(fill) {}

    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
    void Read(void* buffer, int64_t address, int64_t length) override;
    void Write(const void* buffer, int64_t address, int64_t length) override;

private:
    uint8_t Initial(int64_t address) const;

    Fill m_fill;
    std::unordered_map<int64_t, uint8_t> m_written;
};

#endif
