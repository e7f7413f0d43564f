#include "GentlSettings.h"

#include <cstdlib>
#include <cstring>
#include <sstream>

namespace Orvan {
namespace Producer {

namespace {

std::vector<std::string> SplitFolders(const std::string& text) {
    std::vector<std::string> folders;
    std::istringstream list(text);
    for (std::string folder; std::getline(list, folder, ':');)
        if (!folder.empty())
            folders.push_back(folder);
    return folders;
}

std::string EnvironmentFolders() {
    const char* off = std::getenv("ORVAN_GENTL_PRODUCERS");
    if (off && std::strcmp(off, "0") == 0)
        return "";
    const char* path = std::getenv("GENICAM_GENTL64_PATH");
    return path ? path : "";
}

} // namespace

GentlSettings& GentlSettings::Instance() {
    static GentlSettings instance;
    return instance;
}

std::vector<std::string> GentlSettings::Folders() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return SplitFolders(m_testControlled ? m_testFolders : EnvironmentFolders());
}

void GentlSettings::SetForTests(const std::string& folders) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_testControlled = true;
    m_testFolders = folders;
}

} // namespace Producer
} // namespace Orvan
