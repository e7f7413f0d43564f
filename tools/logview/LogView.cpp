#include "LogView.h"

#include "log/ALogger.h"

#include <MorluLog/MorluLog.h>

#include <csignal>
#include <exception>
#include <iostream>

#include <pthread.h>

namespace Orvan {
namespace Tools {

namespace {

// Records it cannot read are printed as they came, so that nothing sent is lost from view.
class Printer : public MorluLog::ILogFn {
public:
    void OnLog(const char* record) override {
        std::string line;
        try {
            line = Orvan::simpleFormat(record);
        } catch (const std::exception&) {
            line = std::string(record) + '\n';
        }
        std::cout << line << std::flush;
    }
};

} // namespace

int RunLogView(uint16_t port, const std::string& errorPrefix) {
    // Blocked before the transport starts its threads, so that they inherit the mask and the
    // signals wait for sigwait below.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

    Printer printer;
    MorluLog::IMorluLog* transport = MorluLog::Init();
    transport->RegisterLogFn(&printer);
    if (!transport->Listen(port)) {
        std::cerr << errorPrefix << "cannot listen on port " << port << '\n';
        MorluLog::Deinit(transport);
        return 1;
    }
    int signal = 0;
    sigwait(&stopSignals, &signal);
    transport->StopListening(port);
    MorluLog::Deinit(transport);
    return 0;
}

} // namespace Tools
} // namespace Orvan
