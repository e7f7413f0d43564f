// The virtual camera models: what tells one from another (sensor, formats, link, streams and the
// optional feature groups). Everything else they share.
#ifndef ORVAN_GENTL_VIRTUAL_CAMERAMODEL_H
#define ORVAN_GENTL_VIRTUAL_CAMERAMODEL_H

#include <cstdint>
#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

// What a stream index carries. The index itself is the transport the SDK selects by: 0 UDP,
// 1 TCP, 2 RDMA, 3 event-based sensor, 4 multipart.
enum class StreamRole { Idle, Udp, Tcp, Rdma, EventData, Multipart };

struct CameraModel {
    std::string key;       // CreateVirtualCamera's model name
    std::string modelName; // DeviceModelName
    uint8_t number = 0;    // makes serial numbers, MACs and addresses distinct per model
    bool lineScan = false;
    uint32_t sensorWidth = 0;
    uint32_t sensorHeight = 0; // line scan: the lines one frame may hold
    uint32_t defaultWidth = 0;
    uint32_t defaultHeight = 0;
    uint32_t maxBinning = 4;
    std::vector<uint32_t> pixelFormats; // the first is the default
    uint64_t linkSpeed = 0;             // bytes per second
    std::vector<StreamRole> streams;
    bool zippedDescription = false;
    bool transportSelection = false; // TCPEnable / TransportStreamProtocol
    bool eventSensor = false;        // EventFormat, ERC
};

const std::vector<CameraModel>& CameraModels();
const CameraModel* FindCameraModel(const std::string& key);

} // namespace Producer
} // namespace Orvan

#endif
