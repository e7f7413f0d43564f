#include "System.h"

#include "GenTLError.h"
#include "Interface.h"

#include <GenTL/GenTLExtensions.h>

#include <dlfcn.h>

#include <algorithm>

namespace Orvan {
namespace Producer {

namespace {

const char* const kVendor = "Orvan";
const char* const kModel = "Orvan GenTL Producer";
const char* const kVersion = "0.1.104.0";

std::string FileName(const std::string& path) {
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

PortIdentity SystemPortIdentity() {
    PortIdentity identity;
    identity.id = "OrvanGenTL";
    identity.vendor = kVendor;
    identity.model = kModel;
    identity.tlType = TLTypeGEVName;
    identity.module = TLSystemModuleName;
    identity.portName = "TLPort";
    identity.version = kVersion;
    return identity;
}

} // namespace

std::string System::LibraryPath() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&System::LibraryInfo), &info) == 0 || !info.dli_fname)
        return "";
    return info.dli_fname;
}

std::shared_ptr<System> System::Create(Backends backends,
                                       std::unique_ptr<ForeignInterfaces> foreign) {
    std::shared_ptr<System> system(new System(std::move(backends), std::move(foreign)));
    system->m_handle = HandleRegistry::Instance().Add(system, HandleKind::System);
    // Cameras report from their own threads, possibly while the system closes: the weak
    // reference keeps a late report from reaching a module that is gone.
    std::weak_ptr<System> weak = system;
    for (Slot& slot : system->m_slots)
        slot.backend->SetConnectionListener([weak](const std::string& deviceId, bool connected) {
            if (auto alive = weak.lock())
                alive->NotifyConnection(deviceId, connected);
        });
    return system;
}

System::System(Backends backends, std::unique_ptr<ForeignInterfaces> foreign)
    : m_foreign(std::move(foreign)), m_port(SystemPortIdentity()) {
    for (auto& backend : backends) {
        Slot slot;
        slot.id = backend->Id();
        slot.backend = std::move(backend);
        m_slots.push_back(std::move(slot));
    }
    Describe();
}

System::~System() = default;

void System::Describe() {
    ModuleDescription description("GenTLSystem", "TLPort");
    description.Category("SystemInformation");
    auto constant = [](const std::string& text) { return [text] { return text; }; };
    description.String("TLID", constant("OrvanGenTL"));
    description.String("TLVendorName", constant(kVendor));
    description.String("TLModelName", constant(kModel));
    description.String("TLVersion", constant(kVersion));
    description.String("TLFileName", [] { return FileName(LibraryPath()); });
    description.String("TLDisplayName", constant(kModel));
    description.String("TLPath", [] { return LibraryPath(); });
    description.Enumeration("TLType", {{"GigEVision", 1}}, [] { return 1; });
    description.Integer("GenTLVersionMajor", [] { return GenTLMajorVersion; });
    description.Integer("GenTLVersionMinor", [] { return GenTLMinorVersion; });
    description.Category("InterfaceEnumeration");
    description.Command("InterfaceUpdateList", [this] { UpdateInterfaceList(); });
    DescribeInterfaceSelector(description);
    DescribeSkippedProducers(description);
    m_port.Describe(description);
}

void System::DescribeInterfaceSelector(ModuleDescription& description) {
    description
        .Integer(
            "InterfaceSelector",
            [this] { return static_cast<int64_t>(m_interfaceSelector.load()); },
            [this](int64_t value) {
                if (value < 0 || value >= static_cast<int64_t>(NumInterfaces()))
                    throw GenTLError(GenTL::GC_ERR_INVALID_VALUE, "No interface with that index");
                m_interfaceSelector.store(static_cast<uint32_t>(value));
            })
        .Max([this] { return static_cast<int64_t>(NumInterfaces()) - 1; })
        .Selects("InterfaceID")
        .Selects("InterfaceDisplayName")
        .Selects("InterfaceProducer")
        .Selects("GevInterfaceMACAddress")
        .Selects("GevInterfaceDefaultIPAddress")
        .Selects("GevInterfaceDefaultSubnetMask");
    description.String("InterfaceID", [this] { return SelectedId(); });
    description.String("InterfaceDisplayName", [this] { return SelectedDisplayName(); });
    description.String("InterfaceProducer", [this] { return SelectedProducer(); });
    description
        .Integer("GevInterfaceMACAddress",
                 [this] { return static_cast<int64_t>(SelectedAddress().mac); })
        .Mac();
    description.Integer("GevInterfaceDefaultIPAddress", [this] { return SelectedAddress().ip; })
        .Ip();
    description
        .Integer("GevInterfaceDefaultSubnetMask", [this] { return SelectedAddress().subnet; })
        .Ip();
}

// The producers of GENICAM_GENTL64_PATH that were not loaded, and why.
void System::DescribeSkippedProducers(ModuleDescription& description) {
    const std::vector<ProducerSkip> skipped = m_foreign->Skipped();
    const int64_t count = static_cast<int64_t>(skipped.size());
    description.Integer("ProducerSkippedCount", [count] { return count; });
    description
        .Integer(
            "ProducerSkippedSelector",
            [this] { return static_cast<int64_t>(m_skipSelector.load()); },
            [this, count](int64_t value) {
                if (value < 0 || value >= std::max<int64_t>(count, 1))
                    throw GenTLError(GenTL::GC_ERR_INVALID_VALUE, "No skipped producer there");
                m_skipSelector.store(static_cast<uint32_t>(value));
            })
        .Max([count] { return std::max<int64_t>(count - 1, 0); })
        .Selects("ProducerSkippedPath")
        .Selects("ProducerSkippedReason");
    auto selected = [this, skipped](std::string ProducerSkip::*field) {
        const uint32_t index = m_skipSelector.load();
        return index < skipped.size() ? skipped[index].*field : std::string();
    };
    description.String("ProducerSkippedPath", [selected] { return selected(&ProducerSkip::path); });
    description.String("ProducerSkippedReason",
                       [selected] { return selected(&ProducerSkip::reason); });
}

