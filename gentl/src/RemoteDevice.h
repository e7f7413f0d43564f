// The seam between the producer's GenTL modules and the transports behind them: a remote
// device (a camera) as the device and data-stream modules see it, and the sinks through which a
// camera hands over frames and events.
#ifndef ORVAN_GENTL_REMOTEDEVICE_H
#define ORVAN_GENTL_REMOTEDEVICE_H

#include <GenTL/GenTL.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

// What discovery reports about a camera (device info commands, standard and custom).
struct DeviceIdentity {
    std::string id; // unique within its interface
    std::string vendor;
    std::string model;
    std::string serialNumber;
    std::string version;
    std::string userDefinedName;
    std::string tlType = "GEV"; // transport-layer type reported by DEVICE_INFO_TLTYPE
    uint64_t mac = 0;           // 48-bit
    uint32_t ip = 0;            // host order
    uint32_t subnet = 0;
    uint32_t gateway = 0;
    bool dhcp = false;
    bool persistentIp = false;
    bool lla = true;
};

// A buffer taken from a stream's input queue for filling.
struct FillSlot {
    uint8_t* data = nullptr;
    size_t size = 0;
    void* token = nullptr; // the stream module's own reference; the camera never touches it
};

// One part of a multi-part buffer (the BUFFER_PART_INFO_* values).
struct FramePart {
    uint64_t offset = 0; // from the start of the buffer
    uint64_t size = 0;
    int32_t dataType = GenTL::PART_DATATYPE_2D_IMAGE;
    uint64_t format = 0; // PFNC code of image data
    uint64_t width = 0;
    uint64_t height = 0;
    uint64_t offsetX = 0;
    uint64_t offsetY = 0;
    uint64_t paddingX = 0;
    uint64_t sourceId = 0;
    uint64_t regionId = 0;
    uint64_t purposeId = 0;
};

// What a camera tells the stream about a filled buffer (the BUFFER_INFO_* values).
struct FrameInfo {
    uint64_t frameId = 0;
    uint64_t timestampTicks = 0;
    uint64_t timestampNs = 0;
    uint64_t sizeFilled = 0;  // bytes written, chunks included
    uint64_t dataSize = 0;    // bytes of payload data (image, or compressed image)
    int32_t payloadType = 0;  // PAYLOAD_TYPE_* or the custom compressed types 1001/1002
    uint64_t pixelFormat = 0; // PFNC code
    uint64_t width = 0;
    uint64_t height = 0;
    uint64_t offsetX = 0;
    uint64_t offsetY = 0;
    uint64_t paddingX = 0;
    uint64_t paddingY = 0;
    uint64_t imageOffset = 0;
    bool imagePresent = true;
    bool incomplete = false;
    bool dataLargerThanBuffer = false;
    bool containsChunkData = false;
    std::vector<FramePart> parts; // multi-part payloads
};

// How a network stream asks for lost packets again (DSSetupResendRetryParams tunes it; the
// stream's node map shows it).
struct ResendSettings {
    bool enabled = true;
    // A gap in the packet ids is asked for once it is this old (reordering shorter than this
    // costs no request).
    uint32_t requestDelayUs = 2000;
    // Time to wait for an asked-for packet before asking again, and how often to ask.
    uint32_t retryTimeoutUs = 10000;
    uint32_t maxRetries = 3;
    // A frame whose packets have not all arrived this long after its trailer (or after the
    // leader of a later frame) is delivered flagged incomplete.
    uint32_t frameTimeoutUs = 100000;
};

// How a network stream's packets reach the host and where its receiving thread runs (the
// stream's node map chooses them; they apply from the next acquisition start).
enum class ReceivePath : int64_t {
    Auto = 0,       // AF_XDP where the driver runs it, else the packet ring, else the socket
    Socket = 1,     // the UDP socket, datagrams fetched in batches
    PacketRing = 2, // a memory-mapped ring the kernel fills with this stream's packets
    Xdp = 3         // AF_XDP sockets the interface's XDP program hands this stream's packets to
};
enum class ThreadPriority : int64_t { Normal = 0, RealTime = 1 };
struct ReceiveSettings {
    ReceivePath path = ReceivePath::Auto;
    int32_t core = -1; // -1: wherever the scheduler puts it
    ThreadPriority priority = ThreadPriority::Normal;
};

// Transport counters of a network stream, shown in the stream's node map.
struct StreamStatistics {
    uint64_t packetsReceived = 0;
    uint64_t packetsRecovered = 0; // arrived after a resend request
    uint64_t packetsLost = 0;      // never arrived
    uint64_t resendRequests = 0;   // PACKETRESEND commands sent
    uint64_t framesDelivered = 0;
    uint64_t framesIncomplete = 0; // delivered flagged incomplete
    uint64_t framesLost = 0;       // no buffer queued, or nothing usable arrived
};

// Implemented by a data-stream module; called from the camera's acquisition thread. All calls
// are thread-safe and never block on the application.
class FrameSink {
public:
    virtual ~FrameSink() = default;
    // The oldest buffer of the input queue, or false when none is queued (the camera counts
    // the frame as lost). The slot belongs to the camera until Deliver or Return.
    virtual bool AcquireBuffer(FillSlot& slot) = 0;
    // The filled buffer goes to the output queue and raises EVENT_NEW_BUFFER.
    virtual void Deliver(const FillSlot& slot, const FrameInfo& info) = 0;
    // The buffer goes back to the front of the input queue unfilled.
    virtual void Return(const FillSlot& slot) = 0;
    // A frame has started (the leader of the next block): wakes DSWaitForNextLeader.
    virtual void SignalLeader() = 0;
    // A frame was lost because no buffer was queued, or dropped on purpose.
    virtual void CountLostFrame() = 0;
    // Vendor stream event (event type 1001 of the event-based-sensor stream).
    virtual void DeliverStreamEvent(int32_t eventType, const void* data, size_t size) = 0;
};

