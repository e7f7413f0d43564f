// A registered event (EVENT_HANDLE): what EventGetData, EventGetInfo, EventFlush and EventKill
// work on. Subclasses decide where the data comes from.
#ifndef ORVAN_GENTL_EVENT_H
#define ORVAN_GENTL_EVENT_H

#include "HandleRegistry.h"
#include "InfoValue.h"

#include <GenTL/GenTL.h>

namespace Orvan {
namespace Producer {

class Event : public HandleObject {
public:
    explicit Event(GenTL::EVENT_TYPE type) : m_type(type) {}

    GenTL::EVENT_TYPE Type() const { return m_type; }

    // Takes the oldest data into buffer (capacity *size; *size becomes the bytes written).
    virtual void GetData(void* buffer, size_t* size, uint64_t timeoutMs) = 0;
    virtual void Flush() = 0;
    virtual void Kill() = 0;
    // Ends every wait in progress with GC_ERR_ABORT (the source is going away or stopping).
    virtual void AbortWaits() = 0;
    virtual size_t NumInQueue() const = 0;
    virtual uint64_t NumFired() const = 0;
    virtual size_t MaxDataSize() const = 0;

    InfoValue Info(GenTL::EVENT_INFO_CMD cmd) const;
    InfoValue DataInfo(const void* data, size_t size, GenTL::EVENT_DATA_INFO_CMD cmd) const;

private:
    GenTL::EVENT_TYPE m_type;
};

} // namespace Producer
} // namespace Orvan

#endif
