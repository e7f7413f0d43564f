// The three callbacks through which the transport hands records back to its user. A filter that
// throws refuses the record; an exception from the log callback is dropped with the record.
#ifndef MORLULOG_CALLBACKS_H
#define MORLULOG_CALLBACKS_H

namespace MorluLog {

// Receives every record that is to be written locally.
class ILogFn {
public:
    virtual void OnLog(const char* record) = 0;

protected:
    ~ILogFn() = default;
};

// Decides whether a record that arrived from another process is written locally.
class IFilterFn {
public:
    virtual bool OnFilter(const char* record) = 0;

protected:
    ~IFilterFn() = default;
};

// Decides whether a record sent by this process goes anywhere at all.
class IFilterOutFn {
public:
    virtual bool OnFilterOut(const char* record) = 0;

protected:
    ~IFilterOutFn() = default;
};

} // namespace MorluLog

#endif
