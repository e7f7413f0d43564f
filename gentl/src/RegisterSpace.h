// The register space behind a producer module's port: registers bound to live values of the
// module (read on every access, so the node map never sees a stale copy) and the module's
// description file at its own address.
#ifndef ORVAN_GENTL_REGISTERSPACE_H
#define ORVAN_GENTL_REGISTERSPACE_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace Orvan {
namespace Producer {

class RegisterSpace {
public:
    // Fills exactly `length` bytes.
    using Reader = std::function<void(uint8_t* bytes)>;
    // Takes exactly `length` bytes; throws GenTLError to refuse a value.
    using Writer = std::function<void(const uint8_t* bytes)>;

    void Add(uint64_t address, size_t length, Reader reader, Writer writer = nullptr);
    void SetFile(uint64_t address, std::string bytes);

    // Reads may cover part of one register or of the file; writes cover a whole register.
    void Read(uint64_t address, void* data, size_t size) const;
    void Write(uint64_t address, const void* data, size_t size) const;

    uint64_t FileAddress() const { return m_fileAddress; }
    size_t FileSize() const { return m_file.size(); }

private:
    struct Register {
        size_t length;
        Reader reader;
        Writer writer;
    };

    std::map<uint64_t, Register> m_registers;
    uint64_t m_fileAddress = 0;
    std::string m_file;
};

} // namespace Producer
} // namespace Orvan

#endif
