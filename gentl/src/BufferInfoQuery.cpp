#include "BufferInfoQuery.h"

#include "GenTLError.h"

#include <algorithm>

namespace Orvan {
namespace Producer {

namespace {

using Place = StreamBuffer::Place;

// The pixel-format codes are PFNC's 32-bit codes.
constexpr uint64_t kPfncNamespace = GenTL::PIXELFORMAT_NAMESPACE_PFNC_32BIT;

bool IsMultipart(const StreamBuffer& buffer) {
    return buffer.frame.payloadType == GenTL::PAYLOAD_TYPE_MULTI_PART;
}

} // namespace

InfoValue QueryBufferInfo(const StreamBuffer& buffer, GenTL::BUFFER_INFO_CMD cmd) {
    const FrameInfo& frame = buffer.frame;
    switch (cmd) {
    case GenTL::BUFFER_INFO_BASE:
        return InfoValue::Ptr(buffer.base);
    case GenTL::BUFFER_INFO_SIZE:
        return InfoValue::SizeT(buffer.size);
    case GenTL::BUFFER_INFO_USER_PTR:
        return InfoValue::Ptr(buffer.userPointer);
    case GenTL::BUFFER_INFO_TIMESTAMP:
        return InfoValue::UInt64(frame.timestampTicks);
    case GenTL::BUFFER_INFO_NEW_DATA:
        return InfoValue::Bool8(buffer.newData);
    case GenTL::BUFFER_INFO_IS_QUEUED:
        return InfoValue::Bool8(buffer.place == Place::Input || buffer.place == Place::Output);
    case GenTL::BUFFER_INFO_IS_ACQUIRING:
        return InfoValue::Bool8(buffer.place == Place::Filling);
    case GenTL::BUFFER_INFO_IS_INCOMPLETE:
        return InfoValue::Bool8(frame.incomplete);
    case GenTL::BUFFER_INFO_TLTYPE:
        return InfoValue::String(TLTypeGEVName);
    case GenTL::BUFFER_INFO_SIZE_FILLED:
        return InfoValue::SizeT(std::min<uint64_t>(frame.sizeFilled, buffer.size));
    case GenTL::BUFFER_INFO_WIDTH:
        return InfoValue::SizeT(frame.width);
    case GenTL::BUFFER_INFO_HEIGHT:
        return InfoValue::SizeT(frame.height);
    case GenTL::BUFFER_INFO_XOFFSET:
        return InfoValue::SizeT(frame.offsetX);
    case GenTL::BUFFER_INFO_YOFFSET:
        return InfoValue::SizeT(frame.offsetY);
    case GenTL::BUFFER_INFO_XPADDING:
        return InfoValue::SizeT(frame.paddingX);
    case GenTL::BUFFER_INFO_YPADDING:
        return InfoValue::SizeT(frame.paddingY);
    case GenTL::BUFFER_INFO_FRAMEID:
        return InfoValue::UInt64(frame.frameId);
    case GenTL::BUFFER_INFO_IMAGEPRESENT:
        return InfoValue::Bool8(frame.imagePresent);
    case GenTL::BUFFER_INFO_IMAGEOFFSET:
        return InfoValue::SizeT(frame.imageOffset);
    case GenTL::BUFFER_INFO_PAYLOADTYPE:
        return InfoValue::SizeT(static_cast<size_t>(frame.payloadType));
    case GenTL::BUFFER_INFO_PIXELFORMAT:
        return InfoValue::UInt64(frame.pixelFormat);
    case GenTL::BUFFER_INFO_PIXELFORMAT_NAMESPACE:
        return InfoValue::UInt64(kPfncNamespace);
    case GenTL::BUFFER_INFO_DELIVERED_IMAGEHEIGHT:
        return InfoValue::SizeT(frame.height);
    case GenTL::BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE:
        return InfoValue::SizeT(frame.containsChunkData ? frame.sizeFilled : 0);
    case GenTL::BUFFER_INFO_CHUNKLAYOUTID:
        return InfoValue::UInt64(0);
    case GenTL::BUFFER_INFO_FILENAME:
        throw GenTLError(GenTL::GC_ERR_NOT_AVAILABLE, "Buffers carry no file name");
    case GenTL::BUFFER_INFO_PIXEL_ENDIANNESS:
        return InfoValue::Int32(GenTL::PIXELENDIANNESS_LITTLE);
    case GenTL::BUFFER_INFO_DATA_SIZE:
        return InfoValue::SizeT(frame.dataSize);
    case GenTL::BUFFER_INFO_TIMESTAMP_NS:
        return InfoValue::UInt64(frame.timestampNs);
    case GenTL::BUFFER_INFO_DATA_LARGER_THAN_BUFFER:
        return InfoValue::Bool8(frame.dataLargerThanBuffer);
    case GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA:
        return InfoValue::Bool8(frame.containsChunkData);
    default:
        throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER,
                         "Unknown buffer info command " + std::to_string(cmd));
    }
}

uint32_t BufferPartCount(const StreamBuffer& buffer) {
    return IsMultipart(buffer) ? static_cast<uint32_t>(buffer.frame.parts.size()) : 0;
}

InfoValue QueryBufferPartInfo(const StreamBuffer& buffer, uint32_t index,
                              GenTL::BUFFER_PART_INFO_CMD cmd) {
    if (index >= BufferPartCount(buffer))
        throw GenTLError(GenTL::GC_ERR_INVALID_INDEX,
                         "The buffer holds " + std::to_string(BufferPartCount(buffer)) + " parts");
    const FramePart& part = buffer.frame.parts[index];
    switch (cmd) {
    case GenTL::BUFFER_PART_INFO_BASE:
        return InfoValue::Ptr(buffer.base + std::min<uint64_t>(part.offset, buffer.size));
    case GenTL::BUFFER_PART_INFO_DATA_SIZE:
        return InfoValue::SizeT(part.size);
    case GenTL::BUFFER_PART_INFO_DATA_TYPE:
        return InfoValue::SizeT(static_cast<size_t>(part.dataType));
    case GenTL::BUFFER_PART_INFO_DATA_FORMAT:
        return InfoValue::UInt64(part.format);
    case GenTL::BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE:
        return InfoValue::UInt64(kPfncNamespace);
    case GenTL::BUFFER_PART_INFO_WIDTH:
        return InfoValue::SizeT(part.width);
    case GenTL::BUFFER_PART_INFO_HEIGHT:
    case GenTL::BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT:
        return InfoValue::SizeT(part.height);
    case GenTL::BUFFER_PART_INFO_XOFFSET:
        return InfoValue::SizeT(part.offsetX);
    case GenTL::BUFFER_PART_INFO_YOFFSET:
        return InfoValue::SizeT(part.offsetY);
    case GenTL::BUFFER_PART_INFO_XPADDING:
        return InfoValue::SizeT(part.paddingX);
    case GenTL::BUFFER_PART_INFO_SOURCE_ID:
        return InfoValue::UInt64(part.sourceId);
    case GenTL::BUFFER_PART_INFO_REGION_ID:
        return InfoValue::UInt64(part.regionId);
    case GenTL::BUFFER_PART_INFO_DATA_PURPOSE_ID:
        return InfoValue::UInt64(part.purposeId);
    default:
        throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER,
                         "Unknown buffer part info command " + std::to_string(cmd));
    }
}

} // namespace Producer
} // namespace Orvan
