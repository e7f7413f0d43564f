// One announced buffer of a data stream and where it is in the acquisition engine.
#ifndef ORVAN_GENTL_STREAMBUFFER_H
#define ORVAN_GENTL_STREAMBUFFER_H

#include "RemoteDevice.h"

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace Orvan {
namespace Producer {

struct StreamBuffer {
    // Every announced buffer is in exactly one of these places.
    enum class Place {
        Outside, // announced and not queued: never queued, delivered, discarded or flushed out
        Input,   // in the input pool, waiting to be filled
        Filling, // taken by the camera
        Output   // in the output queue, waiting for EventGetData
    };

    struct FreeDeleter {
        void operator()(uint8_t* memory) const { std::free(memory); }
    };

    void* handle = nullptr;
    uint8_t* base = nullptr;
    size_t size = 0;
    void* userPointer = nullptr;
    std::unique_ptr<uint8_t, FreeDeleter> ownMemory; // set for DSAllocAndAnnounceBuffer
    Place place = Place::Outside;
    bool newData = false;
    FrameInfo frame;
};

} // namespace Producer
} // namespace Orvan

#endif
