// The virtual camera set to draw Mono8 frames as fast as it can, so that a benchmark measures
// the path behind the camera rather than the camera's pacing.
#ifndef ORVAN_BENCH_FASTCAMERA_H
#define ORVAN_BENCH_FASTCAMERA_H

#include <Orvan/GenApiCustom.h>

#include <cstdint>

namespace Bench {

// The full 12-megapixel sensor unless told otherwise.
inline void MakeFast(GenApi::INodeMap* nodeMap, int64_t width = 4096, int64_t height = 3000) {
    Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "PixelFormat", "Mono8");
    Orvan::SetNodeValue<int64_t>(nodeMap, "Width", width);
    Orvan::SetNodeValue<int64_t>(nodeMap, "Height", height);
    Orvan::SetNodeValue<double>(nodeMap, "ExposureTime", 1.0);
    Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "DeviceLinkThroughputLimitMode", "Off");
    Orvan::SetNodeValue<bool>(nodeMap, "AcquisitionFrameRateEnable", false);
}

} // namespace Bench

#endif