// Implemented by a device module: receives the camera's events (EVENT_REMOTE_DEVICE data in
// the GigE Vision event-data layout) from the camera's own threads.
class EventSink {
public:
    virtual ~EventSink() = default;
    virtual void DeliverRemoteEvent(const void* data, size_t size) = 0;
};

// A camera behind an interface. Every call is thread-safe. Calls on a disconnected camera fail
// with GC_ERR_IO (or GC_ERR_TIMEOUT where a real link would time out).
class RemoteDevice {
public:
    virtual ~RemoteDevice() = default;

    virtual const DeviceIdentity& Identity() const = 0;
    virtual bool IsConnected() const = 0;

    // DevOpen and DevClose: a network camera takes the control privilege the flags ask for
    // (and keeps it alive) and gives it back on Close. A failed Open leaves the camera closed;
    // the GC_ERROR text goes to the caller's last error. Virtual cameras need neither.
    virtual GenTL::GC_ERROR Open(GenTL::DEVICE_ACCESS_FLAGS /*flags*/) {
        return GenTL::GC_ERR_SUCCESS;
    }
    virtual void Close() {}
    // DEVICE_ACCESS_STATUS as the camera itself reports it to an application that has not
    // opened it (another host may hold control), or DEVICE_ACCESS_STATUS_UNKNOWN when only the
    // producer's own bookkeeping knows.
    virtual int32_t QueryAccessStatus() const { return GenTL::DEVICE_ACCESS_STATUS_UNKNOWN; }

    // The camera's register space (its remote port).
    virtual GenTL::GC_ERROR ReadPort(uint64_t address, void* data, size_t* size) = 0;
    virtual GenTL::GC_ERROR WritePort(uint64_t address, const void* data, size_t* size) = 0;
    // The first URL of the remote port: "local:<file>;<hex address>;<hex length>" (file name
    // ending .xml or .zip), pointing into the register space above.
    virtual std::string DescriptionUrl() const = 0;
    // Version of the description schema and file, for the URL info queries.
    virtual void DescriptionVersions(int32_t& schemaMajor, int32_t& schemaMinor, int32_t& fileMajor,
                                     int32_t& fileMinor, int32_t& fileSubminor) const = 0;

    // Streams: ids and the payload size each currently needs.
    virtual uint32_t StreamCount() const = 0;
    virtual std::string StreamId(uint32_t index) const = 0;
    virtual uint64_t PayloadSize(uint32_t index) const = 0;
    // The timestamp tick frequency in Hz (ticks are converted to ns with it).
    virtual uint64_t TimestampFrequency() const = 0;

    // Connects a stream's sink (DSStartAcquisition). Frames flow once the camera's own
    // acquisition is started through its registers (AcquisitionStart), at most maxFrames of
    // them (GENTL_INFINITE for no limit). StopStream returns only after the camera's last call
    // into the sink has returned.
    virtual GenTL::GC_ERROR StartStream(uint32_t index, FrameSink* sink, uint64_t maxFrames) = 0;
    virtual void StopStream(uint32_t index) = 0;
    // Network streams only; the defaults fit cameras without a packet transport.
    virtual void ConfigureResend(uint32_t /*index*/, const ResendSettings& /*settings*/) {}
    virtual bool GetStreamStatistics(uint32_t /*index*/, StreamStatistics& /*out*/) const {
        return false;
    }
    virtual void ConfigureReceive(uint32_t /*index*/, const ReceiveSettings& /*settings*/) {}
    // What the stream's last start obtained: the path Auto chose (Auto: never started), and
    // -1 or Normal where pinning or the priority were refused.
    virtual bool GetReceiveInUse(uint32_t /*index*/, ReceiveSettings& /*out*/) const {
        return false;
    }

    // Connects the device module's event sink (GCRegisterEvent EVENT_REMOTE_DEVICE); null
    // disconnects it.
    virtual void SetEventSink(EventSink* sink) = 0;

    // GigE Vision action command; the camera acts if device key, group key and mask match.
    virtual GenTL::GC_ERROR ActionCommand(uint32_t deviceKey, uint32_t groupKey, uint32_t groupMask,
                                          uint64_t scheduledTimeNs) = 0;
    // FORCEIP addressed to this camera's MAC: changes its current address.
    virtual GenTL::GC_ERROR ForceIp(uint32_t ip, uint32_t subnet, uint32_t gateway) = 0;
};

// Faults a test can inject into a virtual camera (through the producer's test-control API).
enum class FrameFault { Drop, Corrupt, Incomplete };

// The virtual cameras' own controls, beyond what a real camera offers.
class VirtualControls {
public:
    virtual ~VirtualControls() = default;
    virtual void SetConnected(bool connected) = 0;
    // The next `count` frames suffer the fault.
    virtual void InjectFrameFault(FrameFault fault, uint32_t count) = 0;
};

// Makes a virtual camera of a model ("Mono", "Color", "LineScan", "MultiStream", "Compressed",
// "EventSensor"); index makes its serial number, MAC and IP unique. Null for an unknown model.
// The result also implements VirtualControls.
std::unique_ptr<RemoteDevice> CreateVirtualCamera(const std::string& model, uint32_t index);

// The models CreateVirtualCamera knows.
std::vector<std::string> VirtualCameraModels();

} // namespace Producer
} // namespace Orvan

#endif
