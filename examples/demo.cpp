// The Orvan demo: finds the camera, sets a few features, streams 200 images while showing the
// rate, checks the last image's CRC and saves it as a PNG file.
//
//   orvan-demo [output.png]      (default: orvan-demo-last.png in the working directory)
#include <Orvan/OrvanApi.h>
#include <OrvanImageFile/ImageFile.h>

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

constexpr int kImageCount = 200;
constexpr uint64_t kImageTimeoutMs = 2000;

using Clock = std::chrono::steady_clock;

// Shows how streaming goes: rewritten in place on a terminal, one line now and then otherwise,
// so that a log file does not fill with hundreds of lines.
class Progress {
public:
    Progress() : m_terminal(isatty(STDOUT_FILENO) != 0), m_start(Clock::now()) {}

    void Update(int images, size_t bytes, int64_t lost) {
        const bool last = images == kImageCount;
        if (!m_terminal && images % 50 != 0 && !last)
            return;
        const double seconds = std::chrono::duration<double>(Clock::now() - m_start).count();
        const double rate = seconds > 0 ? images / seconds : 0;
        const double megabytes = seconds > 0 ? bytes / seconds / 1e6 : 0;
        std::printf("%s  images %3d/%d  %6.1f fps  %7.1f MB/s  lost %lld%s", m_terminal ? "\r" : "",
                    images, kImageCount, rate, megabytes, static_cast<long long>(lost),
                    m_terminal && !last ? "" : "\n");
        std::fflush(stdout);
    }

private:
    bool m_terminal;
    Clock::time_point m_start;
};

Orvan::DeviceInfo FindCamera(Orvan::ISystem* system) {
    system->UpdateDevices(1000);
    const std::vector<Orvan::DeviceInfo> devices = system->GetDevices();
    if (devices.empty())
        throw std::runtime_error("no camera found");
    std::cout << "Found " << devices.size() << " camera(s); using the first\n";
    return devices.front();
}

// Features are set by their standard names; each write goes to the camera at once.
void Configure(GenApi::INodeMap* nodeMap) {
    Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "PixelFormat", "Mono8");
    Orvan::SetNodeValue<int64_t>(nodeMap, "Width", 1280);
    Orvan::SetNodeValue<int64_t>(nodeMap, "Height", 960);
    Orvan::SetNodeValue<double>(nodeMap, "ExposureTime", 2000.0);
    Orvan::SetNodeValue<double>(nodeMap, "Gain", 6.0);
    Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "TestPattern", "GreyDiagonalRampMoving");
    // A fixed rate keeps the run short and the progress line readable.
    Orvan::SetNodeValue<bool>(nodeMap, "AcquisitionFrameRateEnable", true);
    Orvan::SetNodeValue<double>(nodeMap, "AcquisitionFrameRate", 100.0);
    // Every image then carries chunk data, the CRC of its pixels among them.
    Orvan::SetNodeValue<bool>(nodeMap, "ChunkModeActive", true);
    Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "ChunkSelector", "CRC");
    Orvan::SetNodeValue<bool>(nodeMap, "ChunkEnable", true);
    std::cout << "Set PixelFormat=Mono8 Width=1280 Height=960 ExposureTime=2000us Gain=6dB "
                 "AcquisitionFrameRate=100Hz ChunkModeActive=true\n";
}

// Streams kImageCount images and returns the last one, still the device's.
Orvan::IImage* Stream(Orvan::IDevice* device) {
    GenApi::INodeMap* streamMap = device->GetTLStreamNodeMap();
    Progress progress;
    size_t bytes = 0;
    device->StartStream();
    for (int count = 1;; ++count) {
        Orvan::IImage* image = device->GetImage(kImageTimeoutMs);
        bytes += image->GetSizeFilled();
        progress.Update(count, bytes,
                        Orvan::GetNodeValue<int64_t>(streamMap, "StreamLostFrameCount"));
        if (count == kImageCount)
            return image;
        device->RequeueBuffer(image);
    }
}

void CheckCrc(Orvan::IImage* image) {
    Orvan::IChunkData* chunks = image->AsChunkData();
    if (chunks == nullptr)
        throw std::runtime_error("the last image carries no chunk data");
    GenApi::CIntegerPtr crc = chunks->GetChunk("ChunkCRC");
    if (!crc.IsValid())
        throw std::runtime_error("the last image carries no CRC chunk");
    char text[16];
    std::snprintf(text, sizeof text, "0x%08llX", static_cast<unsigned long long>(crc->GetValue()));
    if (!image->VerifyCRC())
        throw std::runtime_error(std::string("CRC of image ") +
                                 std::to_string(image->GetFrameId()) +
                                 " does not match its chunk " + text);
    std::cout << "CRC of image " << image->GetFrameId() << " verified: " << text << '\n';
}

void Run(Orvan::ISystem* system, const std::string& output) {
    const Orvan::DeviceInfo info = FindCamera(system);
    Orvan::IDevice* device = system->CreateDevice(info);
    try {
        std::cout << "Camera: " << info.ModelName() << ", serial number " << info.SerialNumber()
                  << '\n';
        Configure(device->GetNodeMap());
        Orvan::IImage* last = Stream(device);
        CheckCrc(last);
        Orvan::ImageFile::Save(*last, output, Orvan::ImageFile::Format::Png);
        std::cout << "Saved image " << last->GetFrameId() << " (" << last->GetWidth() << "x"
                  << last->GetHeight() << ") to " << std::filesystem::absolute(output).string()
                  << '\n';
        device->RequeueBuffer(last);
        device->StopStream();
    } catch (...) {
        // Stopping is part of destroying the device, so nothing else needs undoing here.
        system->DestroyDevice(device);
        throw;
    }
    system->DestroyDevice(device);
}

} // namespace

int main(int argc, char** argv) {
    const std::string output = argc > 1 ? argv[1] : "orvan-demo-last.png";
    Orvan::ISystem* system = nullptr;
    try {
        system = Orvan::OpenSystem();
        std::cout << "Orvan SDK " << Orvan::GetVersion() << '\n';
        Run(system, output);
        Orvan::CloseSystem(system);
        std::cout << "Closed the camera and the system\n";
        return 0;
    } catch (const GenICam::GenericException& e) {
        std::cerr << "orvan-demo: " << e.what() << '\n';
    } catch (const std::exception& e) {
        std::cerr << "orvan-demo: " << e.what() << '\n';
    }
    if (system != nullptr)
        Orvan::CloseSystem(system);
    return 1;
}
