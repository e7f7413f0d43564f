// Library-wide state: whether GCInitLib has run, and the open system module.
#ifndef ORVAN_GENTL_LIBRARY_H
#define ORVAN_GENTL_LIBRARY_H

#include <GenTL/GenTL.h>

#include <atomic>
#include <memory>
#include <mutex>

namespace Orvan {
namespace Producer {

class System;

class Library {
public:
    static Library& Instance();

    void Init();
    void Close();
    // Throws GC_ERR_NOT_INITIALIZED outside GCInitLib ... GCCloseLib.
    void RequireInit() const {
        if (!m_initialised.load(std::memory_order_acquire))
            ThrowNotInitialised();
    }

    GenTL::TL_HANDLE OpenSystem();
    void CloseSystem(GenTL::TL_HANDLE handle);
    // The open system, or null.
    std::shared_ptr<System> OpenedSystem() const;

private:
    [[noreturn]] static void ThrowNotInitialised();

    mutable std::mutex m_mutex;
    std::atomic<bool> m_initialised{false};
    std::shared_ptr<System> m_system;
    GenTL::TL_HANDLE m_systemHandle = nullptr;
};

} // namespace Producer
} // namespace Orvan

#endif
