#include "Handle.h"

#include <unistd.h>

namespace MorluLog {

namespace {

// Unique among the handles alive on this machine: the process id and a count within it.
uint64_t NextOrigin() {
    static std::atomic<uint32_t> count{0};
    return (static_cast<uint64_t>(getpid()) << 32) | ++count;
}

// A callback that throws refuses the record: the exception must not reach a listener thread,
// and a caller that sends a record it cannot filter has nothing to recover.
template <typename Call>
bool Guarded(Call call) noexcept {
    try {
        return call();
    } catch (...) {
        return false;
    }
}

} // namespace

Handle::Handle() : m_origin(NextOrigin()), m_transmitter(m_origin) {}

bool Handle::SetupPort(uint16_t port) {
    return m_transmitter.Open(port);
}

void Handle::ReleasePort(uint16_t port) {
    m_transmitter.Close(port);
}

void Handle::RegisterPort(uint16_t port) {
    m_transmitter.AddDestination(port);
}

bool Handle::Send(const char* record) {
    IFilterOutFn* filterOut = m_filterOut.load();
    if (record == nullptr ||
        (filterOut != nullptr && !Guarded([&] { return filterOut->OnFilterOut(record); }))) {
        return false;
    }
    writeLocally(record);
    return m_transmitter.Post(record);
}

void Handle::RegisterFilterOutFn(IFilterOutFn* filterOut) {
    m_filterOut = filterOut;
}

bool Handle::Listen(uint16_t port) {
    std::lock_guard<std::mutex> lock(m_receiversMutex);
    if (m_receivers.count(port) != 0) {
        return false;
    }
    auto receiver = std::make_unique<Receiver>(
        m_origin, [this](const std::string& record) { deliverReceived(record); });
    if (!receiver->Start(port)) {
        return false;
    }
    m_receivers.emplace(port, std::move(receiver));
    return true;
}

void Handle::StopListening(uint16_t port) {
    std::unique_ptr<Receiver> stopped; // joined when it goes, after the lock is released
    {
        std::lock_guard<std::mutex> lock(m_receiversMutex);
        auto found = m_receivers.find(port);
        if (found == m_receivers.end()) {
            return;
        }
        stopped = std::move(found->second);
        m_receivers.erase(found);
    }
}

void Handle::RegisterFilterFn(IFilterFn* filter) {
    m_filter = filter;
}

void Handle::RegisterLogFn(ILogFn* log) {
    m_log = log;
}

uint64_t Handle::DroppedCount() const {
    return m_transmitter.Dropped();
}

void Handle::writeLocally(const char* record) {
    if (ILogFn* log = m_log.load()) {
        Guarded([&] {
            log->OnLog(record);
            return true;
        });
    }
}

void Handle::deliverReceived(const std::string& record) {
    IFilterFn* filter = m_filter.load();
    if (filter == nullptr || Guarded([&] { return filter->OnFilter(record.c_str()); })) {
        writeLocally(record.c_str());
    }
}

} // namespace MorluLog
