// Which other GenTL producers the producer loads: the .cti files in the folders of the standard
// GENICAM_GENTL64_PATH variable, unless ORVAN_GENTL_PRODUCERS=0 switches that off. A process
// under test control loads only what the test names, so that producers installed on a
// developer's machine never reach the test suite. Read when the system module opens.
#ifndef ORVAN_GENTL_GENTL_GENTLSETTINGS_H
#define ORVAN_GENTL_GENTL_GENTLSETTINGS_H

#include <mutex>
#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

class GentlSettings {
public:
    static GentlSettings& Instance();

    // The folders to search, in order; empty when the transport is off.
    std::vector<std::string> Folders() const;

    // Test control: a colon-separated folder list replaces the environment; empty switches the
    // transport off.
    void SetForTests(const std::string& folders);

private:
    GentlSettings() = default;

    mutable std::mutex m_mutex;
    bool m_testControlled = false;
    std::string m_testFolders;
};

} // namespace Producer
} // namespace Orvan

#endif