std::string System::SelectedId() const {
    return InterfaceId(m_interfaceSelector.load());
}

std::string System::SelectedDisplayName() const {
    const uint32_t index = m_interfaceSelector.load();
    if (index < m_slots.size())
        return m_slots[index].backend->DisplayName();
    return SelectedId();
}

InterfaceAddress System::SelectedAddress() const {
    const uint32_t index = m_interfaceSelector.load();
    return index < m_slots.size() ? m_slots[index].backend->Address() : InterfaceAddress{};
}

std::string System::SelectedProducer() const {
    const uint32_t index = m_interfaceSelector.load();
    if (index < m_slots.size())
        return LibraryPath();
    return m_foreign->ProducerPath(index - static_cast<uint32_t>(m_slots.size()));
}

void System::Close() {
    std::vector<std::shared_ptr<Interface>> open;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_closed = true; // no interface opens from here on
        for (Slot& slot : m_slots)
            if (slot.open)
                open.push_back(slot.open);
    }
    for (auto& interface : open)
        interface->Close();
    m_foreign->Close();
    UnregisterAllEvents();
    HandleRegistry::Instance().Remove(m_handle);
}

InfoValue System::LibraryInfo(GenTL::TL_INFO_CMD cmd) {
    switch (cmd) {
    case GenTL::TL_INFO_ID:
        return InfoValue::String("OrvanGenTL");
    case GenTL::TL_INFO_VENDOR:
        return InfoValue::String(kVendor);
    case GenTL::TL_INFO_MODEL:
        return InfoValue::String(kModel);
    case GenTL::TL_INFO_VERSION:
        return InfoValue::String(kVersion);
    case GenTL::TL_INFO_TLTYPE:
        return InfoValue::String(TLTypeGEVName);
    case GenTL::TL_INFO_NAME:
        return InfoValue::String(FileName(LibraryPath()));
    case GenTL::TL_INFO_PATHNAME:
        return InfoValue::String(LibraryPath());
    case GenTL::TL_INFO_DISPLAYNAME:
        return InfoValue::String(kModel);
    case GenTL::TL_INFO_CHAR_ENCODING:
        return InfoValue::Int32(GenTL::TL_CHAR_ENCODING_ASCII);
    case GenTL::TL_INFO_GENTL_VER_MAJOR:
        return InfoValue::UInt32(GenTLMajorVersion);
    case GenTL::TL_INFO_GENTL_VER_MINOR:
        return InfoValue::UInt32(GenTLMinorVersion);
    default:
        throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER,
                         "Unknown system info command " + std::to_string(cmd));
    }
}

uint32_t System::NumInterfaces() const {
    return static_cast<uint32_t>(m_slots.size()) + m_foreign->Count();
}

std::string System::InterfaceId(uint32_t index) const {
    const uint32_t count = NumInterfaces();
    if (index >= count)
        throw GenTLError(GenTL::GC_ERR_INVALID_INDEX,
                         "There are " + std::to_string(count) + " interfaces");
    if (index < m_slots.size())
        return m_slots[index].id;
    return m_foreign->Id(index - static_cast<uint32_t>(m_slots.size()));
}

size_t System::SlotIndex(const std::string& id) const {
    for (size_t i = 0; i < m_slots.size(); ++i)
        if (m_slots[i].id == id)
            return i;
    throw GenTLError(GenTL::GC_ERR_INVALID_ID, "No interface '" + id + "'");
}

InfoValue System::InterfaceInfo(const std::string& id, GenTL::INTERFACE_INFO_CMD cmd) const {
    return Interface::InfoOf(*m_slots[SlotIndex(id)].backend, cmd);
}

GenTL::IF_HANDLE System::OpenInterface(const std::string& id) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_closed)
        throw GenTLError(GenTL::GC_ERR_INVALID_HANDLE, "The system module is closed");
    if (m_foreign->Knows(id))
        return m_foreign->Open(id, m_handle);
    Slot& slot = m_slots[SlotIndex(id)];
    if (slot.open)
        throw GenTLError(GenTL::GC_ERR_RESOURCE_IN_USE, "Interface '" + id + "' is already open");
    slot.open =
        Interface::Create(std::static_pointer_cast<System>(shared_from_this()), slot.backend);
    slot.handle = slot.open->Handle();
    return slot.handle;
}

void System::Forget(const Interface* closed) {
    std::lock_guard<std::mutex> lock(m_mutex);
    for (Slot& slot : m_slots) {
        if (slot.open.get() == closed) {
            slot.open.reset();
            slot.handle = nullptr;
        }
    }
}

std::shared_ptr<RemoteDevice> System::FindCamera(const std::string& deviceId) const {
    for (const Slot& slot : m_slots)
        for (const auto& camera : slot.backend->KnownCameras())
            if (camera->Identity().id == deviceId)
                return camera;
    return nullptr;
}

void System::NotifyConnection(const std::string& deviceId, bool connected) const {
    std::vector<std::shared_ptr<Interface>> open;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (const Slot& slot : m_slots)
            if (slot.open)
                open.push_back(slot.open);
    }
    for (auto& interface : open)
        interface->NotifyConnection(deviceId, connected);
}

} // namespace Producer
} // namespace Orvan
