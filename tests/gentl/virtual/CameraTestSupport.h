// Test doubles and helpers for the virtual cameras: a stream and an event sink that record what
// a camera hands over, and feature access by name that finds each register through the camera's
// own description, the way a GenICam consumer would.
#ifndef ORVAN_TESTS_GENTL_VIRTUAL_CAMERATESTSUPPORT_H
#define ORVAN_TESTS_GENTL_VIRTUAL_CAMERATESTSUPPORT_H

#include "RemoteDevice.h"
#include "virtual/VirtualCamera.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace CameraTest {

using Orvan::Producer::FillSlot;
using Orvan::Producer::FrameInfo;

struct DeliveredFrame {
    FrameInfo info;
    std::vector<uint8_t> bytes; // the filled part of the buffer
};

// A stream with `buffers` queued buffers of `size` bytes. Delivered buffers are copied and
// queued again at once, unless the sink is told to hold them.
class FakeFrameSink : public Orvan::Producer::FrameSink {
public:
    FakeFrameSink(size_t buffers, size_t size);

    bool AcquireBuffer(FillSlot& slot) override;
    void Deliver(const FillSlot& slot, const FrameInfo& info) override;
    void Return(const FillSlot& slot) override;
    void SignalLeader() override;
    void CountLostFrame() override;
    void DeliverStreamEvent(int32_t eventType, const void* data, size_t size) override;

    void HoldBuffers(bool hold);
    // Waits until `count` frames were delivered; returns them all.
    std::vector<DeliveredFrame> WaitFrames(size_t count, std::chrono::milliseconds timeout);
    std::vector<DeliveredFrame> Frames();
    size_t Lost();
    size_t Leaders();
    size_t StreamEvents();
    size_t Calls(); // every call into the sink

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::vector<uint8_t>> m_buffers;
    std::vector<size_t> m_free;
    bool m_hold = false;
    std::vector<DeliveredFrame> m_frames;
    size_t m_lost = 0, m_leaders = 0, m_streamEvents = 0, m_calls = 0;
};

class FakeEventSink : public Orvan::Producer::EventSink {
public:
    void DeliverRemoteEvent(const void* data, size_t size) override;
    std::vector<std::vector<uint8_t>> WaitMessages(size_t count, std::chrono::milliseconds timeout);

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::vector<uint8_t>> m_messages;
};

// Reads and writes features through the camera's port at the addresses its description gives.
class Features {
public:
    explicit Features(Orvan::Producer::VirtualCamera& camera);

    int64_t Int(const std::string& node);
    double Float(const std::string& node);
    std::string String(const std::string& node);
    std::string Enum(const std::string& node);
    GenTL::GC_ERROR SetInt(const std::string& node, int64_t value);
    GenTL::GC_ERROR SetFloat(const std::string& node, double value);
    GenTL::GC_ERROR SetEnum(const std::string& node, const std::string& entry);
    GenTL::GC_ERROR Execute(const std::string& command);
    std::vector<std::string> Entries(const std::string& node);

private:
    struct Register {
        uint64_t address;
        uint32_t length;
        bool isFloat;
    };
    const Register& Find(const std::string& node) const;

    Orvan::Producer::VirtualCamera& m_camera;
    std::map<std::string, Register> m_registers; // by feature or register node name
    std::map<std::string, std::vector<std::pair<std::string, int64_t>>> m_entries;
};

std::unique_ptr<Orvan::Producer::VirtualCamera> MakeCamera(const std::string& model,
                                                           uint32_t index = 0);

uint64_t BigEndian(const uint8_t* p, size_t size);

// A GigE Vision chunk found walking a payload backwards from its end.
struct ParsedChunk {
    uint32_t id;
    size_t offset;
    uint32_t length;
};
// Empty when the layout is broken.
std::vector<ParsedChunk> ParseChunks(const std::vector<uint8_t>& payload);

} // namespace CameraTest

#endif
