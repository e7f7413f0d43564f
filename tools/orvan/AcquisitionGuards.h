// Scope guards of an acquisition: the stream is stopped and every buffer given back on every way
// out of the loop, so an error or Ctrl-C never leaves the camera sending into announced buffers.
#ifndef ORVAN_TOOLS_ORVAN_ACQUISITIONGUARDS_H
#define ORVAN_TOOLS_ORVAN_ACQUISITIONGUARDS_H

#include <Base/GCException.h>
#include <Orvan/IDevice.h>

#include <cstddef>

namespace Orvan {
namespace Cli {

// Starts the stream; stops it when asked or, at the latest, when the scope ends.
class RunningStream {
public:
    RunningStream(IDevice& device, size_t buffers) : m_device(device) {
        m_device.StartStream(buffers);
    }
    ~RunningStream() {
        try {
            Stop();
        } catch (const GenICam::GenericException&) {
            // Already leaving on another error, which is the one to report.
        }
    }
    RunningStream(const RunningStream&) = delete;
    RunningStream& operator=(const RunningStream&) = delete;

    void Stop() {
        if (m_running) {
            m_running = false;
            m_device.StopStream();
        }
    }

private:
    IDevice& m_device;
    bool m_running = true;
};

// Gives a buffer back to the stream however its handling ends.
class HeldBuffer {
public:
    HeldBuffer(IDevice& device, IBuffer* buffer) : m_device(device), m_buffer(buffer) {}
    ~HeldBuffer() {
        try {
            m_device.RequeueBuffer(m_buffer);
        } catch (const GenICam::GenericException&) {
            // Stopping the stream revokes the buffer anyway; only the count of free ones shrinks.
        }
    }
    HeldBuffer(const HeldBuffer&) = delete;
    HeldBuffer& operator=(const HeldBuffer&) = delete;
    IBuffer* operator->() const { return m_buffer; }

private:
    IDevice& m_device;
    IBuffer* m_buffer;
};

} // namespace Cli
} // namespace Orvan

#endif
