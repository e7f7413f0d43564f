// orvan-logview PORT: prints every record the logging transport receives on PORT, one line each,
// as the logger's console sink prints them. Records it cannot read are printed as they came.
// Runs until SIGINT or SIGTERM.
#include "log/ALogger.h"

#include <MorluLog/MorluLog.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

namespace {

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

bool parsePort(const char* text, uint16_t& port) {
    char* end = nullptr;
    const unsigned long value = std::strtoul(text, &end, 10);
    if (*text == '\0' || *end != '\0' || value > 65535) {
        return false;
    }
    port = static_cast<uint16_t>(value);
    return true;
}

} // namespace

int main(int argc, char** argv) {
    uint16_t port = 0;
    if (argc != 2 || !parsePort(argv[1], port)) {
        std::cerr << "usage: orvan-logview PORT\n";
        return 2;
    }
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
        std::cerr << "orvan-logview: cannot listen on port " << port << '\n';
        MorluLog::Deinit(transport);
        return 1;
    }
    int signal = 0;
    sigwait(&stopSignals, &signal);
    transport->StopListening(port);
    MorluLog::Deinit(transport);
    return 0;
}
