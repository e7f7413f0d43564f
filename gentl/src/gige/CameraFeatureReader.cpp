#include "CameraFeatureReader.h"

#include <GenApi/GenApi.h>

#include <strings.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <vector>

namespace Orvan {
namespace Producer {

class CameraFeatureReader::Port : public GenApi::IPort {
public:
    Port(ReadFunction read, WriteFunction write)
        : m_read(std::move(read)), m_write(std::move(write)) {}
    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
    void Read(void* buffer, int64_t address, int64_t length) override {
        if (address < 0 || length < 0 ||
            !m_read(static_cast<uint64_t>(address), buffer, static_cast<size_t>(length)))
            throw GenICam::GenericException("register read failed", __FILE__, __LINE__);
    }
    void Write(const void* buffer, int64_t address, int64_t length) override {
        if (address < 0 || length < 0 ||
            !m_write(static_cast<uint64_t>(address), buffer, static_cast<size_t>(length)))
            throw GenICam::GenericException("register write failed", __FILE__, __LINE__);
    }

private:
    ReadFunction m_read;
    WriteFunction m_write;
};

namespace {

// "local:[///]<file>;<hex address>;<hex length>[?query]" read through the port.
bool ReadLocal(GenApi::IPort& port, const std::string& location, std::vector<char>& bytes) {
    const size_t first = location.find(';');
    const size_t second = location.find(';', first == std::string::npos ? first : first + 1);
    if (first == std::string::npos || second == std::string::npos)
        return false;
    char* end = nullptr;
    const unsigned long long address = std::strtoull(location.c_str() + first + 1, &end, 16);
    const unsigned long long length = std::strtoull(location.c_str() + second + 1, &end, 16);
    // A description is a few MB at most; refuse nonsense before allocating.
    if (length == 0 || length > (64u << 20))
        return false;
    bytes.resize(static_cast<size_t>(length));
    port.Read(bytes.data(), static_cast<int64_t>(address), static_cast<int64_t>(length));
    return true;
}

bool ReadFile(const std::string& location, std::vector<char>& bytes) {
    std::string path = location.compare(0, 2, "//") == 0 ? location.substr(2) : location;
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return true;
}

} // namespace

CameraFeatureReader::CameraFeatureReader(ReadFunction read, WriteFunction write)
    : m_port(new Port(std::move(read), std::move(write))) {}

CameraFeatureReader::~CameraFeatureReader() = default;

GenApi::INodeMap* CameraFeatureReader::Load(const std::string& url) {
    if (m_map && url == m_loadedUrl)
        return m_map.get();
    m_map.reset();
    const size_t colon = url.find(':');
    if (colon == std::string::npos)
        return nullptr;
    const std::string scheme = url.substr(0, colon);
    const std::string location = url.substr(colon + 1, url.find('?') - colon - 1);
    std::vector<char> bytes;
    if (strcasecmp(scheme.c_str(), "local") == 0) {
        size_t start = location.find_first_not_of('/');
        if (start == std::string::npos || !ReadLocal(*m_port, location.substr(start), bytes))
            return nullptr;
    } else if (strcasecmp(scheme.c_str(), "file") != 0 || !ReadFile(location, bytes)) {
        return nullptr;
    }
    // Whatever the file is called, a zip archive announces itself.
    const bool zipped =
        bytes.size() >= 4 && bytes[0] == 'P' && bytes[1] == 'K' && bytes[2] == 3 && bytes[3] == 4;
    GenApi::CNodeMapFactory factory(zipped ? GenApi::ContentType_ZippedXml
                                           : GenApi::ContentType_Xml,
                                    bytes.data(), bytes.size());
    GenApi::INodeMap* map = factory.CreateNodeMap();
    m_map.reset(map, [](GenApi::INodeMap* doomed) {
        if (auto* destroy = dynamic_cast<GenApi::IDestroy*>(doomed))
            destroy->Destroy();
    });
    if (!map->Connect(m_port.get())) {
        m_map.reset();
        return nullptr;
    }
    m_loadedUrl = url;
    return map;
}

std::optional<int64_t> CameraFeatureReader::ReadInteger(const std::string& url,
                                                        const std::string& name) {
    std::lock_guard<std::mutex> lock(m_mutex);
    try {
        GenApi::INodeMap* map = Load(url);
        if (map == nullptr)
            return std::nullopt;
        GenApi::CIntegerPtr feature = map->GetNode(name.c_str());
        if (!GenApi::IsReadable(feature))
            return std::nullopt;
        return feature->GetValue(false, true);
    } catch (const std::exception&) {
        // A description we cannot use, or a camera that stopped answering: no value.
        return std::nullopt;
    }
}

bool CameraFeatureReader::WriteInteger(const std::string& url, const std::string& name,
                                       int64_t value) {
    std::lock_guard<std::mutex> lock(m_mutex);
    try {
        GenApi::INodeMap* map = Load(url);
        GenApi::CIntegerPtr feature = map ? map->GetNode(name.c_str()) : nullptr;
        if (!GenApi::IsWritable(feature))
            return false;
        feature->SetValue(value);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace Producer
} // namespace Orvan
