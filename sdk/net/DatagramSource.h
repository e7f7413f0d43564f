// Where the image receiver takes its datagrams from: the socket's listener, or a fuzzer's bytes.
#ifndef ORVAN_NET_DATAGRAMSOURCE_H
#define ORVAN_NET_DATAGRAMSOURCE_H

#include <cstddef>
#include <cstdint>

namespace Orvan {

class DatagramSource {
public:
    virtual ~DatagramSource() = default;
    // Takes the next datagram into buffer like recv(2): its byte count (with wholeLength, its
    // full length even when it did not fit), 0 for an empty datagram, -1 with errno set when the
    // receive failed.
    virtual long Receive(uint8_t* buffer, size_t capacity, bool wholeLength) = 0;
    // True once the owner closed the source on purpose: what the receive returns then is no
    // error of the peer's.
    virtual bool Closed() const = 0;
};

} // namespace Orvan

#endif
