// The producer driven through its plain GenTL calls, as a consumer without the SDK would: the
// first camera of the first interface, its first data stream, and one new-buffer event.
#ifndef ORVAN_BENCH_PRODUCERSTREAM_H
#define ORVAN_BENCH_PRODUCERSTREAM_H

#include <GenTL/GenTL.h>

#include <cstddef>

namespace Bench {

class ProducerStream {
public:
    // Expects the cameras to have been chosen through the test-control calls beforehand.
    ProducerStream() {
        using namespace GenTL;
        GCInitLib();
        TLOpen(&m_system);
        char id[64];
        size_t size = sizeof(id);
        TLGetInterfaceID(m_system, 0, id, &size);
        TLOpenInterface(m_system, id, &m_interface);
        IFUpdateDeviceList(m_interface, nullptr, 100);
        size = sizeof(id);
        IFGetDeviceID(m_interface, 0, id, &size);
        IFOpenDevice(m_interface, id, DEVICE_ACCESS_CONTROL, &m_device);
        size = sizeof(id);
        DevGetDataStreamID(m_device, 0, id, &size);
        DevOpenDataStream(m_device, id, &m_stream);
        GCRegisterEvent(m_stream, EVENT_NEW_BUFFER, &m_event);
    }
    ProducerStream(const ProducerStream&) = delete;
    ProducerStream& operator=(const ProducerStream&) = delete;
    // Closing the library closes every module still open below it.
    ~ProducerStream() {
        GenTL::DSStopAcquisition(m_stream, GenTL::ACQ_STOP_FLAGS_DEFAULT);
        GenTL::GCCloseLib();
    }

    GenTL::DEV_HANDLE Device() const { return m_device; }

    // Announces and queues `count` producer-allocated buffers, then starts the host side.
    void Start(size_t count, size_t bytes) {
        using namespace GenTL;
        for (size_t i = 0; i < count; ++i) {
            BUFFER_HANDLE buffer = nullptr;
            DSAllocAndAnnounceBuffer(m_stream, bytes, nullptr, &buffer);
            DSQueueBuffer(m_stream, buffer);
        }
        DSStartAcquisition(m_stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE);
    }

    // Takes one delivered buffer and queues it again; false if none came.
    bool HandOff() {
        GenTL::EVENT_NEW_BUFFER_DATA data{};
        size_t size = sizeof(data);
        if (GenTL::EventGetData(m_event, &data, &size, 5000) != GenTL::GC_ERR_SUCCESS)
            return false;
        return GenTL::DSQueueBuffer(m_stream, data.BufferHandle) == GenTL::GC_ERR_SUCCESS;
    }

private:
    GenTL::TL_HANDLE m_system = nullptr;
    GenTL::IF_HANDLE m_interface = nullptr;
    GenTL::DEV_HANDLE m_device = nullptr;
    GenTL::DS_HANDLE m_stream = nullptr;
    GenTL::EVENT_HANDLE m_event = nullptr;
};

} // namespace Bench

#endif
