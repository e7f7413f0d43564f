#include "RegisterSpace.h"

#include "GenTLError.h"

#include <cstring>
#include <vector>

namespace Orvan {
namespace Producer {

namespace {

GenTLError BadAddress(uint64_t address, size_t size) {
    return GenTLError(
        GenTL::GC_ERR_INVALID_ADDRESS,
        "No register covers " + std::to_string(size) + " bytes at address 0x" + [&] {
            char text[20];
            std::snprintf(text, sizeof(text), "%llX", static_cast<unsigned long long>(address));
            return std::string(text);
        }());
}

} // namespace

void RegisterSpace::Add(uint64_t address, size_t length, Reader reader, Writer writer) {
    m_registers[address] = Register{length, std::move(reader), std::move(writer)};
}

void RegisterSpace::SetFile(uint64_t address, std::string bytes) {
    m_fileAddress = address;
    m_file = std::move(bytes);
}

void RegisterSpace::Read(uint64_t address, void* data, size_t size) const {
    if (address >= m_fileAddress && size <= m_file.size() &&
        address - m_fileAddress <= m_file.size() - size) {
        std::memcpy(data, m_file.data() + (address - m_fileAddress), size);
        return;
    }
    auto it = m_registers.upper_bound(address);
    if (it == m_registers.begin())
        throw BadAddress(address, size);
    --it;
    const uint64_t offset = address - it->first;
    if (offset > it->second.length || size > it->second.length - offset)
        throw BadAddress(address, size);
    std::vector<uint8_t> bytes(it->second.length);
    it->second.reader(bytes.data());
    std::memcpy(data, bytes.data() + offset, size);
}

void RegisterSpace::Write(uint64_t address, const void* data, size_t size) const {
    auto it = m_registers.find(address);
    if (it == m_registers.end() || it->second.length != size)
        throw BadAddress(address, size);
    if (!it->second.writer)
        throw GenTLError(GenTL::GC_ERR_ACCESS_DENIED, "The register is read-only");
    it->second.writer(static_cast<const uint8_t*>(data));
}

} // namespace Producer
} // namespace Orvan
