// Reading multi-byte fields of transport messages byte by byte: the fields need not be aligned.
#ifndef ORVAN_GENAPI_BYTEORDER_H
#define ORVAN_GENAPI_BYTEORDER_H

#include <cstdint>

namespace GenApi {
namespace detail {

inline uint16_t ReadBigEndian16(const uint8_t* p) {
    return uint16_t(p[0] << 8 | p[1]);
}
inline uint32_t ReadBigEndian32(const uint8_t* p) {
    return uint32_t(ReadBigEndian16(p)) << 16 | ReadBigEndian16(p + 2);
}
inline uint16_t ReadLittleEndian16(const uint8_t* p) {
    return uint16_t(p[1] << 8 | p[0]);
}
inline uint32_t ReadLittleEndian32(const uint8_t* p) {
    return uint32_t(ReadLittleEndian16(p + 2)) << 16 | ReadLittleEndian16(p);
}

} // namespace detail
} // namespace GenApi

#endif
