#include "GigeSettings.h"

#include "GevProtocol.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

namespace Orvan {
namespace Producer {

GigeSettings& GigeSettings::Instance() {
    static GigeSettings instance;
    return instance;
}

bool GigeSettings::Enabled() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_enabled;
}

std::vector<std::string> GigeSettings::InterfaceNames(bool& all) const {
    std::optional<std::string> text = m_interfaces;
    if (!text) {
        const char* variable = std::getenv("ORVAN_GIGE_INTERFACES");
        if (variable)
            text = variable;
    }
    all = !text;
    std::vector<std::string> names;
    if (text) {
        std::istringstream list(*text);
        for (std::string name; std::getline(list, name, ',');)
            if (!name.empty())
                names.push_back(name);
    }
    return names;
}

bool GigeSettings::Selects(const std::string& interfaceName) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    bool all = false;
    std::vector<std::string> names = InterfaceNames(all);
    return all || std::find(names.begin(), names.end(), interfaceName) != names.end();
}

uint16_t GigeSettings::Port() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_port)
        return m_port;
    if (const char* variable = std::getenv("ORVAN_GIGE_PORT")) {
        char* end = nullptr;
        unsigned long port = std::strtoul(variable, &end, 10);
        if (end != variable && *end == '\0' && port > 0 && port <= 65535)
            return static_cast<uint16_t>(port);
    }
    return Gev::kGvcpPort;
}

void GigeSettings::SetEnabled(bool enabled) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_enabled = enabled;
}

void GigeSettings::Override(std::optional<std::string> interfaces, uint16_t port) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_interfaces = std::move(interfaces);
    m_port = port;
}

void GigeSettings::ResetForTests() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_enabled = false;
    m_interfaces.reset();
    m_port = 0;
}

} // namespace Producer
} // namespace Orvan
