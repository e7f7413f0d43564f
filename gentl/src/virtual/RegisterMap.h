// A virtual camera's register space: named big-endian registers at fixed addresses, with access
// rights, range and lock checks, and hooks through which the camera computes live values and
// reacts to writes. Not thread-safe: the owning camera serialises every call.
#ifndef ORVAN_GENTL_VIRTUAL_REGISTERMAP_H
#define ORVAN_GENTL_VIRTUAL_REGISTERMAP_H

#include <GenTL/GenTL.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace Orvan {
namespace Producer {

enum class RegisterAccess { RO, WO, RW };
enum class RegisterKind { Integer, Float, String, Block };

// Where a limit of a numeric register comes from: nowhere, a constant, or another register
// (whose value may itself be live).
struct RegisterLimit {
    enum class Source { None, Constant, Register } source = Source::None;
    double constant = 0;
    std::string registerName;

    static RegisterLimit Const(double value) { return {Source::Constant, value, {}}; }
    static RegisterLimit Named(const std::string& name) { return {Source::Register, 0, name}; }
};

struct RegisterDefinition {
    std::string name;
    uint64_t address = 0;
    uint32_t length = 8;
    RegisterKind kind = RegisterKind::Integer;
    RegisterAccess access = RegisterAccess::RW;
    RegisterLimit min, max, inc;
    std::vector<int64_t> allowed; // enumeration values or {0, 1}; empty = any in range
    std::string lockedBy;         // a register whose non-zero value refuses writes
    bool persistent = false;      // part of a user set
    bool command = false;         // reads back 0: the command completes during the write
};

class RegisterMap {
public:
    using IntWriter = std::function<GenTL::GC_ERROR(int64_t)>;
    using FloatWriter = std::function<GenTL::GC_ERROR(double)>;
    using StringWriter = std::function<GenTL::GC_ERROR(const std::string&)>;

    void Add(const RegisterDefinition& definition, const std::vector<uint8_t>& initial = {});

    // Port access with the rights and checks of a camera. A read may span adjacent registers; a
    // write addresses one register from its start (strings may be written shorter).
    GenTL::GC_ERROR Read(uint64_t address, void* data, size_t size);
    GenTL::GC_ERROR Write(uint64_t address, const void* data, size_t size);

    // The camera's own access, without rights, checks or writer hooks; live values are computed.
    bool Has(const std::string& name) const;
    int64_t GetInt(const std::string& name);
    double GetFloat(const std::string& name);
    std::string GetString(const std::string& name);
    void SetInt(const std::string& name, int64_t value);
    void SetFloat(const std::string& name, double value);
    void SetString(const std::string& name, const std::string& value);

    // Live registers compute their value on every read.
    void SetLiveInt(const std::string& name, std::function<int64_t()> compute);
    void SetLiveFloat(const std::string& name, std::function<double()> compute);
    // Writers run after the checks passed and store the value themselves (SetInt ...), which
    // lets them adjust it or act on it.
    void SetIntWriter(const std::string& name, IntWriter writer);
    void SetFloatWriter(const std::string& name, FloatWriter writer);
    void SetStringWriter(const std::string& name, StringWriter writer);

    // The stored bytes of every persistent register (a user set), and their restoration.
    std::map<std::string, std::vector<uint8_t>> SnapshotPersistent() const;
    void Restore(const std::map<std::string, std::vector<uint8_t>>& snapshot);

    struct Entry {
        RegisterDefinition definition;
        std::vector<uint8_t> bytes;
        std::function<int64_t()> liveInt;
        std::function<double()> liveFloat;
        IntWriter intWriter;
        FloatWriter floatWriter;
        StringWriter stringWriter;
    };
    const std::map<uint64_t, Entry>& Entries() const { return m_entries; }

private:
    Entry& Lookup(const std::string& name);
    const Entry* Containing(uint64_t address) const;
    void Refresh(Entry& entry);
    double LimitValue(const RegisterLimit& limit);
    GenTL::GC_ERROR CheckNumber(Entry& entry, double value);
    GenTL::GC_ERROR WriteNumber(Entry& entry, const uint8_t* data, size_t size);
    GenTL::GC_ERROR WriteString(Entry& entry, const uint8_t* data, size_t size);

    std::map<uint64_t, Entry> m_entries;
    std::unordered_map<std::string, uint64_t> m_addresses;
};

} // namespace Producer
} // namespace Orvan

#endif
