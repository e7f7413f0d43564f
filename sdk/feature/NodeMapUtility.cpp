#include "NodeMapUtility.h"

#include "core/ErrorTranslation.h"

#include <GenApi/IDestroy.h>
#include <GenApi/NodeMapFactory.h>

#include <fstream>
#include <vector>

namespace Orvan {
namespace {

struct ModuleKind {
    const char* fileNamePart;
    const char* moduleName;
};

// Checked in this order; the first match names the port.
constexpr ModuleKind kModuleKinds[] = {
    {"GenTLSystem", "TL"},
    {"GenTLInterface", "Interface"},
    {"GenTLDevice", "Device"},
    {"GenTLDataStream", "Stream"},
};

std::string ModuleName(const std::string& fileName) {
    for (const ModuleKind& kind : kModuleKinds)
        if (fileName.find(kind.fileNamePart) != std::string::npos)
            return kind.moduleName;
    return {};
}

// "local:<file>;<hex address>;<hex length>[?query]": the description in the module's own
// register space. Malformed numbers leave as the conversion's own exceptions.
std::vector<char> ReadLocal(TLBase* module, const std::string& url, std::string& fileName) {
    size_t colon = url.find(':');
    size_t first = url.find(';');
    size_t second = url.find(';', first + 1);
    fileName = url.substr(colon + 1, first - colon - 1);
    int64_t address = std::stoll(url.substr(first + 1, second - first - 1), nullptr, 16);
    int32_t length = std::stoi(url.substr(second + 1, url.find('?') - second - 1), nullptr, 16);
    std::vector<char> data(static_cast<size_t>(length));
    size_t size = data.size();
    // A failed read leaves zeros, which the description parser then rejects.
    GenTL::GCReadPort(module->GetHandle(), static_cast<uint64_t>(address), data.data(), &size);
    return data;
}

// Anything else names a file on disk; a missing file gives no data.
std::vector<char> ReadDisk(const std::string& url, std::string& fileName) {
    size_t colon = url.find(':');
    fileName = url.substr(colon + 1, url.find('?') - colon - 1);
    std::ifstream file(fileName, std::ios::binary);
    if (!file)
        return {};
    file.seekg(0, std::ios::end);
    std::vector<char> data(static_cast<size_t>(file.tellg()));
    file.seekg(0, std::ios::beg);
    file.read(data.data(), static_cast<std::streamsize>(data.size()));
    return data;
}

} // namespace

std::string GetUrl(TLBase* module) {
    if (!module)
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Module is null", ORVAN_SITE("NodeMapUtility", "GetUrl"));
    char url[256] = {};
    size_t size = sizeof(url);
    int32_t status = module->GetPortURL(url, &size);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLErrorShort(status, "Unable to get port URL",
                             ORVAN_SITE("NodeMapUtility", "GetUrl"));
    url[sizeof(url) - 1] = '\0';
    return url;
}

GenApi::INodeMap* InitNodeMap(TLBase* module, Port& port) {
    std::string url = GetUrl(module);
    std::string fileName;
    std::vector<char> data = url.compare(0, 6, "local:") == 0 ? ReadLocal(module, url, fileName)
                                                              : ReadDisk(url, fileName);
    if (data.empty())
        return nullptr;
    GenApi::CNodeMapFactory factory(GenApi::ContentType_Auto, data.data(), data.size(),
                                    GenApi::CacheUsage_Automatic, false);
    GenApi::INodeMap* nodeMap = factory.CreateNodeMap("Device", true);
    try {
        nodeMap->Connect(&port, (ModuleName(fileName) + "Port").c_str());
    } catch (...) {
        DestroyNodeMap(nodeMap);
        throw;
    }
    return nodeMap;
}

void DestroyNodeMap(GenApi::INodeMap* nodeMap) noexcept {
    if (auto* destroy = dynamic_cast<GenApi::IDestroy*>(nodeMap))
        destroy->Destroy();
}

} // namespace Orvan
