// A buffer whose payload carries chunk data, read as nodes of the device's node map.
#ifndef ORVAN_ICHUNKDATA_H
#define ORVAN_ICHUNKDATA_H

#include <Orvan/IBuffer.h>

#include <Base/GCString.h>
#include <GenApi/INode.h>

namespace Orvan {

class IChunkData : public IBuffer {
public:
    // The chunk node of that name; null when the node does not exist or the chunk layout of
    // the buffer is not valid.
    virtual GenApi::INode* GetChunk(GenICam::gcstring name) = 0;
};

} // namespace Orvan

#endif
