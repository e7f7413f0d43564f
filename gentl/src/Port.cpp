#include "Port.h"

#include "GenTLError.h"

namespace Orvan {
namespace Producer {

namespace {

// The parts of a "local:<file>;<address>;<length>[?query]" URL.
struct LocalUrl {
    std::string file;
    uint64_t address = 0;
    uint64_t length = 0;
};

bool ParseLocalUrl(const std::string& url, LocalUrl& parsed) {
    const std::string scheme = "local:";
    if (url.compare(0, scheme.size(), scheme) != 0)
        return false;
    size_t first = url.find(';', scheme.size());
    size_t second = first == std::string::npos ? first : url.find(';', first + 1);
    if (second == std::string::npos)
        return false;
    size_t query = url.find('?', second);
    parsed.file = url.substr(scheme.size(), first - scheme.size());
    try {
        parsed.address = std::stoull(url.substr(first + 1, second - first - 1), nullptr, 16);
        parsed.length = std::stoull(url.substr(second + 1, query - second - 1), nullptr, 16);
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

LocalUrl RequireLocal(const std::string& url) {
    LocalUrl parsed;
    if (!ParseLocalUrl(url, parsed))
        throw GenTLError(GenTL::GC_ERR_NOT_AVAILABLE, "The description is not in the register "
                                                      "space: " +
                                                          url);
    return parsed;
}

} // namespace

InfoValue Port::Info(GenTL::PORT_INFO_CMD cmd) const {
    PortIdentity identity = Identity();
    switch (cmd) {
    case GenTL::PORT_INFO_ID:
        return InfoValue::String(identity.id);
    case GenTL::PORT_INFO_VENDOR:
        return InfoValue::String(identity.vendor);
    case GenTL::PORT_INFO_MODEL:
        return InfoValue::String(identity.model);
    case GenTL::PORT_INFO_TLTYPE:
        return InfoValue::String(identity.tlType);
    case GenTL::PORT_INFO_MODULE:
        return InfoValue::String(identity.module);
    case GenTL::PORT_INFO_LITTLE_ENDIAN:
        return InfoValue::Bool8(identity.littleEndian);
    case GenTL::PORT_INFO_BIG_ENDIAN:
        return InfoValue::Bool8(!identity.littleEndian);
    case GenTL::PORT_INFO_ACCESS_READ:
        return InfoValue::Bool8(identity.readable);
    case GenTL::PORT_INFO_ACCESS_WRITE:
        return InfoValue::Bool8(identity.writable);
    case GenTL::PORT_INFO_ACCESS_NA:
        return InfoValue::Bool8(!identity.readable && !identity.writable);
    case GenTL::PORT_INFO_ACCESS_NI:
        return InfoValue::Bool8(false);
    case GenTL::PORT_INFO_VERSION:
        return InfoValue::String(identity.version);
    case GenTL::PORT_INFO_PORTNAME:
        return InfoValue::String(identity.portName);
    default:
        throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER,
                         "Unknown port info command " + std::to_string(cmd));
    }
}

InfoValue Port::UrlInfo(uint32_t index, GenTL::URL_INFO_CMD cmd) const {
    if (index != 0)
        throw GenTLError(GenTL::GC_ERR_INVALID_INDEX, "The port has one description URL");
    DescriptionLocation location = Description();
    switch (cmd) {
    case GenTL::URL_INFO_URL:
        return InfoValue::String(location.url);
    case GenTL::URL_INFO_SCHEMA_VER_MAJOR:
        return InfoValue::Int32(location.schemaMajor);
    case GenTL::URL_INFO_SCHEMA_VER_MINOR:
        return InfoValue::Int32(location.schemaMinor);
    case GenTL::URL_INFO_FILE_VER_MAJOR:
        return InfoValue::Int32(location.fileMajor);
    case GenTL::URL_INFO_FILE_VER_MINOR:
        return InfoValue::Int32(location.fileMinor);
    case GenTL::URL_INFO_FILE_VER_SUBMINOR:
        return InfoValue::Int32(location.fileSubminor);
    case GenTL::URL_INFO_FILE_SHA1_HASH:
        throw GenTLError(GenTL::GC_ERR_NOT_AVAILABLE, "No hash is published for the description");
    case GenTL::URL_INFO_FILE_REGISTER_ADDRESS:
        return InfoValue::UInt64(RequireLocal(location.url).address);
    case GenTL::URL_INFO_FILE_SIZE:
        return InfoValue::UInt64(RequireLocal(location.url).length);
    case GenTL::URL_INFO_SCHEME: {
        LocalUrl parsed;
        return InfoValue::Int32(ParseLocalUrl(location.url, parsed) ? GenTL::URL_SCHEME_LOCAL
                                                                    : GenTL::URL_SCHEME_FILE);
    }
    case GenTL::URL_INFO_FILENAME:
        return InfoValue::String(RequireLocal(location.url).file);
    default:
        throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER,
                         "Unknown URL info command " + std::to_string(cmd));
    }
}

} // namespace Producer
} // namespace Orvan
