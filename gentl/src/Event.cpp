#include "Event.h"

#include "GenTLError.h"

#include <GenTL/GenTLExtensions.h>

#include <cstdio>
#include <cstring>

namespace Orvan {
namespace Producer {

namespace {

// GigE Vision EVENTDATA: an 8-byte GVCP header, then per event a 16-bit reserved field and the
// 16-bit event identifier, both big-endian.
constexpr size_t kGvcpHeaderSize = 8;

uint16_t GigEEventId(const uint8_t* data, size_t size) {
    if (size < kGvcpHeaderSize + 4)
        throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER, "The event data holds no event item");
    const uint8_t* item = data + kGvcpHeaderSize;
    return static_cast<uint16_t>(item[2] << 8 | item[3]);
}

std::string Hex(uint64_t value) {
    char text[24];
    std::snprintf(text, sizeof(text), "%llX", static_cast<unsigned long long>(value));
    return text;
}

InfoValue NewBufferDataInfo(const uint8_t* data, size_t size, GenTL::EVENT_DATA_INFO_CMD cmd) {
    if (size < sizeof(GenTL::EVENT_NEW_BUFFER_DATA))
        throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER, "New-buffer event data is 16 bytes");
    GenTL::EVENT_NEW_BUFFER_DATA record;
    std::memcpy(&record, data, sizeof(record));
    if (cmd == GenTL::EVENT_DATA_ID)
        return InfoValue::Ptr(record.BufferHandle);
    if (cmd == GenTL::EVENT_DATA_VALUE)
        return InfoValue::Ptr(record.pUserPointer);
    throw GenTLError(GenTL::GC_ERR_NOT_AVAILABLE, "New-buffer events carry no numeric id");
}

// Error events carry the 32-bit code, then the text with its terminator.
InfoValue ErrorDataInfo(const uint8_t* data, size_t size, GenTL::EVENT_DATA_INFO_CMD cmd) {
    if (size < sizeof(int32_t))
        throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER, "Error event data is too short");
    int32_t code = 0;
    std::memcpy(&code, data, sizeof(code));
    if (cmd == GenTL::EVENT_DATA_ID)
        return InfoValue::Int32(code);
    if (cmd == GenTL::EVENT_DATA_VALUE)
        return InfoValue::String(std::string(
            reinterpret_cast<const char*>(data) + sizeof(code),
            strnlen(reinterpret_cast<const char*>(data) + sizeof(code), size - sizeof(code))));
    throw GenTLError(GenTL::GC_ERR_NOT_AVAILABLE, "Error events carry no numeric id");
}

InfoValue MessageDataInfo(const uint8_t* data, size_t size, GenTL::EVENT_DATA_INFO_CMD cmd) {
    uint16_t id = GigEEventId(data, size);
    if (cmd == GenTL::EVENT_DATA_ID)
        return InfoValue::String(Hex(id));
    if (cmd == GenTL::EVENT_DATA_VALUE)
        return InfoValue::Bytes(data, size);
    if (cmd == GenTL::EVENT_DATA_NUMID)
        return InfoValue::UInt64(id);
    throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER, "Unknown event data info command");
}

} // namespace

InfoValue Event::Info(GenTL::EVENT_INFO_CMD cmd) const {
    switch (cmd) {
    case GenTL::EVENT_EVENT_TYPE:
        return InfoValue::Int32(m_type);
    case GenTL::EVENT_NUM_IN_QUEUE:
        return InfoValue::SizeT(NumInQueue());
    case GenTL::EVENT_NUM_FIRED:
        return InfoValue::UInt64(NumFired());
    case GenTL::EVENT_SIZE_MAX:
    case GenTL::EVENT_INFO_DATA_SIZE_MAX:
        return InfoValue::SizeT(MaxDataSize());
    default:
        throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER, "Unknown event info command");
    }
}

InfoValue Event::DataInfo(const void* data, size_t size, GenTL::EVENT_DATA_INFO_CMD cmd) const {
    RequirePointer(data, "data");
    const auto* bytes = static_cast<const uint8_t*>(data);
    switch (m_type) {
    case GenTL::EVENT_NEW_BUFFER:
        return NewBufferDataInfo(bytes, size, cmd);
    case GenTL::EVENT_ERROR:
        return ErrorDataInfo(bytes, size, cmd);
    case GenTL::EVENT_REMOTE_DEVICE:
        return MessageDataInfo(bytes, size, cmd);
    default: // vendor stream events: opaque bytes
        if (cmd == GenTL::EVENT_DATA_VALUE)
            return InfoValue::Bytes(data, size);
        if (cmd == GenTL::EVENT_DATA_NUMID)
            return InfoValue::UInt64(static_cast<uint64_t>(m_type));
        throw GenTLError(GenTL::GC_ERR_NOT_AVAILABLE, "The event has no data id");
    }
}

} // namespace Producer
} // namespace Orvan
