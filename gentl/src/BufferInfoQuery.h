// BUFFER_INFO_* and BUFFER_PART_INFO_* answers for one announced buffer.
#ifndef ORVAN_GENTL_BUFFERINFOQUERY_H
#define ORVAN_GENTL_BUFFERINFOQUERY_H

#include "InfoValue.h"
#include "StreamBuffer.h"

namespace Orvan {
namespace Producer {

InfoValue QueryBufferInfo(const StreamBuffer& buffer, GenTL::BUFFER_INFO_CMD cmd);
uint32_t BufferPartCount(const StreamBuffer& buffer);
InfoValue QueryBufferPartInfo(const StreamBuffer& buffer, uint32_t part,
                              GenTL::BUFFER_PART_INFO_CMD cmd);

} // namespace Producer
} // namespace Orvan

#endif
