// One data stream of a device: its module, the port its node map reads through, and that map.
#ifndef ORVAN_DEVICE_STREAMINFO_H
#define ORVAN_DEVICE_STREAMINFO_H

#include "core/Port.h"
#include "core/TLDataStream.h"

#include <GenApi/INodeMap.h>

namespace Orvan {

class StreamInfo {
public:
    // Takes ownership of the opened stream and builds its port and node map.
    explicit StreamInfo(TLDataStream* stream);
    StreamInfo(const StreamInfo&) = delete;
    StreamInfo& operator=(const StreamInfo&) = delete;
    // Releases the node map, then closes the stream module.
    virtual ~StreamInfo();

    TLDataStream* GetTLDataStream() const { return m_stream; }
    // Null when the stream serves no readable description.
    GenApi::INodeMap* GetNodeMap() const { return m_nodeMap; }

private:
    TLDataStream* m_stream;
    Port m_port;
    GenApi::INodeMap* m_nodeMap;
};

} // namespace Orvan

#endif
