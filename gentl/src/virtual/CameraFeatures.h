// The features of the virtual cameras: the part every model shares (identity, image format,
// acquisition, analog, transport, actions, chunks, events, user sets) and each model's additions,
// declared once for both the description and the register map. The enumeration values below are
// what the registers hold.
#ifndef ORVAN_GENTL_VIRTUAL_CAMERAFEATURES_H
#define ORVAN_GENTL_VIRTUAL_CAMERAFEATURES_H

#include "CameraModel.h"
#include "DescriptionBuilder.h"

#include <cstdint>

namespace Orvan {
namespace Producer {

namespace Layout {
// GigE Vision bootstrap addresses for identity and network registers, so that a reader who
// knows that area finds them where it expects.
constexpr uint64_t kMacAddress = 0x0008;
constexpr uint64_t kCurrentIp = 0x0024;
constexpr uint64_t kCurrentSubnet = 0x0034;
constexpr uint64_t kCurrentGateway = 0x0044;
constexpr uint64_t kVendorName = 0x0048;
constexpr uint64_t kModelName = 0x0068;
constexpr uint64_t kDeviceVersion = 0x0088;
constexpr uint64_t kManufacturerInfo = 0x00A8;
constexpr uint64_t kSerialNumber = 0x00D8;
constexpr uint64_t kUserId = 0x00E8;
constexpr uint64_t kFirstUrl = 0x0200;
constexpr uint64_t kSecondUrl = 0x0400;
constexpr uint32_t kUrlLength = 0x200;
// Feature blocks: each feature takes 0x20-byte slots in declaration order.
constexpr uint64_t kDeviceControl = 0x10000;
constexpr uint64_t kImageFormat = 0x11000;
constexpr uint64_t kAcquisition = 0x12000;
constexpr uint64_t kAnalog = 0x13000;
constexpr uint64_t kTransport = 0x14000;
constexpr uint64_t kAction = 0x14800;
constexpr uint64_t kChunks = 0x15000;
constexpr uint64_t kEvents = 0x16000;
constexpr uint64_t kUserSets = 0x17000;
constexpr uint64_t kModelSpecific = 0x18000;
// The description file (plain or zipped).
constexpr uint64_t kDescription = 0x100000;
} // namespace Layout

enum class ScanType : int64_t { Areascan = 0, Linescan = 1 };
enum class AcquisitionMode : int64_t { SingleFrame = 0, MultiFrame = 1, Continuous = 2 };
enum class ExposureAuto : int64_t { Off = 0, Once = 1, Continuous = 2 };
enum class TriggerSource : int64_t { Software = 0, Line0 = 1, Action1 = 2 };
enum class TestPatternValue : int64_t {
    Off = 0,
    Black = 1,
    GreyHorizontalRamp = 2,
    ColorBar = 3,
    GreyDiagonalRampMoving = 4
};
enum class TransportProtocol : int64_t { UDP = 0, TCP = 1, RDMA = 2 };
enum class UserSet : int64_t { Default = 0, UserSet1 = 1, UserSet2 = 2 };
constexpr int64_t kUserSetCount = 3;

// ChunkSelector values; bit n of the enable mask belongs to chunk n.
enum class Chunk : int64_t {
    Image,
    CRC,
    Width,
    Height,
    OffsetX,
    OffsetY,
    PixelFormat,
    ExposureTime,
    Gain,
    Timestamp,
    FrameID,
    Count
};
struct ChunkInfo {
    const char* name;
    uint32_t id;
    uint32_t length; // bytes of chunk data
    bool isFloat;
};
const ChunkInfo& ChunkInfoOf(Chunk chunk);

// EventSelector values and the GigE Vision event IDs they send.
enum class CameraEvent : int64_t { ExposureEnd = 0, FrameStart = 1, Count };
uint16_t EventIdOf(CameraEvent event);
// Where an event's data sits in its record (after the 16-byte standard event header).
constexpr uint32_t kEventTimestampOffset = 0x08;
constexpr uint32_t kEventFrameIdOffset = 0x10;

// Declares everything a model has into the builder.
void DeclareCameraFeatures(const CameraModel& model, DescriptionBuilder& builder);

} // namespace Producer
} // namespace Orvan

#endif
