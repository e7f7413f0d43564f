#include "ImageReception.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <new>

namespace Orvan {

namespace {

using Outcome = ImageReception::Outcome;

// Room for the largest piece a sender of ours ever cuts, with space to spare for foreign ones.
constexpr size_t kPieceBufferBytes = 8192;

ImageReception Failed(Outcome outcome, int error) {
    ImageReception result;
    result.outcome = outcome;
    result.error = error;
    return result;
}

// Both geometry words and the size come in one datagram so that a short or long one, usually a
// stray data piece, is recognised before anything is allocated.
bool ReceiveMetadata(DatagramSource& source, ImageReception& result) {
    uint8_t metadata[kMetadataBytes];
    const long count = source.Receive(metadata, sizeof(metadata), true);
    if (count < 0) {
        if (!source.Closed())
            result = Failed(Outcome::MetadataFailed, errno);
        return false;
    }
    // A shut-down listener reads as an empty datagram.
    if (count == 0 && source.Closed())
        return false;
    if (count != static_cast<long>(kMetadataBytes)) {
        std::cout << "Incomplete metadata received: expected " << kMetadataBytes << " bytes, got "
                  << count << std::endl;
        return false;
    }
    std::memcpy(&result.width, metadata, 4);
    std::memcpy(&result.height, metadata + 4, 4);
    std::memcpy(&result.size, metadata + 8, 4);
    return true;
}

bool ReceivePixelFormat(DatagramSource& source, ImageReception& result) {
    uint8_t code[kPixelFormatBytes] = {};
    if (source.Receive(code, sizeof(code), false) < 1)
        return false;
    std::memcpy(&result.pixelFormat, code, sizeof(code));
    return true;
}

// Fills the data area piece by piece; returns how much arrived, or fails the result.
bool ReceivePixels(DatagramSource& source, ImageReception& result, size_t& total) {
    uint8_t piece[kPieceBufferBytes];
    while (total < result.size) {
        const long count = source.Receive(piece, sizeof(piece), false);
        if (count < 0 || (count == 0 && source.Closed())) {
            if (!source.Closed())
                result = Failed(Outcome::DataFailed, errno);
            return false;
        }
        if (count == 0) {
            std::cout << "Connection closed by client" << std::endl;
            break;
        }
        // A longer last piece than announced is cut off: its excess belongs to nobody.
        const size_t taken = std::min<size_t>(result.size - total, static_cast<size_t>(count));
        std::memcpy(result.data.get() + total, piece, taken);
        total += taken;
    }
    return true;
}

} // namespace

ImageReception ReceiveImageDatagrams(DatagramSource& source) {
    ImageReception result;
    if (!ReceiveMetadata(source, result) || !ReceivePixelFormat(source, result))
        return Failed(result.outcome, result.error);
    result.data.reset(new (std::nothrow) uint8_t[result.size]);
    if (!result.data)
        return Failed(Outcome::AllocationFailed, ENOMEM);
    size_t total = 0;
    if (!ReceivePixels(source, result, total))
        return Failed(result.outcome, result.error);
    if (total != result.size) {
        std::cout << "Incomplete image data received: expected " << result.size << " bytes, got "
                  << total << std::endl;
        return Failed(Outcome::Nothing, 0);
    }
    result.outcome = Outcome::Image;
    return result;
}

} // namespace Orvan
