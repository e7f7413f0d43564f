// The system module (TL_HANDLE): the list of interfaces and the library-level information.
#ifndef ORVAN_GENTL_SYSTEM_H
#define ORVAN_GENTL_SYSTEM_H

#include "InterfaceBackend.h"
#include "LocalPort.h"
#include "Module.h"
#include "gentl/ForeignInterfaces.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

class Interface;

class System : public Module {
public:
    using Backends = std::vector<std::shared_ptr<InterfaceBackend>>;

    // The interfaces in the order TLGetInterfaceID lists them: the backends', then the foreign
    // producers'.
    static std::shared_ptr<System> Create(Backends backends,
                                          std::unique_ptr<ForeignInterfaces> foreign);
    ~System() override;

    GenTL::TL_HANDLE Handle() const { return m_handle; }
    Port& GetPort() override { return m_port; }
    void Close();

    // Library information, also answered before GCInitLib through GCGetInfo.
    static InfoValue LibraryInfo(GenTL::TL_INFO_CMD cmd);
    // The path of this producer's own library file.
    static std::string LibraryPath();

    uint32_t NumInterfaces() const;
    std::string InterfaceId(uint32_t index) const;
    InfoValue InterfaceInfo(const std::string& id, GenTL::INTERFACE_INFO_CMD cmd) const;
    GenTL::IF_HANDLE OpenInterface(const std::string& id);
    // Our own interfaces are fixed for the life of the system module; the foreign producers'
    // lists may change.
    bool UpdateInterfaceList() { return m_foreign->Update(); }
    ForeignInterfaces& Foreign() { return *m_foreign; }
    // Called by an interface as it closes.
    void Forget(const Interface* closed);

    // The camera with that device id on any interface, or null.
    std::shared_ptr<RemoteDevice> FindCamera(const std::string& deviceId) const;
    // Tells an open device module that its camera's connection changed.
    void NotifyConnection(const std::string& deviceId, bool connected) const;

private:
    struct Slot {
        std::string id;
        std::shared_ptr<InterfaceBackend> backend;
        std::shared_ptr<Interface> open;
        GenTL::IF_HANDLE handle = nullptr;
    };

    System(Backends backends, std::unique_ptr<ForeignInterfaces> foreign);
    void Describe();
    void DescribeInterfaceSelector(ModuleDescription& description);
    void DescribeSkippedProducers(ModuleDescription& description);
    // What the node map shows for the interface InterfaceSelector selects.
    std::string SelectedId() const;
    std::string SelectedDisplayName() const;
    InterfaceAddress SelectedAddress() const;
    std::string SelectedProducer() const;
    size_t SlotIndex(const std::string& id) const;

    mutable std::mutex m_mutex;
    std::vector<Slot> m_slots;
    const std::unique_ptr<ForeignInterfaces> m_foreign;
    bool m_closed = false;
    GenTL::TL_HANDLE m_handle = nullptr;
    LocalPort m_port;
    std::atomic<uint32_t> m_interfaceSelector{0};
    std::atomic<uint32_t> m_skipSelector{0};
};

} // namespace Producer
} // namespace Orvan

#endif
