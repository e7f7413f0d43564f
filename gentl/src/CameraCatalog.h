// Which cameras the virtual interfaces report, and how cameras are made. Set by the test-control
// interface at any time; read when the system module opens.
#ifndef ORVAN_GENTL_CAMERACATALOG_H
#define ORVAN_GENTL_CAMERACATALOG_H

#include "RemoteDevice.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

class CameraCatalog {
public:
    using Maker =
        std::function<std::unique_ptr<RemoteDevice>(const std::string& model, uint32_t index)>;

    static CameraCatalog& Instance();

    // Cameras are spread over the interfaces in turn: camera i sits on interface
    // i % interfaceCount and is made with index i.
    void Configure(std::vector<std::string> models, uint32_t interfaceCount);
    // Replaces the camera factory (tests); null, or Reset, restores the virtual cameras.
    void SetMaker(Maker maker);
    void Reset();

    uint32_t InterfaceCount() const;
    // The cameras of every interface, freshly made.
    std::vector<std::vector<std::shared_ptr<RemoteDevice>>> MakeCameras() const;
    bool KnowsModel(const std::string& model) const;

private:
    CameraCatalog();

    mutable std::mutex m_mutex;
    std::vector<std::string> m_models;
    uint32_t m_interfaceCount = 1;
    Maker m_maker;
    bool m_customMaker = false;
};

} // namespace Producer
} // namespace Orvan

#endif
