// Serves emulated GigE Vision cameras until interrupted: applications are developed and tested
// against it without a camera, and test programs start it in a process of its own.
#include "EmulatedCamera.h"

#include <CLI/CLI.hpp>
#include <arpa/inet.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace {

volatile std::sig_atomic_t g_stop = 0;

void OnSignal(int) {
    g_stop = 1;
}

std::string Address(uint32_t ip) {
    in_addr address{htonl(ip)};
    char text[INET_ADDRSTRLEN];
    return inet_ntop(AF_INET, &address, text, sizeof text);
}

// A dotted IPv4 address, in host order.
uint32_t ParseAddress(const std::string& text) {
    in_addr address{};
    if (inet_pton(AF_INET, text.c_str(), &address) != 1)
        throw CLI::ValidationError("--address", "not an IPv4 address: " + text);
    return ntohl(address.s_addr);
}

void AddOptions(CLI::App& app, Orvan::Emulator::EmulatorOptions& options, uint32_t& count,
                std::string& address) {
    const auto percent = CLI::Range(0.0, 100.0);
    app.add_option("--model", options.model, "virtual camera model (Mono, Color, ...)")
        ->capture_default_str();
    app.add_option("--index", options.index, "camera index: serial number and MAC")
        ->capture_default_str();
    app.add_option("--count", count, "cameras, at consecutive ports and indices")
        ->check(CLI::Range(1u, 64u))
        ->capture_default_str();
    app.add_option("--address", address, "address to listen on (0.0.0.0 = every address)")
        ->capture_default_str();
    app.add_option("--port", options.port, "GVCP port (0 = any free port)")->capture_default_str();
    app.add_option("--loss", options.packetLossPercent,
                   "percent of stream packets dropped on first transmission")
        ->check(percent);
    app.add_option("--reorder", options.reorderPercent,
                   "percent of stream packets sent after their successor")
        ->check(percent);
    app.add_option("--seed", options.seed, "seed of the loss and reordering choices");
    app.add_option("--resend-frames", options.resendFrames, "recent frames kept for resends")
        ->check(CLI::Range(1u, 4096u))
        ->capture_default_str();
    app.add_option("--heartbeat", options.heartbeatTimeoutMs, "heartbeat timeout at power-on, ms")
        ->capture_default_str();
    app.add_option("--pending-ack", options.pendingAckMs,
                   "answer slow feature writes with PENDING_ACK, completing after this many ms");
    app.add_option("--max-packet", options.maxPacketSize,
                   "stream packets larger than this many bytes (IP and UDP headers counted) "
                   "never arrive, as on a path with a smaller MTU (0 = no limit)")
        ->check(CLI::Range(0u, 65535u));
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app("Serves emulated GigE Vision cameras (the producer's virtual cameras) until "
                 "interrupted; prints one line per camera: <serial> <model> <ip>:<port>.",
                 "orvan-gige-camera");
    Orvan::Emulator::EmulatorOptions options;
    uint32_t count = 1;
    std::string address = "127.0.0.1";
    AddOptions(app, options, count, address);
    try {
        app.parse(argc, argv);
        options.bindIp = ParseAddress(address);
    } catch (const CLI::ParseError& error) {
        return app.exit(error);
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
                std::fprintf(stderr, "orvan-gige-camera: %s\n", camera.Error().c_str());
                return 1;
            }
            const auto endpoint = camera.ControlEndpoint();
            std::printf("%s %s %s:%u\n", camera.Identity().serialNumber.c_str(),
                        camera.Identity().model.c_str(), Address(endpoint.ip).c_str(),
                        unsigned(endpoint.port));
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "orvan-gige-camera: %s\n", error.what());
        return 2;
    }
    std::fflush(stdout);
    std::signal(SIGINT, OnSignal);
    std::signal(SIGTERM, OnSignal);
    while (!g_stop)
        pause();
    return 0;
}
