// The opened camera as the viewer's page drives it: acquisition started and stopped on request,
// the newest image encoded for the browser, features read and written, settings saved and
// loaded, the shown image saved. Requests come from several server threads; the camera's
// features are touched by one at a time.
#ifndef ORVAN_TOOLS_ORVAN_LIVECAMERA_H
#define ORVAN_TOOLS_ORVAN_LIVECAMERA_H

#include "Acquisition.h"
#include "FrameEncoder.h"
#include "NewestFrame.h"

#include <Orvan/DeviceInfo.h>
#include <Orvan/IDevice.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>

namespace Orvan {
namespace Cli {

class LiveCamera {
public:
    LiveCamera(IDevice& device, const DeviceInfo& info);

    void Start();
    void Stop();
    // Starts the stream for one complete image.
    void SingleFrame();
    // Counts and rates, the shown image's properties and histogram.
    nlohmann::json Status();

    nlohmann::json Features();
    // A feature that the running stream locks (pixel format, image size) is written with the
    // stream stopped for the moment. Returns the feature's state afterwards.
    nlohmann::json Write(const std::string& name, const std::string& value);
    void Execute(const std::string& name);
    // The camera's settings as a feature file, and back.
    std::string SaveSettings();
    void LoadSettings(const std::string& content);

    FrameEncoder& Frames() { return m_encoder; }
    // The last shown image as PNG, as "orvan stream --save" writes it. Throws ToolError when
    // none was shown yet.
    std::string ShownImagePng(uint64_t& frameId);

private:
    void WhileStopped(const std::function<void()>& action);
    std::string Problem(const AcquisitionCounts& counts) const;
    uint64_t LostFrames();

    IDevice& m_device;
    const DeviceInfo m_info;
    std::mutex m_mutex;
    uint64_t m_lost = 0;
    // Destroyed in reverse: the acquisition, which wakes the encoder, stops first.
    NewestFrame m_frames;
    FrameEncoder m_encoder;
    Acquisition m_acquisition;
};

} // namespace Cli
} // namespace Orvan

#endif
