#include "FaultInjector.h"

namespace Orvan {
namespace Producer {

FaultInjector& FaultInjector::Instance() {
    static FaultInjector instance;
    return instance;
}

void FaultInjector::Arm(EntryPoint entry, uint32_t nthCall, GenTL::GC_ERROR code,
                        const std::string& text) {
    std::lock_guard<std::mutex> lock(m_mutex);
    Slot& slot = m_slots[static_cast<size_t>(entry)];
    slot.code = code;
    slot.text = text;
    uint32_t previous = slot.countdown.exchange(nthCall);
    if (previous == 0 && nthCall != 0)
        m_armedCount.fetch_add(1);
    else if (previous != 0 && nthCall == 0)
        m_armedCount.fetch_sub(1);
}

void FaultInjector::DisarmAll() {
    std::lock_guard<std::mutex> lock(m_mutex);
    for (Slot& slot : m_slots)
        slot.countdown.store(0);
    m_armedCount.store(0);
}

GenTL::GC_ERROR FaultInjector::CheckArmed(EntryPoint entry, std::string& text) {
    Slot& slot = m_slots[static_cast<size_t>(entry)];
    uint32_t current = slot.countdown.load();
    // Count down without going below zero; the thread that takes it from 1 to 0 fails.
    while (current != 0 && !slot.countdown.compare_exchange_weak(current, current - 1)) {
    }
    if (current != 1)
        return GenTL::GC_ERR_SUCCESS;
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_armedCount.load() != 0) // DisarmAll may have cleared it meanwhile
        m_armedCount.fetch_sub(1);
    text = slot.text;
    return slot.code;
}

} // namespace Producer
} // namespace Orvan
