// Which host interfaces the producer searches for GigE Vision cameras and on which GVCP port.
// Applications get every interface on the standard port; the environment narrows that
// (ORVAN_GIGE_INTERFACES="lo,eth1", or empty for none; ORVAN_GIGE_PORT=<port>) and tests steer
// it through the test-control interface. Read when the system module opens.
#ifndef ORVAN_GENTL_GIGE_GIGESETTINGS_H
#define ORVAN_GENTL_GIGE_GIGESETTINGS_H

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

class GigeSettings {
public:
    static GigeSettings& Instance();

    bool Enabled() const;
    // Whether the interface of that kernel name is searched.
    bool Selects(const std::string& interfaceName) const;
    // The port DISCOVERY, FORCEIP and the control channel address on the cameras.
    uint16_t Port() const;

    void SetEnabled(bool enabled);
    // Overrides the environment: a comma-separated list of interface names (nullopt: back to
    // the environment) and a port (0: back to the environment).
    void Override(std::optional<std::string> interfaces, uint16_t port);
    // The state of a process under test control: no network interfaces until enabled.
    void ResetForTests();

private:
    GigeSettings() = default;
    std::vector<std::string> InterfaceNames(bool& all) const;

    mutable std::mutex m_mutex;
    bool m_enabled = true;
    std::optional<std::string> m_interfaces;
    uint16_t m_port = 0;
};

} // namespace Producer
} // namespace Orvan

#endif
