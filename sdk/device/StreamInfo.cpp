#include "StreamInfo.h"

#include "feature/NodeMapUtility.h"

namespace Orvan {

StreamInfo::StreamInfo(TLDataStream* stream)
    : m_stream(stream), m_port(stream), m_nodeMap(InitNodeMap(stream, m_port)) {}

StreamInfo::~StreamInfo() {
    DestroyNodeMap(m_nodeMap);
    // Nothing can be done about a stream that refuses to close while its device goes away.
    m_stream->Close();
    delete m_stream;
}

} // namespace Orvan
