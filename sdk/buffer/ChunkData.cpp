#include "ChunkData.h"

#include "core/ErrorTranslation.h"
#include "feature/NodeMapUtility.h"

#include <Orvan/Crc32.h>

#include <GenApi/ChunkAdapterGEV.h>
#include <GenApi/IInteger.h>

#include <memory>
#include <string>

namespace Orvan {

ChunkData::ChunkData() : m_pChunkNodeMap(nullptr) {}

ChunkData::ChunkData(TLDataStream* pStream, void* hBuffer, GenApi::INodeMap* pChunkNodeMap,
                     const GenApi::CNodeMapFactory& chunkFactory)
    : Buffer(pStream, hBuffer), m_chunkFactory(chunkFactory), m_pChunkNodeMap(pChunkNodeMap) {}

// The source's map lives only as long as the source's buffer, so the copy parses against a map
// of its own, made when first needed.
ChunkData::ChunkData(ChunkData* pSource)
    : Buffer(pSource), m_chunkFactory(pSource->m_chunkFactory), m_pChunkNodeMap(nullptr) {}

ChunkData::~ChunkData() = default;

void ChunkData::NodeMapDestroyer::operator()(GenApi::INodeMap* nodeMap) const noexcept {
    DestroyNodeMap(nodeMap);
}

bool ChunkData::VerifyCRC() {
    ThrowLibraryError<GenICam::LogicalErrorException>(
        "Validating CRC for ChunkData is not supported", ORVAN_SITE("ChunkData", "VerifyCRC"));
}

GenApi::INodeMap* ChunkData::ChunkNodeMap() {
    if (m_pChunkNodeMap == nullptr && m_chunkFactory.IsPreprocessed()) {
        // Made without touching the description's raw text, which the device may be releasing
        // on another thread.
        m_ownChunkNodeMap.reset(m_chunkFactory.CreateNodeMap("Device", false));
        m_pChunkNodeMap = m_ownChunkNodeMap.get();
    }
    return m_pChunkNodeMap;
}

bool ChunkData::AttachChunks(GenApi::INodeMap* nodeMap) {
    auto adapter = std::make_unique<GenApi::CChunkAdapterGEV>(nodeMap, -1);
    try {
        const int64_t sizeFilled = static_cast<int64_t>(GetSizeFilled());
        adapter->AttachBuffer(const_cast<uint8_t*>(GetData()), sizeFilled, nullptr);
    } catch (const GenICam::RuntimeException& e) {
        // Only a rejected layout means "no chunks"; anything else is a real failure.
        if (std::string(e.what()).find("Invalid layout of buffer attached to chunk parser!") ==
            std::string::npos)
            throw;
        return false;
    }
    m_pChunkAdapter = std::move(adapter);
    return true;
}

bool ChunkData::VerifyChunkCRC(size_t length, const char* file) {
    if (IsIncomplete())
        ThrowLibraryError<GenICam::LogicalErrorException>("Data received is incomplete",
                                                          ORVAN_SITE(file, "VerifyCRC"));
    GenApi::INode* node = GetChunk("ChunkCRC");
    const GenApi::EAccessMode mode = node ? node->GetAccessMode() : GenApi::NI;
    if (mode != GenApi::RO && mode != GenApi::RW)
        ThrowLibraryError<GenICam::LogicalErrorException>("Cannot read 'ChunkCRC'",
                                                          ORVAN_SITE(file, "VerifyCRC"));
    auto* crcNode = dynamic_cast<GenApi::IInteger*>(node);
    if (crcNode == nullptr)
        ThrowLibraryError<GenICam::LogicalErrorException>("NULL pointer dereferenced",
                                                          ORVAN_SITE(file, "VerifyCRC"));
    const int64_t expected = crcNode->GetValue(false, false);
    return expected == static_cast<int64_t>(CalculateCRC32(GetData(), length));
}

GenApi::INode* ChunkData::GetChunk(GenICam::gcstring name) {
    GenApi::INodeMap* nodeMap = ChunkNodeMap();
    if (nodeMap == nullptr || (m_pChunkAdapter == nullptr && !AttachChunks(nodeMap)))
        return nullptr;
    return nodeMap->GetNode(name);
}

} // namespace Orvan
