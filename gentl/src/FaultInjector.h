// Makes a chosen entry point fail on its n-th call, for tests. Unarmed, the check on every call
// is one relaxed atomic load.
#ifndef ORVAN_GENTL_FAULTINJECTOR_H
#define ORVAN_GENTL_FAULTINJECTOR_H

#include "EntryPoint.h"

#include <GenTL/GenTL.h>

#include <array>
#include <atomic>
#include <mutex>
#include <string>

namespace Orvan {
namespace Producer {

class FaultInjector {
public:
    static FaultInjector& Instance();

    // The nth call from now (1 = the next one) fails once with code and text.
    void Arm(EntryPoint entry, uint32_t nthCall, GenTL::GC_ERROR code, const std::string& text);
    void DisarmAll();

    // GC_ERR_SUCCESS, or the injected code with its text in text.
    GenTL::GC_ERROR Check(EntryPoint entry, std::string& text) {
        if (m_armedCount.load(std::memory_order_relaxed) == 0)
            return GenTL::GC_ERR_SUCCESS;
        return CheckArmed(entry, text);
    }

private:
    struct Slot {
        std::atomic<uint32_t> countdown{0};
        GenTL::GC_ERROR code = GenTL::GC_ERR_SUCCESS;
        std::string text;
    };

    GenTL::GC_ERROR CheckArmed(EntryPoint entry, std::string& text);

    std::atomic<uint32_t> m_armedCount{0};
    std::mutex m_mutex; // guards code and text of the slots
    std::array<Slot, kEntryPointCount> m_slots;
};

} // namespace Producer
} // namespace Orvan

#endif
