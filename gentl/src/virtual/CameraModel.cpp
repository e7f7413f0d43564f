#include "CameraModel.h"

#include "VirtualPixelFormats.h"

#include <initializer_list>
#include <stdexcept>

namespace Orvan {
namespace Producer {

namespace {

constexpr uint64_t kGigabitEthernet = 125000000;     // bytes per second
constexpr uint64_t kTenGigabitEthernet = 1250000000; // bytes per second

std::vector<uint32_t> Codes(std::initializer_list<const char*> names) {
    std::vector<uint32_t> codes;
    for (const char* name : names) {
        const VirtualPixelFormat* format = FindVirtualPixelFormat(std::string(name));
        if (!format)
            throw std::logic_error(std::string("unknown pixel format ") + name);
        codes.push_back(format->code);
    }
    return codes;
}

std::vector<uint32_t> MonoFormats() {
    return Codes({"Mono8", "Mono10", "Mono12", "Mono16", "Mono10p", "Mono12p", "Mono10Packed",
                  "Mono12Packed"});
}

std::vector<uint32_t> ColorFormats() {
    std::vector<uint32_t> codes;
    for (const char* order : {"RG", "GR", "GB", "BG"})
        for (const char* depth : {"8", "10", "12", "16", "10p", "12p", "10Packed", "12Packed"})
            codes.push_back(FindVirtualPixelFormat(std::string("Bayer") + order + depth)->code);
    for (uint32_t code : Codes({"RGB8", "BGR8", "RGBa8", "YCbCr422_8", "Mono8"}))
        codes.push_back(code);
    return codes;
}

std::vector<CameraModel> BuildModels() {
    using R = StreamRole;
    std::vector<CameraModel> models(6);
    CameraModel& mono = models[0];
    mono.key = "Mono";
    mono.modelName = "VirtualMono";
    mono.number = 1;
    mono.sensorWidth = 4096, mono.sensorHeight = 3000;
    mono.defaultWidth = 1280, mono.defaultHeight = 960;
    mono.pixelFormats = MonoFormats();
    mono.linkSpeed = kTenGigabitEthernet;
    mono.streams = {R::Udp};

    CameraModel& color = models[1];
    color.key = "Color";
    color.modelName = "VirtualColor";
    color.number = 2;
    color.sensorWidth = 2448, color.sensorHeight = 2048;
    color.defaultWidth = 1280, color.defaultHeight = 960;
    color.pixelFormats = ColorFormats();
    color.linkSpeed = kGigabitEthernet;
    color.streams = {R::Udp};
    color.zippedDescription = true;

    CameraModel& line = models[2];
    line.key = "LineScan";
    line.modelName = "VirtualLineScan";
    line.number = 3;
    line.lineScan = true;
    line.sensorWidth = 2048, line.sensorHeight = 4096;
    line.defaultWidth = 2048, line.defaultHeight = 512;
    line.maxBinning = 1;
    line.pixelFormats = MonoFormats();
    line.linkSpeed = kTenGigabitEthernet;
    line.streams = {R::Udp, R::Idle, R::Idle, R::Idle, R::Multipart};

    CameraModel& multi = models[3];
    multi.key = "MultiStream";
    multi.modelName = "VirtualMultiStream";
    multi.number = 4;
    multi.sensorWidth = 1920, multi.sensorHeight = 1200;
    multi.defaultWidth = 1920, multi.defaultHeight = 1200;
    multi.pixelFormats = MonoFormats();
    multi.linkSpeed = kTenGigabitEthernet;
    multi.streams = {R::Udp, R::Tcp, R::Rdma};
    multi.transportSelection = true;

    CameraModel& compressed = models[4];
    compressed.key = "Compressed";
    compressed.modelName = "VirtualCompressed";
    compressed.number = 5;
    compressed.sensorWidth = 1280, compressed.sensorHeight = 1024;
    compressed.defaultWidth = 640, compressed.defaultHeight = 480;
    compressed.pixelFormats = Codes({"QOI_Mono8", "QOI_RGB8", "Mono8", "RGB8"});
    compressed.linkSpeed = kGigabitEthernet;
    compressed.streams = {R::Udp};
    compressed.zippedDescription = true;

    CameraModel& evs = models[5];
    evs.key = "EventSensor";
    evs.modelName = "VirtualEventSensor";
    evs.number = 6;
    evs.sensorWidth = 1280, evs.sensorHeight = 720;
    evs.defaultWidth = 1280, evs.defaultHeight = 720;
    evs.maxBinning = 1;
    evs.pixelFormats = Codes({"Mono8"});
    evs.linkSpeed = kGigabitEthernet;
    evs.streams = {R::Idle, R::Idle, R::Idle, R::EventData};
    evs.eventSensor = true;
    return models;
}

} // namespace

const std::vector<CameraModel>& CameraModels() {
    static const std::vector<CameraModel> models = BuildModels();
    return models;
}

const CameraModel* FindCameraModel(const std::string& key) {
    for (const CameraModel& model : CameraModels())
        if (model.key == key)
            return &model;
    return nullptr;
}

} // namespace Producer
} // namespace Orvan
