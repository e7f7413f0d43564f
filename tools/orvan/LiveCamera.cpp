#include "LiveCamera.h"

#include "DisplayImage.h"
#include "FeatureAccess.h"
#include "FeatureJson.h"
#include "ImageSaver.h"
#include "ScratchDirectory.h"
#include "ToolError.h"

#include <Base/GCException.h>
#include <GenApi/AccessModeHelpers.h>
#include <Orvan/FeatureStream.h>
#include <Orvan/GenApiCustom.h>
#include <Orvan/ImageFactory.h>
#include <OrvanImageFile/ImageFile.h>

#include <memory>

namespace Orvan {
namespace Cli {

namespace {

constexpr const char* kSettingsFile = "settings.txt";

nlohmann::json HistogramJson(const ShownFrame& frame) {
    nlohmann::json channels = nlohmann::json::array();
    for (const auto& bins : frame.histogram)
        channels.push_back(bins);
    return channels;
}

nlohmann::json FrameJson(const ShownFrame& frame) {
    return {{"sequence", frame.sequence},
            {"frameId", frame.source.frameId},
            {"width", frame.source.width},
            {"height", frame.source.height},
            {"pixelFormat", PixelFormatName(frame.source.pixelFormat)},
            {"histogram", HistogramJson(frame)}};
}

} // namespace

LiveCamera::LiveCamera(IDevice& device, const DeviceInfo& info)
    : m_device(device), m_info(info), m_encoder(m_frames),
      m_acquisition(device, m_frames, [this] { m_encoder.Wake(); }) {}

void LiveCamera::Start() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_acquisition.Start();
}

void LiveCamera::Stop() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_acquisition.Stop();
}

void LiveCamera::SingleFrame() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_acquisition.Start(1);
}

nlohmann::json LiveCamera::Status() {
    std::lock_guard<std::mutex> lock(m_mutex);
    const AcquisitionCounts counts = m_acquisition.Counts();
    nlohmann::json status = {{"camera",
                              {{"model", m_info.ModelName().c_str()},
                               {"serial", m_info.SerialNumber().c_str()},
                               {"vendor", m_info.VendorName().c_str()}}},
                             {"acquiring", m_acquisition.Running()},
                             {"images", counts.images},
                             {"lost", LostFrames()},
                             {"incomplete", counts.incomplete},
                             {"skipped", m_frames.Replaced()},
                             {"encoded", m_encoder.Encoded()},
                             {"fps", counts.framesPerSecond},
                             {"megabytesPerSecond", counts.megabytesPerSecond},
                             {"frameIntervalMs", counts.frameIntervalMs},
                             {"problem", Problem(counts)}};
    if (const auto shown = m_encoder.Latest())
        status["frame"] = FrameJson(*shown);
    return status;
}

// What keeps images from the page, most fundamental first; empty when nothing does.
std::string LiveCamera::Problem(const AcquisitionCounts& counts) const {
    if (!counts.error.empty())
        return counts.error;
    if (counts.withoutImage > 0 && counts.withoutImage == counts.images)
        return "the camera delivers no images the viewer can show (compressed or chunk data only)";
    return m_encoder.Problem();
}

// The stream's own count; it goes with the stream, so the last one read stays until the next
// stream starts.
uint64_t LiveCamera::LostFrames() {
    if (m_acquisition.Running()) {
        try {
            m_lost = static_cast<uint64_t>(
                GetNodeValue<int64_t>(m_device.GetTLStreamNodeMap(), "StreamLostFrameCount"));
        } catch (const GenICam::GenericException&) {
        }
    }
    return m_lost;
}

nlohmann::json LiveCamera::Features() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return FeatureStateTree(m_device.GetNodeMap());
}

nlohmann::json LiveCamera::Write(const std::string& name, const std::string& value) {
    std::lock_guard<std::mutex> lock(m_mutex);
    GenApi::INode& node = FindFeature(m_device.GetNodeMap(), name);
    if (GenApi::IsWritable(&node))
        WriteFeature(node, value);
    else
        WhileStopped([&] { WriteFeature(node, value); });
    return FeatureState(node);
}

void LiveCamera::Execute(const std::string& name) {
    std::lock_guard<std::mutex> lock(m_mutex);
    ExecuteFeature(FindFeature(m_device.GetNodeMap(), name));
}

std::string LiveCamera::SaveSettings() {
    std::lock_guard<std::mutex> lock(m_mutex);
    ScratchDirectory scratch;
    FeatureStream(m_device.GetNodeMap()).Write((scratch.Path() / kSettingsFile).c_str());
    return scratch.ReadOnlyFile();
}

void LiveCamera::LoadSettings(const std::string& content) {
    std::lock_guard<std::mutex> lock(m_mutex);
    ScratchDirectory scratch;
    scratch.Write(kSettingsFile, content);
    WhileStopped([&] {
        FeatureStream(m_device.GetNodeMap()).Read((scratch.Path() / kSettingsFile).c_str());
    });
}

// Restarts the stream afterwards whether or not the action succeeded.
void LiveCamera::WhileStopped(const std::function<void()>& action) {
    const bool running = m_acquisition.Running();
    m_acquisition.Stop();
    try {
        action();
    } catch (...) {
        if (running)
            m_acquisition.Start();
        throw;
    }
    if (running)
        m_acquisition.Start();
}

std::string LiveCamera::ShownImagePng(uint64_t& frameId) {
    const auto shown = m_encoder.Latest();
    if (!shown)
        throw ToolError("no image has been shown yet");
    const RawFrame& frame = shown->source;
    frameId = frame.frameId;
    std::unique_ptr<IImage, void (*)(IImage*)> image(
        ImageFactory::Shallow(frame.pixels.data(), frame.pixels.size(), frame.width, frame.height,
                              frame.pixelFormat),
        ImageFactory::Destroy);
    ScratchDirectory scratch;
    ImageSaver(scratch.Path().string(), ImageFile::Format::Png).Save(*image);
    return scratch.ReadOnlyFile();
}

} // namespace Cli
} // namespace Orvan
