// Numbers of the GigE Vision control protocol (GVCP), its bootstrap registers and the stream
// protocol (GVSP): one vocabulary for the transport, its parsers and the test emulator.
#ifndef ORVAN_GENTL_GIGE_GEVPROTOCOL_H
#define ORVAN_GENTL_GIGE_GEVPROTOCOL_H

#include <cstddef>
#include <cstdint>

namespace Orvan {
namespace Gev {

constexpr uint16_t kGvcpPort = 3956;

// Every GVCP command starts with this key byte; the flag byte follows.
constexpr uint8_t kCommandKey = 0x42;
constexpr uint8_t kFlagAckRequired = 0x01;
constexpr uint8_t kFlagDiscoveryBroadcastAck = 0x10; // DISCOVERY: answer by broadcast
constexpr uint8_t kFlagExtendedId = 0x10;            // PACKETRESEND: 64-bit block id form
constexpr uint8_t kFlagScheduledAction = 0x80;       // ACTION: action time present
constexpr size_t kGvcpHeaderSize = 8;                // command and acknowledge headers alike
constexpr size_t kGvcpMaxMessage = 576;              // largest GVCP datagram
constexpr size_t kReadMemMax = 536;                  // largest READMEM/WRITEMEM data block

enum Command : uint16_t {
    DiscoveryCmd = 0x0002,
    DiscoveryAck = 0x0003,
    ForceIpCmd = 0x0004,
    ForceIpAck = 0x0005,
    PacketResendCmd = 0x0040,
    ReadRegCmd = 0x0080,
    ReadRegAck = 0x0081,
    WriteRegCmd = 0x0082,
    WriteRegAck = 0x0083,
    ReadMemCmd = 0x0084,
    ReadMemAck = 0x0085,
    WriteMemCmd = 0x0086,
    WriteMemAck = 0x0087,
    PendingAck = 0x0089,
    EventCmd = 0x00C0,
    EventAck = 0x00C1,
    EventDataCmd = 0x00C2,
    EventDataAck = 0x00C3,
    ActionCmd = 0x0100,
    ActionAck = 0x0101,
};

enum Status : uint16_t {
    Success = 0x0000,
    PacketResend = 0x0100,
    NotImplemented = 0x8001,
    InvalidParameter = 0x8002,
    InvalidAddress = 0x8003,
    WriteProtect = 0x8004,
    BadAlignment = 0x8005,
    AccessDenied = 0x8006,
    Busy = 0x8007,
    MsgMismatch = 0x8009,
    InvalidProtocol = 0x800A,
    NoMsg = 0x800B,
    PacketUnavailable = 0x800C,
    DataOverrun = 0x800D,
    InvalidHeader = 0x800E,
    WrongConfig = 0x800F,
    PacketNotYetAvailable = 0x8010,
    PacketAndPrevRemovedFromMemory = 0x8011,
    PacketRemovedFromMemory = 0x8012,
    NoRefTime = 0x8013,
    PacketTemporarilyUnavailable = 0x8014,
    Overflow = 0x8015,
    ActionLate = 0x8016,
    LeaderTrailerOverflow = 0x8017,
    Error = 0x8FFF,
};

// DISCOVERY_ACK payload: offsets into its 248 bytes.
namespace DiscoveryField {
constexpr size_t SpecVersionMajor = 0; // u16
constexpr size_t SpecVersionMinor = 2; // u16
constexpr size_t DeviceMode = 4;       // u32
constexpr size_t MacHigh = 10;         // u16
constexpr size_t MacLow = 12;          // u32
constexpr size_t IpConfigOptions = 16; // u32
constexpr size_t IpConfigCurrent = 20; // u32
constexpr size_t CurrentIp = 36;       // u32
constexpr size_t CurrentSubnet = 52;   // u32
constexpr size_t DefaultGateway = 68;  // u32
constexpr size_t ManufacturerName = 72;
constexpr size_t ModelName = 104;
constexpr size_t DeviceVersion = 136;
constexpr size_t ManufacturerInfo = 168;
constexpr size_t SerialNumber = 216;
constexpr size_t UserDefinedName = 232;
constexpr size_t Size = 248;
} // namespace DiscoveryField

// IP configuration bits (DISCOVERY_ACK and register 0x0014).
constexpr uint32_t kIpConfigPersistent = 0x00000001;
constexpr uint32_t kIpConfigDhcp = 0x00000002;
constexpr uint32_t kIpConfigLla = 0x00000004;

// FORCEIP_CMD payload (56 bytes): MAC, then the new address, subnet and gateway.
namespace ForceIpField {
constexpr size_t MacHigh = 2; // u16
constexpr size_t MacLow = 4;  // u32
constexpr size_t StaticIp = 20;
constexpr size_t StaticSubnet = 36;
constexpr size_t StaticGateway = 52;
constexpr size_t Size = 56;
} // namespace ForceIpField

// ACTION_CMD payload: device key, group key, group mask, then the 64-bit action time when
// kFlagScheduledAction is set.
constexpr size_t kActionPayloadSize = 12;
constexpr size_t kScheduledActionPayloadSize = 20;

// Bootstrap registers.
namespace Reg {
constexpr uint32_t Version = 0x0000;
constexpr uint32_t DeviceMode = 0x0004;
constexpr uint32_t MacHigh = 0x0008;
constexpr uint32_t MacLow = 0x000C;
constexpr uint32_t NetworkInterfaceCapability = 0x0010;
constexpr uint32_t NetworkInterfaceConfiguration = 0x0014;
constexpr uint32_t CurrentIp = 0x0024;
constexpr uint32_t CurrentSubnet = 0x0034;
constexpr uint32_t CurrentGateway = 0x0044;
constexpr uint32_t ManufacturerName = 0x0048; // 32 bytes
constexpr uint32_t ModelName = 0x0068;        // 32 bytes
constexpr uint32_t DeviceVersion = 0x0088;    // 32 bytes
constexpr uint32_t ManufacturerInfo = 0x00A8; // 48 bytes
constexpr uint32_t SerialNumber = 0x00D8;     // 16 bytes
constexpr uint32_t UserDefinedName = 0x00E8;  // 16 bytes
constexpr uint32_t FirstUrl = 0x0200;         // 512 bytes
constexpr uint32_t SecondUrl = 0x0400;        // 512 bytes
constexpr uint32_t NumberOfNetworkInterfaces = 0x0600;
constexpr uint32_t PersistentIp = 0x064C;
constexpr uint32_t PersistentSubnet = 0x065C;
constexpr uint32_t PersistentGateway = 0x066C;
constexpr uint32_t NumberOfMessageChannels = 0x0900;
constexpr uint32_t NumberOfStreamChannels = 0x0904;
constexpr uint32_t NumberOfActionSignals = 0x0908;
constexpr uint32_t ActionDeviceKey = 0x090C;
constexpr uint32_t GvspCapability = 0x092C;
constexpr uint32_t MessageChannelCapability = 0x0930;
constexpr uint32_t GvcpCapability = 0x0934;
constexpr uint32_t HeartbeatTimeout = 0x0938; // ms
constexpr uint32_t TimestampTickFrequencyHigh = 0x093C;
constexpr uint32_t TimestampTickFrequencyLow = 0x0940;
constexpr uint32_t TimestampControl = 0x0944;
constexpr uint32_t TimestampValueHigh = 0x0948;
constexpr uint32_t TimestampValueLow = 0x094C;
constexpr uint32_t DiscoveryAckDelay = 0x0950;
constexpr uint32_t GvcpConfiguration = 0x0954;
constexpr uint32_t PendingTimeout = 0x0958;
constexpr uint32_t ControlSwitchoverKey = 0x095C;
constexpr uint32_t GvspConfiguration = 0x0960;
constexpr uint32_t ControlChannelPrivilege = 0x0A00;
constexpr uint32_t PrimaryApplicationPort = 0x0A04;
constexpr uint32_t PrimaryApplicationIp = 0x0A14;
constexpr uint32_t MessageChannelPort = 0x0B00;
constexpr uint32_t MessageChannelDestination = 0x0B10;
constexpr uint32_t MessageChannelTransmissionTimeout = 0x0B14;
constexpr uint32_t MessageChannelRetryCount = 0x0B18;
constexpr uint32_t MessageChannelSourcePort = 0x0B1C;
// Stream channel n sits at base + n * StreamChannelStride.
constexpr uint32_t StreamChannelStride = 0x40;
constexpr uint32_t StreamChannelPort = 0x0D00;
constexpr uint32_t StreamChannelPacketSize = 0x0D04;
constexpr uint32_t StreamChannelPacketDelay = 0x0D08;
constexpr uint32_t StreamChannelDestination = 0x0D18;
constexpr uint32_t StreamChannelSourcePort = 0x0D1C;
constexpr uint32_t StreamChannelCapability = 0x0D20;
constexpr uint32_t StreamChannelConfiguration = 0x0D24;
// Action group n sits at base + n * ActionGroupStride.
constexpr uint32_t ActionGroupStride = 0x10;
constexpr uint32_t ActionGroupKey = 0x9800;
constexpr uint32_t ActionGroupMask = 0x9804;
// Everything from here on belongs to the camera's maker.
constexpr uint32_t ManufacturerSpecific = 0xA000;
} // namespace Reg

// Control channel privilege register (0x0A00) bits.
constexpr uint32_t kPrivilegeExclusive = 0x00000001;
constexpr uint32_t kPrivilegeControl = 0x00000002;
constexpr uint32_t kPrivilegeSwitchoverEnable = 0x00000004;

// GVCP capability register (0x0934) bits.
constexpr uint32_t kGvcpCapUserDefinedName = 0x80000000;
constexpr uint32_t kGvcpCapSerialNumber = 0x40000000;
constexpr uint32_t kGvcpCapHeartbeatDisable = 0x20000000;
constexpr uint32_t kGvcpCapLinkSpeed = 0x10000000;
constexpr uint32_t kGvcpCapPrimaryApplication = 0x08000000; // its port and IP registers
constexpr uint32_t kGvcpCapTestData = 0x02000000;           // test packets carry the LFSR sequence
constexpr uint32_t kGvcpCapAction = 0x00000040;
constexpr uint32_t kGvcpCapPendingAck = 0x00000020;
constexpr uint32_t kGvcpCapEventData = 0x00000010;
constexpr uint32_t kGvcpCapEvent = 0x00000008;
constexpr uint32_t kGvcpCapPacketResend = 0x00000004;
constexpr uint32_t kGvcpCapWriteMem = 0x00000002;
constexpr uint32_t kGvcpCapConcatenation = 0x00000001; // several registers per READREG/WRITEREG

// GVCP configuration register (0x0954) bits.
constexpr uint32_t kGvcpConfigHeartbeatDisable = 0x00000001;
// GVSP configuration register (0x0960): 64-bit block ids and 32-bit packet ids.
constexpr uint32_t kGvspConfigExtendedId = 0x40000000;
// Timestamp control register (0x0944) bits.
constexpr uint32_t kTimestampReset = 0x00000001;
constexpr uint32_t kTimestampLatch = 0x00000002;

// Stream channel packet size register (0x0D04) bits.
constexpr uint32_t kPacketSizeFireTestPacket = 0x80000000;
constexpr uint32_t kPacketSizeDoNotFragment = 0x40000000;
constexpr uint32_t kPacketSizeBigEndian = 0x20000000;
constexpr uint32_t kPacketSizeMask = 0x0000FFFF;

// Bytes of IP and UDP headers a stream packet size counts.
constexpr uint32_t kIpUdpOverhead = 28;
// What every IPv4 host must accept: no smaller packet size is ever needed.
constexpr uint32_t kMinPacketSize = 576;

// GVSP: header sizes and packet formats.
constexpr size_t kGvspHeaderSize = 8;          // status, block id, format, packet id (24 bits)
constexpr size_t kGvspExtendedHeaderSize = 20; // status, flags, format, block id 64, packet id 32
constexpr uint8_t kGvspExtendedIdFlag = 0x80;  // in the format byte

enum PacketFormat : uint8_t {
    Leader = 1,
    Trailer = 2,
    GenericPayload = 3,
    AllIn = 4,
    H264Payload = 5,
    MultiZonePayload = 6,
    MultiPartPayload = 7,
    GenDcPayload = 8,
};

enum PayloadType : uint16_t {
    Image = 0x0001,
    RawData = 0x0002,
    File = 0x0003,
    ChunkData = 0x0004,
    ExtendedChunkData = 0x0005, // deprecated form
    Jpeg = 0x0006,
    Jpeg2000 = 0x0007,
    H264 = 0x0008,
    MultiZoneImage = 0x0009,
    MultiPart = 0x000A,
    GenDc = 0x000B,
    DeviceSpecificBase = 0x8000,
};
// Set in a leader's payload type when chunks follow the payload ("extended chunk mode").
constexpr uint16_t kPayloadTypeChunkFlag = 0x4000;

// Multi-part blocks. The leader lists one descriptor per part after its timestamp (and, in the
// extended-id form, counts them in the last byte of the header's reserved field); the trailer
// lists one short record per part; every multi-part payload packet names its part and the
// offset of its data within that part.
namespace Part {
constexpr size_t LeaderFixedSize = 12; // reserved, payload type, timestamp
constexpr size_t LeaderPartSize = 48;
constexpr size_t TrailerPartSize = 16;
constexpr size_t HeaderPartCount = 7; // byte of an extended-id leader header
constexpr size_t DataHeaderSize = 8;  // part id, zone info, 48-bit offset
constexpr uint8_t EndOfPart = 0x40;   // in the zone info byte
// Offsets within a leader's part descriptor.
constexpr size_t DataType = 0;   // u16
constexpr size_t Length = 2;     // u48
constexpr size_t Format = 8;     // u32: pixel format of image data types
constexpr size_t SourceId = 14;  // u8
constexpr size_t PurposeId = 20; // u16
constexpr size_t RegionId = 22;  // u16
constexpr size_t SizeX = 24;     // u32, then size y, offset x, offset y
constexpr size_t PaddingX = 40;  // u16
// Data types 1 to 9 (2D and 3D images and their planes, confidence maps) are the GenTL part
// data types of the same number.
constexpr uint16_t Image2D = 0x0001;
constexpr uint16_t ConfidenceMap = 0x0009;
constexpr bool SameInGenTL(int64_t type) {
    return type >= Image2D && type <= ConfidenceMap;
}
} // namespace Part

} // namespace Gev
} // namespace Orvan

#endif
