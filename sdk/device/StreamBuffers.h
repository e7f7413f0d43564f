// Giving a stream's announced buffers back to the producer, after a stop or a failed start.
#ifndef ORVAN_DEVICE_STREAMBUFFERS_H
#define ORVAN_DEVICE_STREAMBUFFERS_H

#include "StreamInfo.h"

namespace Orvan {

// Revokes buffers until the stream's node map reports none announced; the producer frees
// each. Does nothing when the stream has no readable "StreamAnnouncedBufferCount". Failures
// name `function`.
void RevokeAnnouncedBuffers(StreamInfo* info, const char* function);

// Discards the stream's queues and revokes every announced buffer. Its own failure replaces
// the one that made the start give up.
void CleanupAnnouncedBuffersOnStartFailure(StreamInfo* info);

} // namespace Orvan

#endif
