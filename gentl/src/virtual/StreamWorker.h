// The thread of one running stream: it waits for its camera to start a frame, sends the frame's
// events, takes a buffer from the stream, fills and delivers it (or counts the frame lost), and
// applies injected faults. The camera decides when frames start; the worker does the rest
// outside the camera's lock, so a slow consumer never blocks register access.
#ifndef ORVAN_GENTL_VIRTUAL_STREAMWORKER_H
#define ORVAN_GENTL_VIRTUAL_STREAMWORKER_H

#include "../RemoteDevice.h"
#include "CameraFeatures.h"
#include "CameraModel.h"
#include "EventStreamEncoder.h"
#include "FrameComposer.h"

#include <cstdint>
#include <thread>

namespace Orvan {
namespace Producer {

// What the camera orders for a stream's next frame.
struct FrameOrder {
    FrameSettings settings;
    EventRateSettings events; // event-data streams only
    uint64_t frameId = 0;
    uint64_t startNs = 0;
    uint64_t exposureNs = 0;
    bool faulty = false;
    FrameFault fault = FrameFault::Drop;
};

// The camera as its stream threads see it.
class StreamHost {
public:
    virtual ~StreamHost() = default;
    // Blocks until the stream's next frame starts; false when the stream is to stop.
    virtual bool NextFrame(uint32_t stream, FrameOrder& order) = 0;
    // Sleeps until the monotonic time; false when the frame is abandoned meanwhile (the stream
    // stops or the camera goes away).
    virtual bool SleepUntil(uint32_t stream, uint64_t timeNs) = 0;
    // The frame just made took `periods` frame periods more (the parts of a multipart buffer
    // are exposed one after the other).
    virtual void ExtendFrame(uint32_t stream, uint32_t periods) = 0;
    // Sends the event if it is enabled and a sink listens.
    virtual void Notify(CameraEvent event, uint64_t frameId, uint64_t timestampNs) = 0;
};

class StreamWorker {
public:
    StreamWorker(StreamHost& host, uint32_t index, StreamRole role, FrameSink& sink);
    ~StreamWorker();
    StreamWorker(const StreamWorker&) = delete;
    StreamWorker& operator=(const StreamWorker&) = delete;

    // Returns once the thread has ended (after the host told it to stop).
    void Join();

private:
    void Run();
    void Produce(const FrameOrder& order);
    FrameInfo Fill(const FrameOrder& order, const FillSlot& slot);
    static void Spoil(const FrameOrder& order, const FillSlot& slot, FrameInfo& info);

    StreamHost& m_host;
    const uint32_t m_index;
    const StreamRole m_role;
    FrameSink& m_sink;
    FrameComposer m_composer;
    EventStreamEncoder m_events;
    uint64_t m_nextImage = 1; // multipart: the stamp of the next part
    std::thread m_thread;
};

} // namespace Producer
} // namespace Orvan

#endif
