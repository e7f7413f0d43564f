#include "ProducerLoader.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <stdexcept>

namespace Orvan {
namespace Producer {

namespace {

constexpr const char* kExtension = ".cti";

bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// The .cti files of a folder in name order, so the interface order does not depend on the
// file system; a folder that does not exist has none.
std::vector<std::string> ProducerFiles(const std::string& folder) {
    std::vector<std::string> files;
    DIR* directory = opendir(folder.c_str());
    if (!directory)
        return files;
    while (const dirent* entry = readdir(directory))
        if (EndsWith(entry->d_name, kExtension))
            files.push_back(folder + "/" + entry->d_name);
    closedir(directory);
    std::sort(files.begin(), files.end());
    return files;
}

// Links and other names of one file are the same file; a copy is not.
bool SameFile(const std::string& a, const std::string& b) {
    struct stat first {};
    struct stat second {};
    return stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

std::string Stem(const std::string& path) {
    const size_t slash = path.rfind('/');
    std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    return name.substr(0, name.size() - std::string(kExtension).size());
}

} // namespace

void ProducerLoader::LoadFolders(const std::vector<std::string>& folders) {
    for (const std::string& folder : folders)
        for (const std::string& path : ProducerFiles(folder))
            LoadFile(path);
}

void ProducerLoader::LoadFile(const std::string& path) {
    if (SameFile(path, m_ownFile))
        return;
    for (const auto& loaded : m_loaded)
        if (SameFile(path, loaded->Path()))
            return;
    try {
        m_loaded.push_back(ForeignProducer::Open(path, UniqueName(path)));
    } catch (const std::exception& error) {
        m_skipped.push_back({path, error.what()});
    }
}

std::string ProducerLoader::UniqueName(const std::string& path) {
    const std::string stem = Stem(path);
    std::string name = stem;
    for (int copy = 2; m_names.count(name); ++copy)
        name = stem + "#" + std::to_string(copy);
    m_names.insert(name);
    return name;
}

} // namespace Producer
} // namespace Orvan
