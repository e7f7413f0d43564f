#include "RegisterMap.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <stdexcept>

namespace Orvan {
namespace Producer {

using namespace GenTL;

namespace {

uint64_t LoadBigEndian(const uint8_t* p, size_t size) {
    uint64_t value = 0;
    for (size_t i = 0; i < size; ++i)
        value = (value << 8) | p[i];
    return value;
}

void StoreBigEndian(uint8_t* p, size_t size, uint64_t value) {
    for (size_t i = size; i-- > 0; value >>= 8)
        p[i] = uint8_t(value);
}

double BitsToDouble(uint64_t bits) {
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

uint64_t DoubleToBits(double value) {
    uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

bool IsNumeric(RegisterKind kind) {
    return kind == RegisterKind::Integer || kind == RegisterKind::Float;
}

} // namespace

void RegisterMap::Add(const RegisterDefinition& definition, const std::vector<uint8_t>& initial) {
    if (definition.length == 0 || m_addresses.count(definition.name))
        throw std::logic_error("register defined twice or empty: " + definition.name);
    const uint64_t end = definition.address + definition.length;
    auto next = m_entries.lower_bound(definition.address);
    const bool overlapsNext = next != m_entries.end() && next->first < end;
    const bool overlapsPrevious =
        next != m_entries.begin() &&
        std::prev(next)->first + std::prev(next)->second.definition.length > definition.address;
    if (overlapsNext || overlapsPrevious)
        throw std::logic_error("register overlaps another: " + definition.name);
    Entry entry;
    entry.definition = definition;
    entry.bytes.assign(definition.length, 0);
    std::copy_n(initial.begin(), std::min(initial.size(), entry.bytes.size()), entry.bytes.begin());
    m_entries.emplace(definition.address, std::move(entry));
    m_addresses.emplace(definition.name, definition.address);
}

RegisterMap::Entry& RegisterMap::Lookup(const std::string& name) {
    auto found = m_addresses.find(name);
    if (found == m_addresses.end())
        throw std::logic_error("no register named " + name);
    return m_entries.at(found->second);
}

bool RegisterMap::Has(const std::string& name) const {
    return m_addresses.count(name) != 0;
}

const RegisterMap::Entry* RegisterMap::Containing(uint64_t address) const {
    auto after = m_entries.upper_bound(address);
    if (after == m_entries.begin())
        return nullptr;
    const Entry& entry = std::prev(after)->second;
    return address < entry.definition.address + entry.definition.length ? &entry : nullptr;
}

void RegisterMap::Refresh(Entry& entry) {
    if (entry.liveInt)
        StoreBigEndian(entry.bytes.data(), entry.bytes.size(), uint64_t(entry.liveInt()));
    else if (entry.liveFloat)
        StoreBigEndian(entry.bytes.data(), entry.bytes.size(), DoubleToBits(entry.liveFloat()));
}

int64_t RegisterMap::GetInt(const std::string& name) {
    Entry& entry = Lookup(name);
    Refresh(entry);
    return int64_t(LoadBigEndian(entry.bytes.data(), entry.bytes.size()));
}

double RegisterMap::GetFloat(const std::string& name) {
    Entry& entry = Lookup(name);
    Refresh(entry);
    return BitsToDouble(LoadBigEndian(entry.bytes.data(), entry.bytes.size()));
}

std::string RegisterMap::GetString(const std::string& name) {
    const Entry& entry = Lookup(name);
    const auto end = std::find(entry.bytes.begin(), entry.bytes.end(), uint8_t(0));
    return std::string(entry.bytes.begin(), end);
}

void RegisterMap::SetInt(const std::string& name, int64_t value) {
    Entry& entry = Lookup(name);
    StoreBigEndian(entry.bytes.data(), entry.bytes.size(), uint64_t(value));
}

void RegisterMap::SetFloat(const std::string& name, double value) {
    Entry& entry = Lookup(name);
    StoreBigEndian(entry.bytes.data(), entry.bytes.size(), DoubleToBits(value));
}

void RegisterMap::SetString(const std::string& name, const std::string& value) {
    Entry& entry = Lookup(name);
    std::fill(entry.bytes.begin(), entry.bytes.end(), uint8_t(0));
    std::copy_n(value.begin(), std::min(value.size(), entry.bytes.size()), entry.bytes.begin());
}

void RegisterMap::SetLiveInt(const std::string& name, std::function<int64_t()> compute) {
    Lookup(name).liveInt = std::move(compute);
}

void RegisterMap::SetLiveFloat(const std::string& name, std::function<double()> compute) {
    Lookup(name).liveFloat = std::move(compute);
}

void RegisterMap::SetIntWriter(const std::string& name, IntWriter writer) {
    Lookup(name).intWriter = std::move(writer);
}

void RegisterMap::SetFloatWriter(const std::string& name, FloatWriter writer) {
    Lookup(name).floatWriter = std::move(writer);
}

void RegisterMap::SetStringWriter(const std::string& name, StringWriter writer) {
    Lookup(name).stringWriter = std::move(writer);
}

GC_ERROR RegisterMap::Read(uint64_t address, void* data, size_t size) {
    auto* out = static_cast<uint8_t*>(data);
    while (size > 0) {
        auto* entry = const_cast<Entry*>(Containing(address));
        if (!entry)
            return GC_ERR_INVALID_ADDRESS;
        if (entry->definition.access == RegisterAccess::WO)
            return GC_ERR_ACCESS_DENIED;
        Refresh(*entry);
        const size_t offset = size_t(address - entry->definition.address);
        const size_t count = std::min(size, entry->bytes.size() - offset);
        std::memcpy(out, entry->bytes.data() + offset, count);
        out += count;
        address += count;
        size -= count;
    }
    return GC_ERR_SUCCESS;
}

GC_ERROR RegisterMap::Write(uint64_t address, const void* data, size_t size) {
    auto found = m_entries.find(address);
    if (found == m_entries.end())
        return GC_ERR_INVALID_ADDRESS;
    Entry& entry = found->second;
    const RegisterDefinition& definition = entry.definition;
    if (definition.access == RegisterAccess::RO)
        return GC_ERR_ACCESS_DENIED;
    if (!definition.lockedBy.empty() && GetInt(definition.lockedBy) != 0)
        return GC_ERR_ACCESS_DENIED;
    const auto* bytes = static_cast<const uint8_t*>(data);
    if (IsNumeric(definition.kind))
        return WriteNumber(entry, bytes, size);
    return WriteString(entry, bytes, size);
}

double RegisterMap::LimitValue(const RegisterLimit& limit) {
    if (limit.source == RegisterLimit::Source::Constant)
        return limit.constant;
    const Entry& source = Lookup(limit.registerName);
    return source.definition.kind == RegisterKind::Float ? GetFloat(limit.registerName)
                                                         : double(GetInt(limit.registerName));
}

GC_ERROR RegisterMap::CheckNumber(Entry& entry, double value) {
    const RegisterDefinition& definition = entry.definition;
    using Source = RegisterLimit::Source;
    if (!definition.allowed.empty() &&
        std::find(definition.allowed.begin(), definition.allowed.end(), int64_t(value)) ==
            definition.allowed.end())
        return GC_ERR_INVALID_VALUE;
    const double min = definition.min.source == Source::None ? 0 : LimitValue(definition.min);
    if (definition.min.source != Source::None && value < min)
        return GC_ERR_INVALID_VALUE;
    if (definition.max.source != Source::None && value > LimitValue(definition.max))
        return GC_ERR_INVALID_VALUE;
    if (definition.inc.source != Source::None) {
        const double inc = LimitValue(definition.inc);
        if (inc > 0 && std::fmod(value - min, inc) != 0)
            return GC_ERR_INVALID_VALUE;
    }
    return GC_ERR_SUCCESS;
}

GC_ERROR RegisterMap::WriteNumber(Entry& entry, const uint8_t* data, size_t size) {
    if (size != entry.bytes.size())
        return GC_ERR_INVALID_PARAMETER;
    const uint64_t raw = LoadBigEndian(data, size);
    const bool isFloat = entry.definition.kind == RegisterKind::Float;
    const double value = isFloat ? BitsToDouble(raw) : double(int64_t(raw));
    if (isFloat && !std::isfinite(value))
        return GC_ERR_INVALID_VALUE;
    GC_ERROR status = CheckNumber(entry, value);
    if (status != GC_ERR_SUCCESS)
        return status;
    if (isFloat && entry.floatWriter)
        status = entry.floatWriter(value);
    else if (!isFloat && entry.intWriter)
        status = entry.intWriter(int64_t(raw));
    else
        std::memcpy(entry.bytes.data(), data, size);
    if (entry.definition.command)
        std::fill(entry.bytes.begin(), entry.bytes.end(), uint8_t(0));
    return status;
}

GC_ERROR RegisterMap::WriteString(Entry& entry, const uint8_t* data, size_t size) {
    if (size == 0 || size > entry.bytes.size())
        return GC_ERR_INVALID_PARAMETER;
    if (entry.definition.kind == RegisterKind::Block)
        return GC_ERR_ACCESS_DENIED;
    const std::string value(reinterpret_cast<const char*>(data),
                            std::find(data, data + size, uint8_t(0)) - data);
    if (entry.stringWriter)
        return entry.stringWriter(value);
    SetString(entry.definition.name, value);
    return GC_ERR_SUCCESS;
}

std::map<std::string, std::vector<uint8_t>> RegisterMap::SnapshotPersistent() const {
    std::map<std::string, std::vector<uint8_t>> snapshot;
    for (const auto& [address, entry] : m_entries)
        if (entry.definition.persistent)
            snapshot.emplace(entry.definition.name, entry.bytes);
    return snapshot;
}

void RegisterMap::Restore(const std::map<std::string, std::vector<uint8_t>>& snapshot) {
    for (const auto& [name, bytes] : snapshot)
        Lookup(name).bytes = bytes;
}

} // namespace Producer
} // namespace Orvan
