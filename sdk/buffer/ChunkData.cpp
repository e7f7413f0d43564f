#include "ChunkData.h"

#include "core/ErrorTranslation.h"

#include <Orvan/Crc32.h>

#include <GenApi/ChunkAdapterGEV.h>
#include <GenApi/IInteger.h>

#include <string>

namespace Orvan {

ChunkData::ChunkData() : m_pChunkNodeMap(nullptr), m_pChunkAdapter(nullptr) {}

ChunkData::ChunkData(TLDataStream* pStream, void* hBuffer, GenApi::INodeMap* pChunkNodeMap)
    : Buffer(pStream, hBuffer), m_pChunkNodeMap(pChunkNodeMap), m_pChunkAdapter(nullptr) {}

ChunkData::ChunkData(ChunkData* pSource)
    : Buffer(pSource), m_pChunkNodeMap(pSource->m_pChunkNodeMap), m_pChunkAdapter(nullptr) {}

ChunkData::~ChunkData() {
    delete m_pChunkAdapter;
}

bool ChunkData::VerifyCRC() {
    ThrowLibraryError<GenICam::LogicalErrorException>(
        "Validating CRC for ChunkData is not supported", ORVAN_SITE("ChunkData", "VerifyCRC"));
}

bool ChunkData::AttachChunks() {
    m_pChunkAdapter = new GenApi::CChunkAdapterGEV(m_pChunkNodeMap, -1);
    try {
        const int64_t sizeFilled = static_cast<int64_t>(GetSizeFilled());
        m_pChunkAdapter->AttachBuffer(const_cast<uint8_t*>(GetData()), sizeFilled, nullptr);
    } catch (const GenICam::RuntimeException& e) {
        delete m_pChunkAdapter;
        m_pChunkAdapter = nullptr;
        // Only a rejected layout means "no chunks"; anything else is a real failure.
        if (std::string(e.what()).find("Invalid layout of buffer attached to chunk parser!") ==
            std::string::npos)
            throw;
        return false;
    } catch (...) {
        delete m_pChunkAdapter;
        m_pChunkAdapter = nullptr;
        throw;
    }
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
    if (m_pChunkAdapter == nullptr && !AttachChunks())
        return nullptr;
    return m_pChunkNodeMap->GetNode(name);
}

} // namespace Orvan
