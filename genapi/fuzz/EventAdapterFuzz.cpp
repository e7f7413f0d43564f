// libFuzzer target: the input is an event message. The first byte picks the adapter (GigE
// Vision, USB3 Vision, or the generic one with an EventID taken from the next two bytes); the
// rest is delivered. Afterwards every event feature is read, as a callback would. Only
// GenICam exceptions may leave the adapter (RuntimeException for a message that is not an event
// message); anything else, a crash or a sanitizer report is a finding.
#include "FuzzNodeMap.h"

#include <cstddef>
#include <cstdint>

namespace {

// Event ports addressed as GigE Vision and USB3 Vision descriptions address them, a string
// whose length is read from the event itself, and a node that only carries an EventID.
const char kDescription[] = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Fuzz" VendorName="Test" StandardNameSpace="None"
    SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0"
    MajorVersion="1" MinorVersion="0" SubMinorVersion="0" ToolTip="" ProductGuid="" VersionGuid=""
    xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Port Name="ExposureEndPort"><EventID>9C43</EventID></Port>
  <Port Name="SerialPort"><EventID>0004</EventID></Port>
  <Integer Name="ExposureEnd"><EventID>9C43</EventID><Value>40003</Value></Integer>
  <IntReg Name="Timestamp"><Address>8</Address><Length>8</Length><AccessMode>RO</AccessMode>
    <pPort>ExposureEndPort</pPort><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>
  <IntReg Name="FrameId"><Address>16</Address><Length>8</Length><AccessMode>RO</AccessMode>
    <pPort>ExposureEndPort</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess>
    </IntReg>
  <IntReg Name="SerialLength"><Address>12</Address><Length>4</Length><AccessMode>RO</AccessMode>
    <pPort>SerialPort</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <StringReg Name="SerialData"><Address>20</Address><pLength>SerialLength</pLength>
    <AccessMode>RO</AccessMode><pPort>SerialPort</pPort></StringReg>
</RegisterDescription>
)";

GenApi::INodeMap& Map() {
    static GenApi::INodeMap* map = FuzzSupport::LoadMap(kDescription);
    return *map;
}

struct Counter {
    int count = 0;
    void OnEvent(GenApi::INode*) { ++count; }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1)
        return 0;
    FuzzSupport::OnlyGenICamExceptions([&] {
        GenApi::INodeMap& map = Map();
        static Counter counter;
        static bool registered = false;
        if (!registered) {
            GenApi::Register(map.GetNode("ExposureEnd"), counter, &Counter::OnEvent);
            registered = true;
        }
        const uint8_t* message = data + 1;
        auto length = static_cast<uint32_t>(size - 1);
        switch (data[0] % 3) {
        case 0:
            GenApi::CEventAdapterGEV(&map).DeliverMessage(message, length);
            break;
        case 1:
            GenApi::CEventAdapterU3V(&map).DeliverMessage(message, length);
            break;
        default:
            if (length >= 2)
                GenApi::CEventAdapterGeneric(&map).DeliverMessage(
                    message + 2, length - 2, uint64_t(message[0] << 8 | message[1]));
            break;
        }
        FuzzSupport::ReadEverything(map);
    });
    return 0;
}
