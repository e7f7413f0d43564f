// The construction of a virtual camera: its description and registers, and the behaviour behind
// the registers (limits that follow other features, commands, selectors, user sets).
#include "VirtualCamera.h"

#include "CameraFeatures.h"
#include "DescriptionArchive.h"
#include "DescriptionBuilder.h"
#include "ModelFeatures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace Orvan {
namespace Producer {

using namespace GenTL;

namespace {

// Auto exposure aims at a fixed brightness: exposure times gain (as a factor) stays constant.
constexpr double kAutoExposureProduct = 8000; // us
constexpr double kMinExposure = 1, kMaxExposure = 1000000;
// The sensor warms from ambient towards its running temperature while it acquires.
constexpr double kAmbientTemperature = 32, kTemperatureRise = 13, kWarmUpSeconds = 120;

RegisterDefinition Fixed(const std::string& name, uint64_t address, uint32_t length,
                         RegisterKind kind) {
    RegisterDefinition definition;
    definition.name = name;
    definition.address = address;
    definition.length = length;
    definition.kind = kind;
    definition.access = RegisterAccess::RO;
    return definition;
}

std::string Guid(uint8_t model, uint32_t variant) {
    char text[40];
    std::snprintf(text, sizeof text, "4F52564E-%04X-4000-8000-%012X", unsigned(model),
                  unsigned(variant));
    return text;
}

uint32_t Bit(int64_t selector) {
    return 1u << uint32_t(selector);
}

} // namespace

void VirtualCamera::BuildDescription() {
    DescriptionBuilder builder;
    DeclareCameraFeatures(m_model, builder);
    DescriptionBuilder::Header header;
    header.vendor = Identity().vendor;
    header.model = m_model.modelName;
    header.productGuid = Guid(m_model.number, 0);
    header.versionGuid = Guid(m_model.number, 0x10000);
    m_descriptionXml = builder.Build(header, m_registers);

    const std::string base = "Orvan_" + m_model.modelName;
    std::string fileName = base + ".xml";
    m_descriptionFile.assign(m_descriptionXml.begin(), m_descriptionXml.end());
    if (m_model.zippedDescription) {
        m_descriptionFile = ZipSingleFile(fileName, m_descriptionXml);
        fileName = base + ".zip";
    }
    m_registers.Add(Fixed("DescriptionFile", Layout::kDescription,
                          uint32_t(m_descriptionFile.size()), RegisterKind::Block),
                    m_descriptionFile);
    char url[160];
    std::snprintf(url, sizeof url, "local:%s;%llX;%zX", fileName.c_str(),
                  static_cast<unsigned long long>(Layout::kDescription), m_descriptionFile.size());
    m_url = url;
    m_registers.Add(Fixed("FirstURL", Layout::kFirstUrl, Layout::kUrlLength, RegisterKind::String));
    m_registers.Add(
        Fixed("SecondURL", Layout::kSecondUrl, Layout::kUrlLength, RegisterKind::String));
    m_registers.SetString("FirstURL", m_url);

    const DeviceIdentity& id = Identity();
    m_registers.SetString("DeviceVendorName", id.vendor);
    m_registers.SetString("DeviceVersion", id.version);
    m_registers.SetString("DeviceManufacturerInfo", "Virtual camera");
    m_registers.SetString("DeviceSerialNumber", id.serialNumber);
    m_registers.SetString("DeviceFirmwareVersion", "1.0.0");
    m_registers.SetInt("GevMACAddress", int64_t(id.mac));
    m_registers.SetInt("GevCurrentIPAddress", id.ip);
    m_registers.SetInt("GevCurrentSubnetMask", id.subnet);
    m_registers.SetInt("GevCurrentDefaultGateway", id.gateway);
}

void VirtualCamera::InstallBehaviour() {
    InstallDevice();
    InstallImageFormat();
    InstallAcquisition();
    InstallTransport();
    InstallChunksAndEvents();
    InstallUserSets();
    for (auto& set : m_userSets)
        set = m_registers.SnapshotPersistent();
}

void VirtualCamera::InstallDevice() {
    RegisterMap& r = m_registers;
    r.SetLiveInt("DeviceMaxThroughput", [this] {
        return m_registers.GetInt("DeviceLinkThroughputLimitMode") != 0
                   ? m_registers.GetInt("DeviceLinkThroughputLimit")
                   : m_registers.GetInt("DeviceLinkSpeed");
    });
    r.SetLiveFloat("DeviceTemperature", [this] {
        const uint64_t running = m_acquiring ? NowNs() - m_acquisitionStartNs : 0;
        const double seconds = double(m_acquiredNs + running) / 1e9;
        return kAmbientTemperature + kTemperatureRise * (1 - std::exp(-seconds / kWarmUpSeconds));
    });
    r.SetIntWriter("DeviceReset", [this](int64_t) {
        StopAcquisition();
        m_registers.SetInt("TLParamsLocked", 0);
        m_registers.Restore(m_userSets[size_t(m_registers.GetInt("UserSetDefault"))]);
        return GC_ERR_SUCCESS;
    });
    r.SetIntWriter("TimestampLatch", [this](int64_t) {
        m_registers.SetInt("TimestampLatchValue", int64_t(NowNs()));
        return GC_ERR_SUCCESS;
    });
    r.SetStringWriter("DeviceUserID", [this](const std::string& name) {
        m_registers.SetString("DeviceUserID", name);
        DeviceIdentity identity = Identity();
        identity.userDefinedName = m_registers.GetString("DeviceUserID");
        ReplaceIdentity(identity);
        return GC_ERR_SUCCESS;
    });
}

void VirtualCamera::InstallImageFormat() {
    RegisterMap& r = m_registers;
    auto geometry = [this] { return CurrentSettings().geometry; };
    r.SetLiveInt("WidthMax", [=] { return geometry().WidthMax(); });
    r.SetLiveInt("HeightMax", [=] { return geometry().HeightMax(); });
    r.SetLiveInt("Width_Min", [=] { return geometry().WidthMin(); });
    r.SetLiveInt("Width_Max", [=] { return geometry().WidthMax() - geometry().offsetX; });
    r.SetLiveInt("Width_Inc", [=] { return geometry().WidthIncrement(); });
    r.SetLiveInt("Height_Min", [=] { return geometry().HeightMin(); });
    r.SetLiveInt("Height_Max", [=] { return geometry().HeightMax() - geometry().offsetY; });
    r.SetLiveInt("Height_Inc", [=] { return geometry().HeightIncrement(); });
    r.SetLiveInt("OffsetX_Min", [] { return 0; });
    r.SetLiveInt("OffsetX_Max", [=] { return geometry().WidthMax() - geometry().width; });
    r.SetLiveInt("OffsetX_Inc", [=] { return geometry().WidthIncrement(); });
    r.SetLiveInt("OffsetY_Min", [] { return 0; });
    r.SetLiveInt("OffsetY_Max", [=] { return geometry().HeightMax() - geometry().height; });
    r.SetLiveInt("OffsetY_Inc", [=] { return geometry().HeightIncrement(); });
    for (const char* binning : {"BinningHorizontal", "BinningVertical"})
        r.SetIntWriter(binning, [this, binning](int64_t value) {
            m_registers.SetInt(binning, value);
            ConformGeometry();
            return GC_ERR_SUCCESS;
        });
    r.SetIntWriter("PixelFormat", [this](int64_t value) {
        if (m_registers.GetInt("ReverseX") != 0 && !CanMirrorHorizontally(uint32_t(value)))
            return GC_ERR_INVALID_VALUE;
        m_registers.SetInt("PixelFormat", value);
        ConformGeometry();
        return GC_ERR_SUCCESS;
    });
    r.SetIntWriter("ReverseX", [this](int64_t value) {
        if (value != 0 && !CanMirrorHorizontally(uint32_t(m_registers.GetInt("PixelFormat"))))
            return GC_ERR_INVALID_VALUE;
        m_registers.SetInt("ReverseX", value);
        return GC_ERR_SUCCESS;
    });
}

void VirtualCamera::InstallAcquisition() {
    RegisterMap& r = m_registers;
    r.SetIntWriter("AcquisitionStart", [this](int64_t) {
        StartAcquisition();
        return GC_ERR_SUCCESS;
    });
    r.SetIntWriter("AcquisitionStop", [this](int64_t) {
        StopAcquisition();
        return GC_ERR_SUCCESS;
    });
    r.SetIntWriter("TriggerSoftware", [this](int64_t) {
        Trigger(TriggerSource::Software, 0);
        return GC_ERR_SUCCESS;
    });
    r.SetLiveFloat("AcquisitionFrameRate_Max", [this] { return MaxFrameRate(); });
    r.SetLiveFloat("AcquisitionResultingFrameRate", [this] { return ResultingFrameRate(); });
    r.SetIntWriter("ExposureAuto", [this](int64_t value) {
        if (ExposureAuto(value) == ExposureAuto::Once) {
            m_registers.SetFloat("ExposureTime", AutoExposureTime());
            value = int64_t(ExposureAuto::Off);
        }
        m_registers.SetInt("ExposureAuto", value);
        return GC_ERR_SUCCESS;
    });
    r.SetLiveInt("ExposureAutoActive", [this] {
        return ExposureAuto(m_registers.GetInt("ExposureAuto")) == ExposureAuto::Continuous;
    });
}

void VirtualCamera::InstallTransport() {
    RegisterMap& r = m_registers;
    r.SetLiveInt("PayloadSize", [this] { return int64_t(CurrentPayloadBytes()); });
    if (!m_model.transportSelection)
        return;
    // TCPEnable is the older switch; it and the protocol always agree.
    r.SetIntWriter("TCPEnable", [this](int64_t value) {
        const auto protocol = TransportProtocol(m_registers.GetInt("TransportStreamProtocol"));
        m_registers.SetInt("TCPEnable", value);
        if (value != 0)
            m_registers.SetInt("TransportStreamProtocol", int64_t(TransportProtocol::TCP));
        else if (protocol == TransportProtocol::TCP)
            m_registers.SetInt("TransportStreamProtocol", int64_t(TransportProtocol::UDP));
        return GC_ERR_SUCCESS;
    });
    r.SetIntWriter("TransportStreamProtocol", [this](int64_t value) {
        m_registers.SetInt("TransportStreamProtocol", value);
        m_registers.SetInt("TCPEnable", TransportProtocol(value) == TransportProtocol::TCP);
        return GC_ERR_SUCCESS;
    });
}

void VirtualCamera::InstallChunksAndEvents() {
    RegisterMap& r = m_registers;
    struct Selected {
        const char* value;
        const char* selector;
        const char* mask;
    };
    for (const Selected s :
         {Selected{"ChunkEnable", "ChunkSelector", "ChunkEnableMask"},
          Selected{"EventNotification", "EventSelector", "EventNotificationMask"}}) {
        r.SetLiveInt(s.value, [this, s] {
            return (m_registers.GetInt(s.mask) & Bit(m_registers.GetInt(s.selector))) != 0;
        });
        r.SetIntWriter(s.value, [this, s](int64_t value) {
            const int64_t bit = Bit(m_registers.GetInt(s.selector));
            const int64_t mask = m_registers.GetInt(s.mask);
            m_registers.SetInt(s.mask, value != 0 ? mask | bit : mask & ~bit);
            return GC_ERR_SUCCESS;
        });
    }
}

void VirtualCamera::InstallUserSets() {
    RegisterMap& r = m_registers;
    r.SetIntWriter("UserSetLoad",
                   [this](int64_t) { return LoadUserSet(m_registers.GetInt("UserSetSelector")); });
    r.SetIntWriter("UserSetSave", [this](int64_t) {
        const int64_t set = m_registers.GetInt("UserSetSelector");
        if (UserSet(set) == UserSet::Default)
            return GC_ERR_ACCESS_DENIED; // the factory set is read-only
        m_userSets[size_t(set)] = m_registers.SnapshotPersistent();
        return GC_ERR_SUCCESS;
    });
}

GC_ERROR VirtualCamera::LoadUserSet(int64_t set) {
    // Loading would change the payload under a running stream.
    if (m_acquiring || m_registers.GetInt("TLParamsLocked") != 0)
        return GC_ERR_ACCESS_DENIED;
    m_registers.Restore(m_userSets[size_t(set)]);
    return GC_ERR_SUCCESS;
}

FrameSettings VirtualCamera::CurrentSettings() {
    RegisterMap& r = m_registers;
    FrameSettings s;
    ImageGeometry& g = s.geometry;
    g.sensorWidth = m_model.sensorWidth;
    g.sensorHeight = m_model.sensorHeight;
    g.binningHorizontal = uint32_t(r.GetInt("BinningHorizontal"));
    g.binningVertical = uint32_t(r.GetInt("BinningVertical"));
    g.width = uint32_t(r.GetInt("Width"));
    g.height = uint32_t(r.GetInt("Height"));
    g.offsetX = uint32_t(r.GetInt("OffsetX"));
    g.offsetY = uint32_t(r.GetInt("OffsetY"));
    g.pixelFormat = uint32_t(r.GetInt("PixelFormat"));
    switch (TestPatternValue(r.GetInt("TestPattern"))) {
    case TestPatternValue::Black:
        s.pattern = PatternKind::Black;
        break;
    case TestPatternValue::GreyHorizontalRamp:
        s.pattern = PatternKind::GreyRamp;
        break;
    case TestPatternValue::ColorBar:
        s.pattern = PatternKind::ColorBars;
        break;
    default:
        s.pattern = PatternKind::MovingDiagonal;
        break;
    }
    s.reverseX = r.GetInt("ReverseX") != 0;
    s.reverseY = r.GetInt("ReverseY") != 0;
    s.chunkMode = r.GetInt("ChunkModeActive") != 0;
    s.chunkMask = uint32_t(r.GetInt("ChunkEnableMask"));
    s.exposureTime = r.GetFloat("ExposureTime");
    s.gain = r.GetFloat("Gain");
    return s;
}

EventRateSettings VirtualCamera::CurrentEventSettings() {
    EventRateSettings s;
    s.width = uint32_t(m_registers.GetInt("Width"));
    s.height = uint32_t(m_registers.GetInt("Height"));
    if (m_model.eventSensor) {
        s.ercEnable = m_registers.GetInt("ErcEnable") != 0;
        s.ercRateLimit = m_registers.GetFloat("ErcRateLimit");
    }
    return s;
}

size_t VirtualCamera::CurrentPayloadBytes() {
    // Every stream of a model carries the same kind of data, so one size serves them all.
    return m_model.eventSensor ? EventBufferBytes(CurrentEventSettings())
                               : PayloadBytes(CurrentSettings());
}

void VirtualCamera::ConformGeometry() {
    ImageGeometry g = CurrentSettings().geometry;
    g.Conform();
    m_registers.SetInt("Width", g.width);
    m_registers.SetInt("Height", g.height);
    m_registers.SetInt("OffsetX", g.offsetX);
    m_registers.SetInt("OffsetY", g.offsetY);
}

double VirtualCamera::AutoExposureTime() {
    const double gainFactor = std::pow(10.0, m_registers.GetFloat("Gain") / 20);
    return std::clamp(kAutoExposureProduct / gainFactor, kMinExposure, kMaxExposure);
}

} // namespace Producer
} // namespace Orvan
