#include "CameraFeatures.h"

#include "ModelFeatures.h"
#include "VirtualPixelFormats.h"

#include <cstdio>
#include <string>

namespace Orvan {
namespace Producer {

namespace {

const char* const kLocked = "TLParamsLocked";

void DeclareDeviceControl(const CameraModel& model, DescriptionBuilder& b) {
    const char* cat = "DeviceControl";
    b.Category(cat);
    b.At(Layout::kVendorName, b.String(cat, "DeviceVendorName", 32, "").Ro());
    b.At(Layout::kModelName, b.String(cat, "DeviceModelName", 32, model.modelName).Ro());
    b.At(Layout::kDeviceVersion, b.String(cat, "DeviceVersion", 32, "").Ro());
    b.At(Layout::kManufacturerInfo, b.String(cat, "DeviceManufacturerInfo", 48, "").Ro());
    b.At(Layout::kSerialNumber, b.String(cat, "DeviceSerialNumber", 16, "").Ro());
    b.At(Layout::kUserId, b.String(cat, "DeviceUserID", 16, ""));

    b.Block(Layout::kDeviceControl);
    b.String(cat, "DeviceFirmwareVersion", 32, "").Ro();
    b.Enumeration(cat, "DeviceScanType",
                  int64_t(model.lineScan ? ScanType::Linescan : ScanType::Areascan))
        .Ro()
        .Entry(model.lineScan ? "Linescan" : "Areascan",
               int64_t(model.lineScan ? ScanType::Linescan : ScanType::Areascan));
    b.Constant(cat, "DeviceSFNCVersionMajor", 2).Guru();
    b.Constant(cat, "DeviceSFNCVersionMinor", 6).Guru();
    b.Constant(cat, "DeviceSFNCVersionSubMinor", 0).Guru();
    b.Integer(cat, "DeviceLinkSpeed", int64_t(model.linkSpeed)).Ro().Unit("Bps").Expert();
    b.Integer(cat, "DeviceMaxThroughput", int64_t(model.linkSpeed)).Ro().Unit("Bps").Expert();
    b.Enumeration(cat, "DeviceLinkThroughputLimitMode", 1)
        .Entry("Off", 0)
        .Entry("On", 1)
        .Persist()
        .Expert()
        .Tip("Off lifts every bandwidth limit: frames come as fast as exposure allows.");
    b.Integer(cat, "DeviceLinkThroughputLimit", int64_t(model.linkSpeed))
        .Range(1000000, double(model.linkSpeed))
        .Unit("Bps")
        .Persist()
        .Expert()
        .Tip("Bandwidth the camera may use; frame rates above it are not reachable.");
    b.Float(cat, "DeviceTemperature", 0).Ro().Unit("C").Expert();
    b.Command(cat, "DeviceReset").Guru().Tip("Restarts the camera with its default user set.");
    b.Command(cat, "TimestampLatch").Expert();
    b.Integer(cat, "TimestampLatchValue", 0).Ro().Unit("ns").Expert();
}

void DeclareImageFormat(const CameraModel& model, DescriptionBuilder& b) {
    const char* cat = "ImageFormatControl";
    b.Category(cat);
    b.Block(Layout::kImageFormat);
    b.Integer(cat, "SensorWidth", model.sensorWidth).Ro().Expert();
    b.Integer(cat, "SensorHeight", model.sensorHeight).Ro().Expert();
    b.Integer(cat, "WidthMax", model.sensorWidth).Ro().Expert();
    b.Integer(cat, "HeightMax", model.sensorHeight).Ro().Expert();
    b.Integer(cat, "Width", model.defaultWidth)
        .LiveMin()
        .LiveMax()
        .LiveInc()
        .LockedBy(kLocked)
        .Persist()
        .Unit("px");
    b.Integer(cat, "Height", model.defaultHeight)
        .LiveMin()
        .LiveMax()
        .LiveInc()
        .LockedBy(kLocked)
        .Persist()
        .Unit("px");
    b.Integer(cat, "OffsetX", 0).LiveMin().LiveMax().LiveInc().Persist().Unit("px");
    b.Integer(cat, "OffsetY", 0).LiveMin().LiveMax().LiveInc().Persist().Unit("px");
    b.Integer(cat, "BinningHorizontal", 1)
        .Range(1, model.maxBinning)
        .Inc(1)
        .LockedBy(kLocked)
        .Persist()
        .Expert();
    b.Integer(cat, "BinningVertical", 1)
        .Range(1, model.maxBinning)
        .Inc(1)
        .LockedBy(kLocked)
        .Persist()
        .Expert();
    b.Boolean(cat, "ReverseX", false).Persist().Expert();
    b.Boolean(cat, "ReverseY", false).Persist().Expert();
    Feature& format =
        b.Enumeration(cat, "PixelFormat", model.pixelFormats.front()).LockedBy(kLocked).Persist();
    for (uint32_t code : model.pixelFormats)
        format.Entry(FindVirtualPixelFormat(code)->name, code);
    b.Enumeration(cat, "TestPattern", int64_t(TestPatternValue::Off))
        .Entry("Off", int64_t(TestPatternValue::Off))
        .Entry("Black", int64_t(TestPatternValue::Black))
        .Entry("GreyHorizontalRamp", int64_t(TestPatternValue::GreyHorizontalRamp))
        .Entry("ColorBar", int64_t(TestPatternValue::ColorBar))
        .Entry("GreyDiagonalRampMoving", int64_t(TestPatternValue::GreyDiagonalRampMoving))
        .Persist()
        .Expert();
}

void DeclareAcquisition(DescriptionBuilder& b) {
    const char* cat = "AcquisitionControl";
    b.Category(cat);
    b.Block(Layout::kAcquisition);
    b.Enumeration(cat, "AcquisitionMode", int64_t(AcquisitionMode::Continuous))
        .Entry("SingleFrame", int64_t(AcquisitionMode::SingleFrame))
        .Entry("MultiFrame", int64_t(AcquisitionMode::MultiFrame))
        .Entry("Continuous", int64_t(AcquisitionMode::Continuous))
        .Persist();
    b.Command(cat, "AcquisitionStart");
    b.Command(cat, "AcquisitionStop");
    b.Integer(cat, "AcquisitionFrameCount", 10).Range(1, 65535).Inc(1).Persist();
    b.Boolean(cat, "AcquisitionFrameRateEnable", false).Persist();
    b.Float(cat, "AcquisitionFrameRate", 30).Min(0.1).LiveMax().Unit("Hz").Persist();
    b.Float(cat, "AcquisitionResultingFrameRate", 0).Ro().Unit("Hz").Expert();
    b.Float(cat, "ExposureTime", 5000)
        .Range(1, 1000000)
        .LockedBy("ExposureAutoActive")
        .Unit("us")
        .Persist();
    b.Enumeration(cat, "ExposureAuto", int64_t(ExposureAuto::Off))
        .Entry("Off", int64_t(ExposureAuto::Off))
        .Entry("Once", int64_t(ExposureAuto::Once))
        .Entry("Continuous", int64_t(ExposureAuto::Continuous))
        .Persist();
    b.Integer(cat, "ExposureAutoActive", 0).Ro().Custom().Invisible();
    b.Enumeration(cat, "TriggerSelector", 0)
        .Entry("FrameStart", 0)
        .Streamable()
        .Selects("TriggerMode")
        .Selects("TriggerSource")
        .Selects("TriggerActivation")
        .Selects("TriggerSoftware");
    b.Enumeration(cat, "TriggerMode", 0).Entry("Off", 0).Entry("On", 1).Persist();
    b.Enumeration(cat, "TriggerSource", int64_t(TriggerSource::Software))
        .Entry("Software", int64_t(TriggerSource::Software))
        .Entry("Line0", int64_t(TriggerSource::Line0))
        .Entry("Action1", int64_t(TriggerSource::Action1))
        .Persist();
    b.Enumeration(cat, "TriggerActivation", 0)
        .Entry("RisingEdge", 0)
        .Entry("FallingEdge", 1)
        .Persist()
        .Expert();
    b.Command(cat, "TriggerSoftware");
}

void DeclareAnalog(DescriptionBuilder& b) {
    const char* cat = "AnalogControl";
    b.Category(cat);
    b.Block(Layout::kAnalog);
    b.Float(cat, "Gain", 0).Range(0, 24).Unit("dB").Persist();
    b.Float(cat, "BlackLevel", 0).Range(0, 255).Unit("DN").Persist().Expert();
    b.Float(cat, "Gamma", 1).Range(0.25, 4).Persist().Expert();
}

void DeclareTransport(DescriptionBuilder& b) {
    const char* cat = "TransportLayerControl";
    b.Category(cat);
    b.At(Layout::kMacAddress, b.Integer(cat, "GevMACAddress", 0).Ro().Mac().Expert());
    b.At(Layout::kCurrentIp, b.Integer(cat, "GevCurrentIPAddress", 0).Bytes(4).Ro().Ip());
    b.At(Layout::kCurrentSubnet, b.Integer(cat, "GevCurrentSubnetMask", 0).Bytes(4).Ro().Ip());
    b.At(Layout::kCurrentGateway, b.Integer(cat, "GevCurrentDefaultGateway", 0).Bytes(4).Ro().Ip());

    b.Block(Layout::kTransport);
    b.Integer(cat, "PayloadSize", 0).Ro().Unit("B");
    b.Integer(cat, "TLParamsLocked", 0).Range(0, 1).Invisible();
    b.Integer(cat, "DeviceStreamChannelPacketSize", 1500)
        .Range(576, 9000)
        .Inc(4)
        .LockedBy(kLocked)
        .Unit("B")
        .Persist()
        .Expert();
    b.Integer(cat, "PacketResendWindowFrameCount", 8).Range(0, 255).Inc(1).Persist().Expert();
    b.Boolean(cat, "GevCurrentIPConfigurationLLA", true).Expert();
    b.Boolean(cat, "GevCurrentIPConfigurationDHCP", false).Expert();
    b.Boolean(cat, "GevCurrentIPConfigurationPersistentIP", false).Expert();
}

void DeclareActions(DescriptionBuilder& b) {
    const char* cat = "ActionControl";
    b.Category(cat);
    b.Block(Layout::kAction);
    b.Integer(cat, "ActionDeviceKey", 0).Wo().Bytes(4).Hex().Guru();
    b.Integer(cat, "ActionGroupKey", 0).Bytes(4).Hex().Persist().Guru();
    b.Integer(cat, "ActionGroupMask", 0).Bytes(4).Hex().Persist().Guru();
}

void DeclareChunks(const CameraModel& model, DescriptionBuilder& b) {
    const char* cat = "ChunkDataControl";
    b.Category(cat);
    b.Block(Layout::kChunks);
    b.Boolean(cat, "ChunkModeActive", false).LockedBy(kLocked).Persist().Expert();
    Feature& selector =
        b.Enumeration(cat, "ChunkSelector", 0).Selects("ChunkEnable").Streamable().Expert();
    for (int64_t c = 0; c < int64_t(Chunk::Count); ++c)
        selector.Entry(ChunkInfoOf(Chunk(c)).name, c);
    b.Boolean(cat, "ChunkEnable", true).LockedBy(kLocked).Streamable().Expert();
    b.Integer(cat, "ChunkEnableMask", (int64_t(1) << int64_t(Chunk::Count)) - 1)
        .Ro()
        .Persist()
        .Custom()
        .Invisible();
    for (int64_t c = 1; c < int64_t(Chunk::Count); ++c) {
        const ChunkInfo& info = ChunkInfoOf(Chunk(c));
        Feature& value = b.ChunkValue(cat, std::string("Chunk") + info.name, info.id, info.length);
        value.floatChunk = info.isFloat;
        if (Chunk(c) == Chunk::CRC)
            value.Hex();
        if (Chunk(c) == Chunk::PixelFormat)
            for (uint32_t code : model.pixelFormats)
                value.Entry(FindVirtualPixelFormat(code)->name, code);
    }
}

void DeclareEvents(DescriptionBuilder& b) {
    const char* cat = "EventControl";
    b.Category(cat);
    b.Block(Layout::kEvents);
    b.Enumeration(cat, "EventSelector", 0)
        .Entry("ExposureEnd", int64_t(CameraEvent::ExposureEnd))
        .Entry("FrameStart", int64_t(CameraEvent::FrameStart))
        .Selects("EventNotification")
        .Expert();
    b.Enumeration(cat, "EventNotification", 0).Entry("Off", 0).Entry("On", 1).Expert();
    b.Integer(cat, "EventNotificationMask", 0).Ro().Persist().Custom().Invisible();
    for (const char* event : {"ExposureEnd", "FrameStart"}) {
        const CameraEvent which = std::string(event) == "ExposureEnd" ? CameraEvent::ExposureEnd
                                                                      : CameraEvent::FrameStart;
        const std::string data = std::string("Event") + event + "Data";
        b.Category(data, cat);
        b.EventPort(event, EventIdOf(which));
        char id[8];
        std::snprintf(id, sizeof id, "%04X", EventIdOf(which));
        b.Constant(data, std::string("Event") + event, EventIdOf(which)).Expert().eventId = id;
        b.EventValue(data, std::string("Event") + event + "Timestamp", event, kEventTimestampOffset,
                     8);
        b.EventValue(data, std::string("Event") + event + "FrameID", event, kEventFrameIdOffset, 8);
    }
}

void DeclareUserSets(DescriptionBuilder& b) {
    const char* cat = "UserSetControl";
    b.Category(cat);
    b.Block(Layout::kUserSets);
    b.Enumeration(cat, "UserSetSelector", int64_t(UserSet::Default))
        .Entry("Default", int64_t(UserSet::Default))
        .Entry("UserSet1", int64_t(UserSet::UserSet1))
        .Entry("UserSet2", int64_t(UserSet::UserSet2))
        .Selects("UserSetLoad")
        .Selects("UserSetSave");
    b.Command(cat, "UserSetLoad");
    b.Command(cat, "UserSetSave");
    b.Enumeration(cat, "UserSetDefault", int64_t(UserSet::Default))
        .Entry("Default", int64_t(UserSet::Default))
        .Entry("UserSet1", int64_t(UserSet::UserSet1))
        .Entry("UserSet2", int64_t(UserSet::UserSet2));
}

} // namespace

const ChunkInfo& ChunkInfoOf(Chunk chunk) {
    // The image travels as the first chunk under the ID GigE Vision cameras commonly use.
    static const ChunkInfo chunks[] = {
        {"Image", 0x00000001, 0, false},       {"CRC", 0x4F560002, 4, false},
        {"Width", 0x4F560003, 4, false},       {"Height", 0x4F560004, 4, false},
        {"OffsetX", 0x4F560005, 4, false},     {"OffsetY", 0x4F560006, 4, false},
        {"PixelFormat", 0x4F560007, 4, false}, {"ExposureTime", 0x4F560008, 8, true},
        {"Gain", 0x4F560009, 8, true},         {"Timestamp", 0x4F56000A, 8, false},
        {"FrameID", 0x4F56000B, 8, false},
    };
    return chunks[size_t(chunk)];
}

uint16_t EventIdOf(CameraEvent event) {
    // Device-specific event IDs start at 0x9000 in GigE Vision.
    return event == CameraEvent::ExposureEnd ? 0x9001 : 0x9002;
}

void DeclareCameraFeatures(const CameraModel& model, DescriptionBuilder& builder) {
    DeclareDeviceControl(model, builder);
    DeclareImageFormat(model, builder);
    DeclareAcquisition(builder);
    DeclareAnalog(builder);
    DeclareTransport(builder);
    DeclareActions(builder);
    DeclareChunks(model, builder);
    DeclareEvents(builder);
    DeclareUserSets(builder);
    DeclareModelFeatures(model, builder);
}

} // namespace Producer
} // namespace Orvan
