// orvan-logview PORT: prints every record the logging transport receives on PORT, one line each,
// as the logger's console sink prints them. Runs until SIGINT or SIGTERM.
#include "logview/LogView.h"

#include <cstdint>
#include <cstdlib>
#include <iostream>

namespace {

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
    return Orvan::Tools::RunLogView(port, "orvan-logview: ");
}
