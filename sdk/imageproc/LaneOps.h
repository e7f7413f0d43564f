// The arithmetic of the per-pixel kernels is written once, as templates over a lane type V and
// an operations object: ScalarLanes here (V = int32_t, one pixel at a time) for the reference
// loops, VectorLanes (SimdPixels-inl.h) for the vectorised ones. Both round and shift the same
// way, so the two give the same bits whenever no intermediate value leaves the vector lane type.
#ifndef ORVAN_IMAGEPROC_LANEOPS_H
#define ORVAN_IMAGEPROC_LANEOPS_H

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <type_traits>

namespace Orvan {

// The signed working type of samples T: 16 bits hold every value the kernels form from 8-bit
// samples, 32 bits those from 16-bit samples.
template <class T>
using Wide = std::conditional_t<sizeof(T) == 1, int16_t, int32_t>;

struct ScalarLanes {
    using V = int32_t;
    using M = bool;

    template <class S>
    V Load(const S* p) const {
        return *p;
    }
    template <class S>
    void Store(S* p, V v) const {
        *p = static_cast<S>(v);
    }
    V Set(int32_t k) const { return k; }
    V Add(V a, V b) const { return a + b; }
    V Sub(V a, V b) const { return a - b; }
    V Mul(V a, int32_t k) const { return a * k; }
    // a * 2^k, which lanes compute by shifting.
    template <int k>
    V ShiftLeft(V a) const {
        return a * (1 << k);
    }
    // An arithmetic shift: negative values round towards minus infinity, as vector lanes do.
    template <int k>
    V ShiftRight(V a) const {
        return a >> k;
    }
    V Min(V a, V b) const { return std::min(a, b); }
    V Max(V a, V b) const { return std::max(a, b); }
    V Abs(V a) const { return std::abs(a); }
    M Le(V a, V b) const { return a <= b; }
    M Gt(V a, V b) const { return a > b; }
    M And(M a, M b) const { return a && b; }
    V IfThenElse(M m, V yes, V no) const { return m ? yes : no; }
    // 1 where m holds, else 0.
    V Count(M m) const { return m ? 1 : 0; }
    // A product in 15-bit fixed point, rounded: (a * k + 16384) >> 15.
    V MulRound15(V a, int32_t k) const { return (a * k + 16384) >> 15; }
    // A sum of two products in 14-bit fixed point, rounded.
    V DotRound14(V a, int32_t ka, V b, int32_t kb) const { return (a * ka + b * kb + 8192) >> 14; }
};

} // namespace Orvan

#endif
