// Fails a test that hangs: after the limit it names the stuck stage and ends the process, so a
// deadlock shows up as a failure with a reason rather than as a suite that never finishes.
#ifndef ORVAN_TESTS_SDK_WATCHDOG_H
#define ORVAN_TESTS_SDK_WATCHDOG_H

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>

namespace SpineTest {

class Watchdog {
public:
    explicit Watchdog(std::chrono::seconds limit) : m_thread([this, limit] { Watch(limit); }) {}
    ~Watchdog() {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_done = true;
        }
        m_wake.notify_all();
        m_thread.join();
    }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    // Names what runs now and restarts the clock; a hang reports the last stage named.
    void Stage(const std::string& stage) {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stage = stage;
        ++m_progress;
    }

private:
    void Watch(std::chrono::seconds limit) {
        std::unique_lock<std::mutex> lock(m_mutex);
        for (;;) {
            const unsigned long long seen = m_progress;
            if (m_wake.wait_for(lock, limit, [&] { return m_done || m_progress != seen; })) {
                if (m_done)
                    return;
                continue;
            }
            break;
        }
        std::fprintf(stderr, "HANG: no progress for %lld s, stuck in: %s\n",
                     static_cast<long long>(limit.count()), m_stage.c_str());
        std::fflush(stderr);
        std::_Exit(3);
    }

    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_done = false;
    unsigned long long m_progress = 0;
    std::string m_stage = "(start)";
    std::thread m_thread;
};

} // namespace SpineTest

#endif
