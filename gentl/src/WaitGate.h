// The waiting rules every event shares: a wait ends when data is ready, on timeout, when
// EventKill ends it, or when its source aborts all waits (acquisition stop, unregistration).
// The owner's mutex guards the gate; the owner's condition variable wakes it.
#ifndef ORVAN_GENTL_WAITGATE_H
#define ORVAN_GENTL_WAITGATE_H

#include <GenTL/GenTL.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace Orvan {
namespace Producer {

class WaitGate {
public:
    enum class Result { Ready, Timeout, Killed, Aborted };

    // Waits while ready() is false, for at most timeoutMs (GENTL_INFINITE: no limit).
    template <typename Ready>
    Result Wait(std::unique_lock<std::mutex>& lock, std::condition_variable& wake,
                uint64_t timeoutMs, Ready ready) {
        // Taken before the lock is first released: an abort while this wait yields below is
        // meant for it too.
        const uint64_t generation = m_generation;
        if (ready())
            return Result::Ready;
        // Data is often a few microseconds away while frames flow; yielding a little first is
        // cheaper than a sleep and a wake-up.
        for (int spin = 0; timeoutMs != 0 && spin < kSpins; ++spin) {
            lock.unlock();
            std::this_thread::yield();
            lock.lock();
            if (m_generation != generation)
                return Result::Aborted;
            if (ready())
                return Result::Ready;
        }
        const bool forever = timeoutMs == GENTL_INFINITE;
        const auto deadline =
            std::chrono::steady_clock::now() +
            std::chrono::milliseconds(forever ? 0 : std::min<uint64_t>(timeoutMs, kMaxTimeoutMs));
        ++m_waiters;
        Result result = Result::Timeout;
        for (;;) {
            if (m_pendingKills > 0) {
                --m_pendingKills;
                result = Result::Killed;
                break;
            }
            if (m_generation != generation) {
                result = Result::Aborted;
                break;
            }
            if (ready()) {
                result = Result::Ready;
                break;
            }
            if (forever) {
                wake.wait(lock);
            } else if (wake.wait_until(lock, deadline) == std::cv_status::timeout) {
                result = ready() ? Result::Ready : Result::Timeout;
                break;
            }
        }
        --m_waiters;
        return result;
    }

    // Ends one wait; with nobody waiting, the next wait that has to block ends at once.
    void Kill(std::condition_variable& wake) {
        ++m_pendingKills;
        wake.notify_all();
    }
    // Ends every wait in progress; later waits are not affected.
    void AbortAll(std::condition_variable& wake) {
        ++m_generation;
        wake.notify_all();
    }
    bool HasWaiters() const { return m_waiters != 0; }

private:
    // A year: longer timeouts behave as no limit without overflowing the clock.
    static constexpr uint64_t kMaxTimeoutMs = 365ull * 24 * 3600 * 1000;
    static constexpr int kSpins = 32;

    uint32_t m_waiters = 0;
    uint32_t m_pendingKills = 0;
    uint64_t m_generation = 0;
};

// Turns a finished wait into its GenTL outcome (throws for all but Ready).
void ThrowUnlessReady(WaitGate::Result result);

} // namespace Producer
} // namespace Orvan

#endif
