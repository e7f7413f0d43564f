#include "Buffer.h"

#include "PayloadType.h"
#include "PropertyCell.h"
#include "core/ErrorTranslation.h"

#include <Orvan/IChunkData.h>
#include <Orvan/ICompressedImage.h>
#include <Orvan/IImage.h>

#include <cstring>

namespace Orvan {

Buffer::Buffer() : Buffer(nullptr, nullptr) {}

Buffer::Buffer(TLDataStream* pStream, void* hBuffer)
    : m_pStream(pStream), m_hBuffer(hBuffer), m_pData(nullptr), m_notOwner(false) {}

Buffer::Buffer(Buffer* pSource)
    : m_pStream(nullptr), m_hBuffer(nullptr), m_pData(nullptr),
      m_sizeFilled(MakeCell(pSource->GetSizeFilled())),
      m_payloadSize(MakeCell(pSource->GetPayloadSize())),
      m_sizeOfBuffer(MakeCell(pSource->GetSizeOfBuffer())),
      m_hasChunkData(MakeCell(pSource->HasChunkData())),
      m_payloadType(MakeCell(pSource->GetPayloadType())),
      m_isIncomplete(MakeCell(pSource->IsIncomplete())), m_frameId(MakeCell(pSource->GetFrameId())),
      m_hasImageData(MakeCell(pSource->HasImageData())),
      m_dataLargerThanBuffer(MakeCell(pSource->DataLargerThanBuffer())), m_notOwner(false) {
    const size_t size = *m_sizeOfBuffer;
    const uint8_t* source = pSource->GetData();
    AdoptDataBlock(std::make_unique<uint8_t[]>(size));
    if (size != 0 && source != nullptr)
        std::memcpy(m_pData, source, size);
}

Buffer::~Buffer() = default;

void* Buffer::GetBufferHandle() {
    return m_hBuffer;
}

template <class T>
T Buffer::Cached(std::unique_ptr<T>& cell, int32_t command) {
    return CachedInfo(cell, m_pStream, m_hBuffer, command);
}

const uint8_t* Buffer::GetData() {
    if (m_pData == nullptr)
        m_pData = GetInfo<uint8_t*>(m_pStream, m_hBuffer, GenTL::BUFFER_INFO_BASE);
    return m_pData;
}

size_t Buffer::GetSizeFilled() {
    return Cached(m_sizeFilled, GenTL::BUFFER_INFO_SIZE_FILLED);
}

size_t Buffer::GetPayloadSize() {
    return Cached(m_payloadSize, GenTL::BUFFER_INFO_DATA_SIZE);
}

size_t Buffer::GetSizeOfBuffer() {
    return Cached(m_sizeOfBuffer, GenTL::BUFFER_INFO_SIZE);
}

uint64_t Buffer::GetFrameId() {
    return Cached(m_frameId, GenTL::BUFFER_INFO_FRAMEID);
}

size_t Buffer::GetPayloadType() {
    return Cached(m_payloadType, GenTL::BUFFER_INFO_PAYLOADTYPE);
}

bool Buffer::HasImageData() {
    return Cached(m_hasImageData, GenTL::BUFFER_INFO_IMAGEPRESENT);
}

bool Buffer::HasChunkData() {
    return Cached(m_hasChunkData, GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA);
}

bool Buffer::IsCompressedImage() {
    const size_t payloadType = GetPayloadType();
    return payloadType == PayloadType::kCompressedImage ||
           payloadType == PayloadType::kCompressedImageWithChunks;
}

IImage* Buffer::AsImage() {
    return dynamic_cast<IImage*>(this);
}

IChunkData* Buffer::AsChunkData() {
    return dynamic_cast<IChunkData*>(this);
}

ICompressedImage* Buffer::AsCompressedImage() {
    return dynamic_cast<ICompressedImage*>(this);
}

bool Buffer::IsIncomplete() {
    return Cached(m_isIncomplete, GenTL::BUFFER_INFO_IS_INCOMPLETE);
}

bool Buffer::DataLargerThanBuffer() {
    return Cached(m_dataLargerThanBuffer, GenTL::BUFFER_INFO_DATA_LARGER_THAN_BUFFER);
}

bool Buffer::VerifyCRC() {
    ThrowLibraryError<GenICam::LogicalErrorException>("CRC not available.",
                                                      ORVAN_SITE("Buffer", "VerifyCRC"));
}

void Buffer::AdoptDataBlock(std::unique_ptr<uint8_t[]> block) {
    m_ownedData = std::move(block);
    m_pData = m_ownedData.get();
    m_notOwner = false;
}

void Buffer::SetCallerDataBlock(uint8_t* pData) {
    m_ownedData.reset();
    m_pData = pData;
    m_notOwner = true;
}

void Buffer::FillBufferProps(size_t length, size_t payloadType) {
    m_sizeFilled = MakeCell(length);
    m_payloadSize = MakeCell(length);
    m_sizeOfBuffer = MakeCell(length);
    m_frameId = MakeCell(uint64_t{0});
    m_payloadType = MakeCell(payloadType);
    m_hasImageData = MakeCell(true);
    m_hasChunkData = MakeCell(false);
    m_isIncomplete = MakeCell(false);
    m_dataLargerThanBuffer = MakeCell(false);
}

} // namespace Orvan
