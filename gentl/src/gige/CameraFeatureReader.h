// Reads a camera's own features (PayloadSize, the stream packet size), and sets the packet size
// a negotiation found, the way an application would: through the camera's description, loaded once
// over the control channel into our GenApi engine. The producer has no other way to know them;
// bootstrap registers do not say.
#ifndef ORVAN_GENTL_GIGE_CAMERAFEATUREREADER_H
#define ORVAN_GENTL_GIGE_CAMERAFEATUREREADER_H

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace GenApi {
struct INodeMap;
}

namespace Orvan {
namespace Producer {

class CameraFeatureReader {
public:
    // Register access to the camera; false on failure.
    using ReadFunction = std::function<bool(uint64_t address, void* data, size_t size)>;
    using WriteFunction = std::function<bool(uint64_t address, const void* data, size_t size)>;

    CameraFeatureReader(ReadFunction read, WriteFunction write);
    ~CameraFeatureReader();

    // The current value of an integer feature, read from the camera now (nothing cached but
    // the description). Empty when the description cannot be loaded, the feature does not
    // exist or is not readable.
    std::optional<int64_t> ReadInteger(const std::string& url, const std::string& name);
    // False when the feature cannot be written, or refuses the value.
    bool WriteInteger(const std::string& url, const std::string& name, int64_t value);

private:
    class Port;
    GenApi::INodeMap* Load(const std::string& url);

    std::mutex m_mutex;
    std::unique_ptr<Port> m_port;
    std::string m_loadedUrl;
    std::shared_ptr<GenApi::INodeMap> m_map;
};

} // namespace Producer
} // namespace Orvan

#endif
