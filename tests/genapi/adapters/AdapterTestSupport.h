// Node maps from the conformance corpus or from inline descriptions, and chunk buffers laid out
// as cameras send them, for the adapter and feature-bag tests.
#ifndef ORVAN_TESTS_GENAPI_ADAPTERTESTSUPPORT_H
#define ORVAN_TESTS_GENAPI_ADAPTERTESTSUPPORT_H

#include <GenApi/GenApi.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace AdapterTest {

struct MapDestroyer {
    void operator()(GenApi::INodeMap* map) const {
        dynamic_cast<GenApi::IDestroy*>(map)->Destroy();
    }
};
using MapPtr = std::unique_ptr<GenApi::INodeMap, MapDestroyer>;

inline std::string CorpusPath(const std::string& file) {
    return std::string(ORVAN_GENICAM_XML_DIR) + "/" + file;
}

inline MapPtr LoadCorpus(const std::string& file) {
    GenApi::CNodeMapFactory factory(GenApi::ContentType_Auto, CorpusPath(file).c_str());
    return MapPtr(factory.CreateNodeMap("Device"));
}

inline MapPtr LoadXml(const std::string& xml) {
    GenApi::CNodeMapFactory factory(GenApi::ContentType_Xml, xml.data(), xml.size());
    return MapPtr(factory.CreateNodeMap("Device"));
}

inline void PutLittleEndian(std::vector<uint8_t>& out, uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

inline void PutBigEndian(std::vector<uint8_t>& out, uint64_t value, int bytes) {
    for (int i = bytes - 1; i >= 0; --i)
        out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

// Appends chunks in the trailer layout: data, then chunk ID and data length.
class ChunkBuffer {
public:
    explicit ChunkBuffer(bool bigEndianTags) : m_bigEndian(bigEndianTags) {}

    ChunkBuffer& Add(uint32_t chunkId, const std::vector<uint8_t>& data) {
        m_bytes.insert(m_bytes.end(), data.begin(), data.end());
        Tag(chunkId, static_cast<uint32_t>(data.size()));
        return *this;
    }
    // A tag whose length need not match the data before it.
    ChunkBuffer& Tag(uint32_t chunkId, uint32_t length) {
        auto put = m_bigEndian ? PutBigEndian : PutLittleEndian;
        put(m_bytes, chunkId, 4);
        put(m_bytes, length, 4);
        return *this;
    }
    std::vector<uint8_t>& Bytes() { return m_bytes; }

private:
    bool m_bigEndian;
    std::vector<uint8_t> m_bytes;
};

inline std::vector<uint8_t> LittleEndianBytes(uint64_t value, int bytes) {
    std::vector<uint8_t> out;
    PutLittleEndian(out, value, bytes);
    return out;
}

inline int64_t IntValue(GenApi::INodeMap& map, const char* name) {
    GenApi::CIntegerPtr node = map.GetNode(name);
    return node->GetValue();
}

// Counts the callbacks of the nodes it is registered on, until it goes out of scope: adapters
// fire callbacks when they detach, later than a test body's counters live.
class CallbackCounter {
public:
    CallbackCounter() = default;
    CallbackCounter(const CallbackCounter&) = delete;
    CallbackCounter& operator=(const CallbackCounter&) = delete;
    ~CallbackCounter() {
        for (GenApi::CallbackHandleType handle : m_handles)
            GenApi::Deregister(handle);
    }

    void RegisterOn(GenApi::INodeMap& map, const char* name) {
        m_handles.push_back(
            GenApi::Register(map.GetNode(name), *this, &CallbackCounter::OnCallback));
    }
    void OnCallback(GenApi::INode*) { ++count; }

    int count = 0;

private:
    std::vector<GenApi::CallbackHandleType> m_handles;
};

inline bool Readable(GenApi::INodeMap& map, const char* name) {
    return GenApi::IsReadable(map.GetNode(name));
}

} // namespace AdapterTest

#endif
