#include "DeviceDescription.h"

#include "ErrorTranslation.h"

#include <zip.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <strings.h>
#include <tuple>
#include <vector>

namespace Orvan {
namespace {

#define DEVICE_SITE(function) ORVAN_SITE("Device", function)

struct UrlItem {
    int32_t cmd;
    const char* description;
    const char* call;
};

constexpr UrlItem kUrlItem = {GenTL::URL_INFO_URL, "Unable to get port URL",
                              "GCGetPortURLInfo, URL_INFO_URL"};
constexpr UrlItem kVersionItems[] = {
    {GenTL::URL_INFO_SCHEMA_VER_MAJOR, "Unable to get port URL schema version major",
     "GCGetPortURLInfo, URL_INFO_SCHEMA_VER_MAJOR"},
    {GenTL::URL_INFO_SCHEMA_VER_MINOR, "Unable to get port URL schema version minor",
     "GCGetPortURLInfo, URL_INFO_SCHEMA_VER_MINOR"},
    {GenTL::URL_INFO_FILE_VER_MAJOR, "Unable to get port URL file version major",
     "GCGetPortURLInfo, URL_INFO_FILE_VER_MAJOR"},
    {GenTL::URL_INFO_FILE_VER_MINOR, "Unable to get port URL file version minor",
     "GCGetPortURLInfo, URL_INFO_FILE_VER_MINOR"},
    {GenTL::URL_INFO_FILE_VER_SUBMINOR, "Unable to get port URL file version subminor",
     "GCGetPortURLInfo, URL_INFO_FILE_VER_SUBMINOR"},
};

void CheckUrlItem(int32_t status, const UrlItem& item) {
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, item.description, DEVICE_SITE("GetUrlInfo"), item.call);
}

XmlUrlInfo ReadUrlInfo(TLBase* module, uint32_t index) {
    XmlUrlInfo info;
    int32_t type = 0;
    size_t size = 0;
    CheckUrlItem(module->GetPortURLInfo(index, kUrlItem.cmd, &type, nullptr, &size), kUrlItem);
    std::vector<char> url(size + 1, '\0');
    CheckUrlItem(module->GetPortURLInfo(index, kUrlItem.cmd, &type, url.data(), &size), kUrlItem);
    info.url = url.data();
    int32_t* versions[] = {&info.schemaVersionMajor, &info.schemaVersionMinor,
                           &info.fileVersionMajor, &info.fileVersionMinor,
                           &info.fileVersionSubminor};
    for (size_t i = 0; i < std::size(kVersionItems); ++i) {
        size = sizeof(int32_t);
        CheckUrlItem(module->GetPortURLInfo(index, kVersionItems[i].cmd, &type, versions[i], &size),
                     kVersionItems[i]);
    }
    return info;
}

bool NewerFile(const XmlUrlInfo& a, const XmlUrlInfo& b) {
    return std::tie(a.fileVersionMajor, a.fileVersionMinor, a.fileVersionSubminor) >
           std::tie(b.fileVersionMajor, b.fileVersionMinor, b.fileVersionSubminor);
}

[[noreturn]] void ThrowMalformed(const std::string& url) {
    ThrowLibraryError<GenICam::InvalidArgumentException>("Malformed description URL: " + url,
                                                         DEVICE_SITE("ReadXML"));
}

uint64_t ParseHex(const std::string& text, const std::string& url) {
    if (text.empty() ||
        !std::all_of(text.begin(), text.end(),
                     [](unsigned char c) { return std::isxdigit(c) != 0; }) ||
        text.size() > 16)
        ThrowMalformed(url);
    return std::stoull(text, nullptr, 16);
}

// "local:[///]<file>;<hex address>;<hex length>[?query]"
std::vector<char> ReadRegisterSpace(TLBase* module, const std::string& url,
                                    const std::string& location) {
    size_t first = location.find(';');
    size_t second = location.find(';', first == std::string::npos ? first : first + 1);
    if (second == std::string::npos)
        ThrowMalformed(url);
    uint64_t address = ParseHex(location.substr(first + 1, second - first - 1), url);
    uint64_t length = ParseHex(location.substr(second + 1), url);
    std::vector<char> data(length);
    size_t size = data.size();
    int32_t status = GenTL::GCReadPort(module->GetHandle(), address, data.data(), &size);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to read port", DEVICE_SITE("ReadXML"), "GCReadPort");
    return data;
}

// "file:[//]<path>[?query]"
std::vector<char> ReadFile(const std::string& location) {
    std::string path = location.compare(0, 2, "//") == 0 ? location.substr(2) : location;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        ThrowLibraryError<GenICam::RuntimeException>("Unable to open description file " + path,
                                                     DEVICE_SITE("ReadXML"));
    return std::vector<char>(std::istreambuf_iterator<char>(file),
                             std::istreambuf_iterator<char>());
}

bool IsZipped(const std::vector<char>& data) {
    return data.size() >= 4 && std::memcmp(data.data(), "PK\x03\x04", 4) == 0;
}

bool EndsWithXml(const char* name) {
    size_t length = std::strlen(name);
    return length >= 4 && strcasecmp(name + length - 4, ".xml") == 0;
}

[[noreturn]] void ThrowUnzip() {
    ThrowLibraryError<GenICam::RuntimeException>("Unable to unzip description",
                                                 DEVICE_SITE("ReadXML"));
}

// The archive's first ".xml" member, or its first member if none is named so.
std::vector<char> Unzip(const std::vector<char>& zipped) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source = zip_source_buffer_create(zipped.data(), zipped.size(), 0, &error);
    zip_error_fini(&error);
    if (!source)
        ThrowUnzip();
    zip_t* archive = zip_open_from_source(source, ZIP_RDONLY, nullptr);
    if (!archive) {
        zip_source_free(source);
        ThrowUnzip();
    }
    std::unique_ptr<zip_t, decltype(&zip_discard)> owner(archive, zip_discard);
    zip_int64_t count = zip_get_num_entries(archive, 0);
    zip_uint64_t chosen = 0;
    for (zip_int64_t i = count - 1; i >= 0; --i)
        if (EndsWithXml(zip_get_name(archive, static_cast<zip_uint64_t>(i), 0)))
            chosen = static_cast<zip_uint64_t>(i);
    zip_stat_t stat;
    if (count <= 0 || zip_stat_index(archive, chosen, 0, &stat) != 0 ||
        !(stat.valid & ZIP_STAT_SIZE))
        ThrowUnzip();
    std::unique_ptr<zip_file_t, decltype(&zip_fclose)> member(zip_fopen_index(archive, chosen, 0),
                                                              zip_fclose);
    std::vector<char> xml(stat.size);
    if (!member ||
        zip_fread(member.get(), xml.data(), xml.size()) != static_cast<zip_int64_t>(xml.size()))
        ThrowUnzip();
    return xml;
}

} // namespace

