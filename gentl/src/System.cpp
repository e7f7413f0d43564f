#include "System.h"

#include "GenTLError.h"
#include "Interface.h"

#include <GenTL/GenTLExtensions.h>

#include <dlfcn.h>

namespace Orvan {
namespace Producer {

namespace {

const char* const kVendor = "Orvan";
const char* const kModel = "Orvan GenTL Producer";
const char* const kVersion = "0.1.104.0";

std::string LibraryPath() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&System::LibraryInfo), &info) == 0 || !info.dli_fname)
        return "";
    return info.dli_fname;
}

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

std::shared_ptr<System> System::Create(Backends backends) {
    std::shared_ptr<System> system(new System(std::move(backends)));
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

System::System(Backends backends) : m_port(SystemPortIdentity()) {
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
    description.Command("InterfaceUpdateList", [] {});
    const int64_t count = static_cast<int64_t>(m_slots.size());
    description
        .Integer(
            "InterfaceSelector",
            [this] { return static_cast<int64_t>(m_interfaceSelector.load()); },
            [this, count](int64_t value) {
                if (value < 0 || value >= count)
                    throw GenTLError(GenTL::GC_ERR_INVALID_VALUE, "No interface with that index");
                m_interfaceSelector.store(static_cast<uint32_t>(value));
            })
        .Max([count] { return count - 1; })
        .Selects("InterfaceID")
        .Selects("InterfaceDisplayName")
        .Selects("GevInterfaceMACAddress")
        .Selects("GevInterfaceDefaultIPAddress")
        .Selects("GevInterfaceDefaultSubnetMask");
    auto selected = [this]() -> const InterfaceBackend& {
        return *m_slots.at(m_interfaceSelector.load()).backend;
    };
    description.String("InterfaceID", [selected] { return selected().Id(); });
    description.String("InterfaceDisplayName", [selected] { return selected().DisplayName(); });
    description
        .Integer("GevInterfaceMACAddress",
                 [selected] { return static_cast<int64_t>(selected().Address().mac); })
        .Mac();
    description
        .Integer("GevInterfaceDefaultIPAddress", [selected] { return selected().Address().ip; })
        .Ip();
    description
        .Integer("GevInterfaceDefaultSubnetMask",
                 [selected] { return selected().Address().subnet; })
        .Ip();
    m_port.Describe(description);
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

std::string System::InterfaceId(uint32_t index) const {
    if (index >= m_slots.size())
        throw GenTLError(GenTL::GC_ERR_INVALID_INDEX,
                         "There are " + std::to_string(m_slots.size()) + " interfaces");
    return m_slots[index].id;
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
