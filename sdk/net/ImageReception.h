// The receiving half of an image: metadata, pixel format, then the pixel pieces, taken from a
// datagram source. Shared by the socket and the fuzz target, so it reports failures as outcomes
// and leaves the exceptions and the image factory to the socket.
//
// Wire format, all in host byte order since both ends run on one machine:
//   metadata      12 bytes   u32 width, u32 height, u32 data size (low 32 bits of the buffer size)
//   pixel format   8 bytes   u64 PFNC code
//   data        1..1024 bytes each, consecutive pieces of the pixels until the size is reached
// Datagrams carry no sequence number or sender identity: arrival order is trusted and one sender
// at a time is assumed, so a stray datagram costs at most the image it lands in.
#ifndef ORVAN_NET_IMAGERECEPTION_H
#define ORVAN_NET_IMAGERECEPTION_H

#include "DatagramSource.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Orvan {

constexpr size_t kMetadataBytes = 12;
constexpr size_t kPixelFormatBytes = 8;
constexpr size_t kMaxDataPieceBytes = 1024;

struct ImageReception {
    enum class Outcome {
        Image,           // every announced byte arrived
        Nothing,         // nothing usable, or the source was closed
        MetadataFailed,  // the metadata receive failed; error holds errno
        DataFailed,      // a data receive failed; error holds errno
        AllocationFailed // no memory for the announced size
    };

    Outcome outcome = Outcome::Nothing;
    int error = 0;
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t size = 0;
    uint64_t pixelFormat = 0;
    std::unique_ptr<uint8_t[]> data;
};

// Receives one image's datagrams. Prints to standard output why a damaged image was dropped;
// says nothing when the source was closed on purpose.
ImageReception ReceiveImageDatagrams(DatagramSource& source);

} // namespace Orvan

#endif
