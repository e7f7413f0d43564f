// orvan view [CAMERA]: a live view of the camera in the browser, with its features, until Ctrl-C.
#include "AccessGuard.h"
#include "CameraScope.h"
#include "Commands.h"
#include "InterruptFlag.h"
#include "ToolError.h"
#include "ViewServer.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <iostream>
#include <memory>
#include <string>
#include <thread>

#include <unistd.h>

namespace Orvan {
namespace Cli {

namespace {

// The longest Ctrl-C goes unnoticed.
constexpr std::chrono::milliseconds kInterruptPoll{100};

struct ViewOptions {
    std::string camera;
    int port = 8080;
    std::string bind = "127.0.0.1";
};

// The address a browser elsewhere would use: for the wildcard addresses, this machine's name.
std::string UrlHost(const std::string& bind) {
    if (bind == "0.0.0.0" || bind == "::") {
        char name[256] = {};
        if (gethostname(name, sizeof name - 1) == 0 && name[0] != '\0')
            return name;
    }
    return bind.find(':') == std::string::npos ? bind : "[" + bind + "]";
}

std::string Url(const ViewOptions& options, int port, const AccessGuard& guard) {
    std::string url = "http://" + UrlHost(options.bind) + ":" + std::to_string(port) + "/";
    if (guard.TokenRequired())
        url += "?token=" + guard.Token();
    return url;
}

void ServeUntilInterrupted(ViewServer& server, const std::string& banner) {
    // A browser that goes away mid-answer must not end the tool.
    std::signal(SIGPIPE, SIG_IGN);
    InterruptFlag interrupt;
    std::atomic<bool> ended{false};
    bool served = false;
    std::thread serving([&] {
        served = server.Serve();
        ended = true;
    });
    std::cout << banner << std::endl;
    while (!interrupt.Raised() && !ended)
        std::this_thread::sleep_for(kInterruptPoll);
    server.Stop();
    serving.join();
    if (!served && !interrupt.Raised())
        throw ToolError("the web server stopped unexpectedly");
}

int RunViewer(const ViewOptions& options) {
    CameraScope scope;
    if (scope.Devices().empty())
        throw ToolError("no cameras found");
    const AccessGuard guard(options.bind);
    ViewServer server(scope, guard);
    if (!options.camera.empty())
        server.OpenCamera(options.camera);
    else if (scope.Devices().size() == 1)
        server.OpenCamera(scope.Devices().front().SerialNumber().c_str());
    const int port = server.Bind(options.bind, options.port);
    ServeUntilInterrupted(server, "viewing at " + Url(options, port, guard) + " ; Ctrl-C stops");
    std::cout << "stopped" << std::endl;
    return 0;
}

} // namespace

void AddViewCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<ViewOptions>();
    CLI::App* command = app.add_subcommand(
        "view", "Show the camera live in a web browser, with its features; Ctrl-C stops");
    command->add_option("camera", options->camera,
                        "Serial number, name, index or IP address (default: choose in the page)");
    command->add_option("--port", options->port, "TCP port to listen on (0: any free one)")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    command
        ->add_option("--bind", options->bind,
                     "Address to listen on; any but 127.0.0.1 requires the printed access token")
        ->capture_default_str();
    command->callback([options, &exitCode] { exitCode = RunViewer(*options); });
}

} // namespace Cli
} // namespace Orvan
