// The per-property cache cells of the buffer family: each property lives in its own allocation,
// absent until the property is first read from the producer or set by the factory.
#ifndef ORVAN_BUFFER_PROPERTYCELL_H
#define ORVAN_BUFFER_PROPERTYCELL_H

#include "core/GetInfo.h"

#include <memory>

namespace Orvan {

template <class T>
std::unique_ptr<T> MakeCell(T value) {
    return std::make_unique<T>(value);
}

// The cell's value, read through the stream's buffer info on first use. A failed read leaves
// the cell empty, so a later call asks again.
template <class T>
T CachedInfo(std::unique_ptr<T>& cell, TLDataStream* pStream, void* hBuffer, int32_t command) {
    if (!cell)
        cell = MakeCell(GetInfo<T>(pStream, hBuffer, command));
    return *cell;
}

} // namespace Orvan

#endif
