#include "ModelFeatures.h"

#include "CameraFeatures.h"

namespace Orvan {
namespace Producer {

namespace {

void DeclareTransportSelection(DescriptionBuilder& b) {
    const char* cat = "TransportLayerControl";
    b.Boolean(cat, "TCPEnable", false)
        .LockedBy("TLParamsLocked")
        .Persist()
        .Tip("Streams over TCP (stream 1) instead of the protocol selected below.");
    b.Enumeration(cat, "TransportStreamProtocol", int64_t(TransportProtocol::UDP))
        .Entry("UDP", int64_t(TransportProtocol::UDP))
        .Entry("TCP", int64_t(TransportProtocol::TCP))
        .Entry("RDMA", int64_t(TransportProtocol::RDMA))
        .LockedBy("TLParamsLocked")
        .Persist();
}

void DeclareEventSensor(DescriptionBuilder& b) {
    const char* cat = "EventSensorControl";
    b.Category(cat);
    b.Enumeration(cat, "EventFormat", int64_t(EventFormat::EVT3_0))
        .Entry("EVT3_0", int64_t(EventFormat::EVT3_0))
        .LockedBy("TLParamsLocked");
    b.Boolean(cat, "ErcEnable", false)
        .Persist()
        .Tip("Event rate control: drops events above ErcRateLimit.");
    b.Float(cat, "ErcRateLimit", 100).Range(1, 200).Unit("Mev/s").Persist();
}

} // namespace

void DeclareModelFeatures(const CameraModel& model, DescriptionBuilder& builder) {
    builder.Block(Layout::kModelSpecific);
    if (model.transportSelection)
        DeclareTransportSelection(builder);
    if (model.eventSensor)
        DeclareEventSensor(builder);
}

} // namespace Producer
} // namespace Orvan
