#include "AccessGuard.h"

#include <cstdio>
#include <random>

namespace Orvan {
namespace Cli {

namespace {

bool IsLoopbackName(const std::string& host) {
    return host == "127.0.0.1" || host == "localhost" || host == "::1" || host == "[::1]";
}

// 128 bits from the system's random source, as hexadecimal.
std::string NewToken() {
    std::random_device source;
    std::string token;
    for (int i = 0; i < 4; ++i) {
        char part[9];
        std::snprintf(part, sizeof part, "%08x", static_cast<unsigned>(source()));
        token += part;
    }
    return token;
}

// The host part of a Host header: "localhost:8080" -> "localhost", "[::1]:80" -> "[::1]".
std::string HostName(const std::string& header) {
    if (!header.empty() && header.front() == '[')
        return header.substr(0, header.find(']') + 1);
    return header.substr(0, header.find(':'));
}

// Takes as long for a wrong token as for a right one, so that timing tells nothing.
bool SameText(const std::string& a, const std::string& b) {
    unsigned difference = a.size() == b.size() ? 0 : 1;
    for (size_t i = 0; i < a.size() && i < b.size(); ++i)
        difference |= static_cast<unsigned>(a[i] ^ b[i]);
    return difference == 0;
}

} // namespace

AccessGuard::AccessGuard(const std::string& bindAddress)
    : m_tokenRequired(!IsLoopbackName(bindAddress)), m_token(NewToken()) {}

Refusal AccessGuard::Check(const httplib::Request& request) const {
    if (m_tokenRequired) {
        if (!SameText(request.get_param_value("token"), m_token))
            return {403, "this viewer needs the access token of the URL it printed"};
    } else if (!IsLoopbackName(HostName(request.get_header_value("Host")))) {
        // A name that only resolves to this machine (DNS rebinding) must not reach the camera.
        return {403, "this viewer answers to localhost or 127.0.0.1 only"};
    }
    // A page from another site can post a form to us, but not JSON without our consent.
    if (request.method == "POST" &&
        request.get_header_value("Content-Type").rfind("application/json", 0) != 0)
        return {415, "requests that change something must be sent as application/json"};
    return {};
}

} // namespace Cli
} // namespace Orvan
