// A handle of the logging transport. Records travel as UDP datagrams between the processes of
// this machine; every port named here is a port of the loopback network.
#ifndef MORLULOG_IMORLULOG_H
#define MORLULOG_IMORLULOG_H

#include <MorluLog/Callbacks.h>

#include <cstdint>

namespace MorluLog {

class IMorluLog {
public:
    // Opens the socket that sends this handle's records, bound to the given source port. Several
    // processes may set up the same port. False if a socket is already set up or the port
    // cannot be bound.
    virtual bool SetupPort(uint16_t port) = 0;

    // Sends what is still queued, then closes the socket set up on that port.
    virtual void ReleasePort(uint16_t port) = 0;

    // Adds a port that every sent record reaches. A port registered twice is reached once.
    virtual void RegisterPort(uint16_t port) = 0;

    // Offers the record to the filter-out callback; an admitted record is written once through
    // the log callback and queued for every registered port. Never waits for a receiver: when
    // the queue is full the record does not leave the process and is counted as dropped.
    // Returns whether the record was queued for sending.
    virtual bool Send(const char* record) = 0;

    virtual void RegisterFilterOutFn(IFilterOutFn* filterOut) = 0;

    // Receives the records that other handles send to this port, on a thread of the handle.
    // Each passes the filter callback and reaches the log callback. Several processes may listen
    // on the same port; each of them receives every record. False if this handle already listens
    // on the port or it cannot be bound.
    virtual bool Listen(uint16_t port) = 0;

    // Returns once no callback of that listener runs any more.
    virtual void StopListening(uint16_t port) = 0;

    virtual void RegisterFilterFn(IFilterFn* filter) = 0;

    virtual void RegisterLogFn(ILogFn* log) = 0;

    // Datagrams that did not leave: the send queue was full, or the socket refused them (too
    // long, or no buffer space). One record sent to two ports can count twice.
    virtual uint64_t DroppedCount() const = 0;

protected:
    // Handles are released with Deinit.
    virtual ~IMorluLog() = default;
};

} // namespace MorluLog

#endif
