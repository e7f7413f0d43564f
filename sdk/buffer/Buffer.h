// A buffer of a data stream, or a detached copy of one: the one class that holds the stream, the
// producer's buffer handle and the cache of every buffer property.
#ifndef ORVAN_BUFFER_BUFFER_H
#define ORVAN_BUFFER_BUFFER_H

#include "PayloadType.h"

#include <Orvan/IBuffer.h>

#include <memory>

namespace Orvan {

class TLDataStream;

class Buffer : public IBuffer {
public:
    Buffer();
    Buffer(TLDataStream* pStream, void* hBuffer);
    // A detached copy: every property read through the source's accessors, and a private copy
    // of its GetSizeOfBuffer() bytes.
    explicit Buffer(Buffer* pSource);
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    ~Buffer() override;
    virtual void* GetBufferHandle();

    const uint8_t* GetData() override;
    size_t GetSizeFilled() override;
    size_t GetPayloadSize() override;
    size_t GetSizeOfBuffer() override;
    uint64_t GetFrameId() override;
    size_t GetPayloadType() override;
    bool HasImageData() override;
    bool HasChunkData() override;
    bool IsCompressedImage() override;
    IImage* AsImage() override;
    IChunkData* AsChunkData() override;
    ICompressedImage* AsCompressedImage() override;
    bool IsIncomplete() override;
    bool DataLargerThanBuffer() override;
    bool VerifyCRC() override;

    // What the image factory needs beyond the interface.
    TLDataStream* GetStream() const { return m_pStream; }
    // The buffer keeps the block and frees it with itself, so that an image that fails half
    // built, or is destroyed, takes its pixels with it.
    void AdoptDataBlock(std::unique_ptr<uint8_t[]> block);
    // Memory the caller keeps and frees; the buffer only points at it.
    void SetCallerDataBlock(uint8_t* pData);
    bool IsNotOwner() const { return m_notOwner; }

protected:
    // Sets every buffer cell at once, as an image made by the factory sees itself.
    void FillBufferProps(size_t length, size_t payloadType = PayloadType::kImage);

private:
    // The cached value, read from the producer on first use.
    template <class T>
    T Cached(std::unique_ptr<T>& cell, int32_t command);

    TLDataStream* m_pStream;
    void* m_hBuffer;
    uint8_t* m_pData;
    std::unique_ptr<uint8_t[]> m_ownedData;
    std::unique_ptr<size_t> m_sizeFilled;
    std::unique_ptr<size_t> m_payloadSize;
    std::unique_ptr<size_t> m_sizeOfBuffer;
    std::unique_ptr<bool> m_hasChunkData;
    std::unique_ptr<size_t> m_payloadType;
    std::unique_ptr<bool> m_isIncomplete;
    std::unique_ptr<uint64_t> m_frameId;
    std::unique_ptr<bool> m_hasImageData;
    std::unique_ptr<bool> m_dataLargerThanBuffer;
    bool m_notOwner;
};

// Each class of the family that reaches IBuffer along its own interface path must answer that
// path's operations itself; it forwards them to the implementation it inherits from `Base`.
#define ORVAN_FORWARD_IBUFFER(Base)                                                                \
    const uint8_t* GetData() override {                                                            \
        return Base::GetData();                                                                    \
    }                                                                                              \
    size_t GetSizeFilled() override {                                                              \
        return Base::GetSizeFilled();                                                              \
    }                                                                                              \
    size_t GetPayloadSize() override {                                                             \
        return Base::GetPayloadSize();                                                             \
    }                                                                                              \
    size_t GetSizeOfBuffer() override {                                                            \
        return Base::GetSizeOfBuffer();                                                            \
    }                                                                                              \
    uint64_t GetFrameId() override {                                                               \
        return Base::GetFrameId();                                                                 \
    }                                                                                              \
    size_t GetPayloadType() override {                                                             \
        return Base::GetPayloadType();                                                             \
    }                                                                                              \
    bool HasImageData() override {                                                                 \
        return Base::HasImageData();                                                               \
    }                                                                                              \
    bool HasChunkData() override {                                                                 \
        return Base::HasChunkData();                                                               \
    }                                                                                              \
    bool IsCompressedImage() override {                                                            \
        return Base::IsCompressedImage();                                                          \
    }                                                                                              \
    IImage* AsImage() override {                                                                   \
        return Base::AsImage();                                                                    \
    }                                                                                              \
    IChunkData* AsChunkData() override {                                                           \
        return Base::AsChunkData();                                                                \
    }                                                                                              \
    ICompressedImage* AsCompressedImage() override {                                               \
        return Base::AsCompressedImage();                                                          \
    }                                                                                              \
    bool IsIncomplete() override {                                                                 \
        return Base::IsIncomplete();                                                               \
    }                                                                                              \
    bool DataLargerThanBuffer() override {                                                         \
        return Base::DataLargerThanBuffer();                                                       \
    }

} // namespace Orvan

#endif
