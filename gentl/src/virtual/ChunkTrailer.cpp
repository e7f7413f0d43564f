#include "ChunkTrailer.h"

#include <cstring>

namespace Orvan {
namespace Producer {

namespace {

constexpr size_t kTagBytes = 8;

void PutBigEndian32(uint8_t* p, uint32_t value) {
    p[0] = uint8_t(value >> 24);
    p[1] = uint8_t(value >> 16);
    p[2] = uint8_t(value >> 8);
    p[3] = uint8_t(value);
}

} // namespace

ChunkTrailer::ChunkTrailer(uint8_t* buffer, size_t capacity)
    : m_buffer(buffer), m_capacity(buffer ? capacity : 0) {}

// Written as a subtraction so that a huge length cannot wrap around the comparison.
bool ChunkTrailer::Fits(uint32_t length) const {
    const size_t room = m_capacity - m_size;
    return room >= kTagBytes && room - kTagBytes >= length;
}

void ChunkTrailer::WriteTag(uint32_t chunkId, uint32_t length) {
    m_size += length;
    PutBigEndian32(m_buffer + m_size, chunkId);
    PutBigEndian32(m_buffer + m_size + 4, length);
    m_size += kTagBytes;
}

bool ChunkTrailer::Append(uint32_t chunkId, const void* data, uint32_t length) {
    if (!Fits(length) || (length > 0 && !data))
        return false;
    if (length > 0)
        std::memmove(m_buffer + m_size, data, length); // the data may sit in the buffer
    WriteTag(chunkId, length);
    return true;
}

bool ChunkTrailer::AppendInPlace(uint32_t chunkId, uint32_t length) {
    if (!Fits(length))
        return false;
    WriteTag(chunkId, length);
    return true;
}

} // namespace Producer
} // namespace Orvan
