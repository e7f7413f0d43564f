#include "ForeignInterfaces.h"

#include "../GenTLError.h"
#include "../InfoValue.h"
#include "ForeignHandles.h"

#include <GenTL/GenTLExtensions.h>

namespace Orvan {
namespace Producer {

namespace {

constexpr uint64_t kListTimeoutMs = 1000;

} // namespace

ForeignInterfaces::ForeignInterfaces(std::vector<std::shared_ptr<ForeignProducer>> producers,
                                     std::vector<ProducerSkip> skipped)
    : m_skipped(std::move(skipped)) {
    for (auto& producer : producers) {
        try {
            std::vector<Entry> entries = ReadList(producer);
            m_entries.insert(m_entries.end(), entries.begin(), entries.end());
            m_producers.push_back(std::move(producer));
        } catch (const GenTLError& error) {
            m_skipped.push_back({producer->Path(), "listing its interfaces failed with " +
                                                       std::to_string(error.Code()) + ": " +
                                                       error.what()});
            producer->Close();
        }
    }
}

ForeignInterfaces::~ForeignInterfaces() {
    Close();
}

std::vector<ForeignInterfaces::Entry>
ForeignInterfaces::ReadList(const std::shared_ptr<ForeignProducer>& producer) {
    const ProducerFunctions& call = producer->Functions();
    GenTL::TL_HANDLE system = producer->SystemHandle();
    GenTL::bool8_t changed = 0;
    producer->Check(call.TLUpdateInterfaceList(system, &changed, kListTimeoutMs));
    uint32_t count = 0;
    producer->Check(call.TLGetNumInterfaces(system, &count));
    std::vector<Entry> entries;
    for (uint32_t i = 0; i < count; ++i) {
        std::string id = producer->Text(
            [&](char* text, size_t* size) { return call.TLGetInterfaceID(system, i, text, size); });
        entries.push_back({producer, id, producer->Name() + "::" + id});
    }
    return entries;
}

// A producer whose list cannot be read now keeps the interfaces it listed before.
bool ForeignInterfaces::Update() {
    std::vector<Entry> entries;
    for (const auto& producer : m_producers) {
        std::vector<Entry> listed;
        try {
            listed = ReadList(producer);
        } catch (const GenTLError&) {
            listed = Listed(producer.get());
        }
        entries.insert(entries.end(), listed.begin(), listed.end());
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    bool changed = entries.size() != m_entries.size();
    for (size_t i = 0; !changed && i < entries.size(); ++i)
        changed = entries[i].id != m_entries[i].id;
    m_entries = std::move(entries);
    return changed;
}

std::vector<ForeignInterfaces::Entry>
ForeignInterfaces::Listed(const ForeignProducer* producer) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<Entry> listed;
    for (const Entry& entry : m_entries)
        if (entry.producer.get() == producer)
            listed.push_back(entry);
    return listed;
}

uint32_t ForeignInterfaces::Count() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<uint32_t>(m_entries.size());
}

std::string ForeignInterfaces::Id(uint32_t index) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return index < m_entries.size() ? m_entries[index].id : "";
}

std::string ForeignInterfaces::ProducerPath(uint32_t index) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return index < m_entries.size() ? m_entries[index].producer->Path() : "";
}

bool ForeignInterfaces::Knows(const std::string& id) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const Entry& entry : m_entries)
        if (entry.id == id)
            return true;
    return false;
}

ForeignInterfaces::Entry ForeignInterfaces::Find(const std::string& id) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const Entry& entry : m_entries)
        if (entry.id == id)
            return entry;
    throw GenTLError(GenTL::GC_ERR_INVALID_ID, "No interface '" + id + "'");
}

void ForeignInterfaces::Info(const std::string& id, GenTL::INTERFACE_INFO_CMD cmd,
                             GenTL::INFO_DATATYPE* type, void* buffer, size_t* size) const {
    const Entry entry = Find(id);
    if (cmd == GenTL::INTERFACE_INFO_ID) {
        InfoValue::String(entry.id).WriteTo(type, buffer, size);
        return;
    }
    entry.producer->RequireCustomId(cmd, GenTL::INTERFACE_INFO_CUSTOM_ID);
    entry.producer->Check(entry.producer->Functions().TLGetInterfaceInfo(
        entry.producer->SystemHandle(), entry.foreignId.c_str(), cmd, type, buffer, size));
}

void* ForeignInterfaces::Open(const std::string& id, void* systemHandle) const {
    const Entry entry = Find(id);
    GenTL::IF_HANDLE foreign = nullptr;
    entry.producer->Check(entry.producer->Functions().TLOpenInterface(
        entry.producer->SystemHandle(), entry.foreignId.c_str(), &foreign));
    auto module = std::make_shared<ForeignModule>(entry.producer, HandleKind::Interface, foreign,
                                                  systemHandle);
    module->interfaceId = entry.id;
    return ForeignHandles::Instance().Add(std::move(module));
}

void ForeignInterfaces::Close() {
    for (const auto& producer : m_producers) {
        ForeignHandles::Instance().RemoveProducer(producer.get());
        producer->Close();
    }
}

} // namespace Producer
} // namespace Orvan
