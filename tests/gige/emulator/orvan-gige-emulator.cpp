// Runs emulated GigE Vision cameras until interrupted, for manual tests and for test programs
// that want the emulator in a process of its own.
#include "EmulatedCamera.h"

#include <arpa/inet.h>
#include <getopt.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

volatile std::sig_atomic_t g_stop = 0;

void OnSignal(int) {
    g_stop = 1;
}

void Usage() {
    std::fprintf(stderr,
                 "usage: orvan-gige-emulator [options]\n"
                 "  --model NAME        virtual camera model (Mono, Color, ...; default Mono)\n"
                 "  --index N           camera index: serial number and MAC (default 0)\n"
                 "  --count N           cameras, at consecutive ports and indices (default 1)\n"
                 "  --address IP        address to listen on (default 127.0.0.1; 0.0.0.0 = all)\n"
                 "  --port N            GVCP port (default 3956; 0 = any free port)\n"
                 "  --loss PERCENT      stream packets dropped on first transmission\n"
                 "  --reorder PERCENT   stream packets sent after their successor\n"
                 "  --seed N            seed of the loss and reordering choices\n"
                 "  --resend-frames N   recent frames kept for resends (default 32)\n"
                 "  --heartbeat MS      heartbeat timeout at power-on (default 3000)\n"
                 "  --pending-ack MS    slow feature writes answered with PENDING_ACK\n");
}

bool ParseOptions(int argc, char** argv, Orvan::Emulator::EmulatorOptions& options,
                  uint32_t& count) {
    const option longOptions[] = {{"model", required_argument, nullptr, 'm'},
                                  {"index", required_argument, nullptr, 'i'},
                                  {"count", required_argument, nullptr, 'c'},
                                  {"address", required_argument, nullptr, 'a'},
                                  {"port", required_argument, nullptr, 'p'},
                                  {"loss", required_argument, nullptr, 'l'},
                                  {"reorder", required_argument, nullptr, 'r'},
                                  {"seed", required_argument, nullptr, 's'},
                                  {"heartbeat", required_argument, nullptr, 'h'},
                                  {"pending-ack", required_argument, nullptr, 'k'},
                                  {"resend-frames", required_argument, nullptr, 'f'},
                                  {nullptr, 0, nullptr, 0}};
    for (int code; (code = getopt_long(argc, argv, "", longOptions, nullptr)) != -1;) {
        switch (code) {
        case 'm':
            options.model = optarg;
            break;
        case 'i':
            options.index = uint32_t(std::strtoul(optarg, nullptr, 10));
            break;
        case 'c':
            count = uint32_t(std::strtoul(optarg, nullptr, 10));
            break;
        case 'a': {
            in_addr address{};
            if (inet_pton(AF_INET, optarg, &address) != 1)
                return false;
            options.bindIp = ntohl(address.s_addr);
            break;
        }
        case 'p':
            options.port = uint16_t(std::strtoul(optarg, nullptr, 10));
            break;
        case 'l':
            options.packetLossPercent = std::strtod(optarg, nullptr);
            break;
        case 'r':
            options.reorderPercent = std::strtod(optarg, nullptr);
            break;
        case 's':
            options.seed = uint32_t(std::strtoul(optarg, nullptr, 10));
            break;
        case 'h':
            options.heartbeatTimeoutMs = uint32_t(std::strtoul(optarg, nullptr, 10));
            break;
        case 'f':
            options.resendFrames = uint32_t(std::strtoul(optarg, nullptr, 10));
            break;
        case 'k':
            options.pendingAckMs = uint32_t(std::strtoul(optarg, nullptr, 10));
            break;
        default:
            return false;
        }
    }
    return optind == argc && count > 0;
}

std::string Address(uint32_t ip) {
    in_addr address{htonl(ip)};
    char text[INET_ADDRSTRLEN];
    return inet_ntop(AF_INET, &address, text, sizeof text);
}

} // namespace

int main(int argc, char** argv) {
    Orvan::Emulator::EmulatorOptions options;
    uint32_t count = 1;
    if (!ParseOptions(argc, argv, options, count)) {
        Usage();
        return 2;
    }
    std::vector<std::unique_ptr<Orvan::Emulator::EmulatedCamera>> cameras;
    try {
        for (uint32_t i = 0; i < count; ++i) {
            Orvan::Emulator::EmulatorOptions one = options;
            one.index = options.index + i;
            one.port = options.port ? uint16_t(options.port + i) : 0;
            cameras.push_back(std::make_unique<Orvan::Emulator::EmulatedCamera>(one));
            auto& camera = *cameras.back();
            if (!camera.Start()) {
                std::fprintf(stderr, "orvan-gige-emulator: %s\n", camera.Error().c_str());
                return 1;
            }
            const auto endpoint = camera.ControlEndpoint();
            std::printf("%s %s %s:%u\n", camera.Identity().serialNumber.c_str(),
                        camera.Identity().model.c_str(), Address(endpoint.ip).c_str(),
                        unsigned(endpoint.port));
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "orvan-gige-emulator: %s\n", error.what());
        return 2;
    }
    std::fflush(stdout);
    std::signal(SIGINT, OnSignal);
    std::signal(SIGTERM, OnSignal);
    while (!g_stop)
        pause();
    return 0;
}