void* GetRemotePort(TLDevice* device) {
    if (!device)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Device is null",
                                                             DEVICE_SITE("GetRemotePort"));
    void* port = nullptr;
    int32_t status = device->GetPort(&port);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to get remote device", DEVICE_SITE("GetRemotePort"),
                        "DevGetPort");
    return port;
}

XmlUrlInfo GetUrlInfo(TLBase* module) {
    if (!module)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Module is null",
                                                             DEVICE_SITE("GetUrlInfo"));
    uint32_t count = 0;
    int32_t status = module->GetNumPortURLs(&count);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to get port", DEVICE_SITE("GetUrlInfo"), "GCGetPortURL");
    if (count == 0)
        ThrowLibraryError<GenICam::LogicalErrorException>("Module has no description URL",
                                                          DEVICE_SITE("GetUrlInfo"));
    XmlUrlInfo best = ReadUrlInfo(module, 0);
    for (uint32_t index = 1; index < count; ++index) {
        XmlUrlInfo candidate = ReadUrlInfo(module, index);
        if (NewerFile(candidate, best))
            best = candidate;
    }
    return best;
}

void ReadXML(TLBase* module, XmlUrlInfo info, char** data, uint64_t& size) {
    if (!module)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Module is null",
                                                             DEVICE_SITE("ReadXML"));
    if (!data)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Data is null",
                                                             DEVICE_SITE("ReadXML"));
    const std::string& url = info.url;
    size_t colon = url.find(':');
    if (colon == std::string::npos)
        ThrowMalformed(url);
    std::string scheme = url.substr(0, colon);
    std::transform(scheme.begin(), scheme.end(), scheme.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    std::string location = url.substr(colon + 1, url.find('?') - colon - 1);
    std::vector<char> bytes;
    if (scheme == "local")
        bytes = ReadRegisterSpace(module, url, location);
    else if (scheme == "file")
        bytes = ReadFile(location);
    else if (scheme == "http" || scheme == "https")
        ThrowLibraryError<GenICam::LogicalErrorException>(
            "Descriptions on the web are not supported: " + url, DEVICE_SITE("ReadXML"));
    else
        ThrowMalformed(url);
    if (IsZipped(bytes))
        bytes = Unzip(bytes);
    *data = new char[bytes.size()];
    std::copy(bytes.begin(), bytes.end(), *data);
    size = bytes.size();
}

} // namespace Orvan
