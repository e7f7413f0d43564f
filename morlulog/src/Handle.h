// The transport handle behind IMorluLog: one sender, any number of listeners, three callbacks.
#ifndef MORLULOG_HANDLE_H
#define MORLULOG_HANDLE_H

#include "Receiver.h"
#include "Transmitter.h"

#include <MorluLog/IMorluLog.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace MorluLog {

class Handle final : public IMorluLog {
public:
    Handle();

    bool SetupPort(uint16_t port) override;
    void ReleasePort(uint16_t port) override;
    void RegisterPort(uint16_t port) override;
    bool Send(const char* record) override;
    void RegisterFilterOutFn(IFilterOutFn* filterOut) override;
    bool Listen(uint16_t port) override;
    void StopListening(uint16_t port) override;
    void RegisterFilterFn(IFilterFn* filter) override;
    void RegisterLogFn(ILogFn* log) override;
    uint64_t DroppedCount() const override;

private:
    void writeLocally(const char* record);
    void deliverReceived(const std::string& record);

    const uint64_t m_origin;
    std::atomic<IFilterOutFn*> m_filterOut{nullptr};
    std::atomic<IFilterFn*> m_filter{nullptr};
    std::atomic<ILogFn*> m_log{nullptr};
    Transmitter m_transmitter;
    // Declared last so that the listeners, which call back through the members above, stop first.
    std::mutex m_receiversMutex;
    std::map<uint16_t, std::unique_ptr<Receiver>> m_receivers;
};

} // namespace MorluLog

#endif
