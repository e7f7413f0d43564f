// Network byte order: every GVCP and GVSP field is big-endian.
#ifndef ORVAN_GENTL_GIGE_BIGENDIAN_H
#define ORVAN_GENTL_GIGE_BIGENDIAN_H

#include <cstddef>
#include <cstdint>

namespace Orvan {
namespace Gev {

inline uint16_t Get16(const uint8_t* p) {
    return uint16_t(p[0] << 8 | p[1]);
}

inline uint32_t Get32(const uint8_t* p) {
    return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3];
}

inline uint64_t Get48(const uint8_t* p) {
    return uint64_t(Get16(p)) << 32 | Get32(p + 2);
}

inline uint64_t Get64(const uint8_t* p) {
    return uint64_t(Get32(p)) << 32 | Get32(p + 4);
}

inline void Put16(uint8_t* p, uint16_t v) {
    p[0] = uint8_t(v >> 8);
    p[1] = uint8_t(v);
}

inline void Put32(uint8_t* p, uint32_t v) {
    for (int i = 0; i < 4; ++i)
        p[i] = uint8_t(v >> (24 - 8 * i));
}

inline void Put48(uint8_t* p, uint64_t v) {
    Put16(p, uint16_t(v >> 32));
    Put32(p + 2, uint32_t(v));
}

inline void Put64(uint8_t* p, uint64_t v) {
    Put32(p, uint32_t(v >> 32));
    Put32(p + 4, uint32_t(v));
}

} // namespace Gev
} // namespace Orvan

#endif
