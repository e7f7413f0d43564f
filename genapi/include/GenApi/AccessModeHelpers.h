// Free functions that answer the usual questions about a node's access mode. Each accepts a null
// pointer and then answers false.
#ifndef GENAPI_ACCESSMODEHELPERS_H
#define GENAPI_ACCESSMODEHELPERS_H

#include <GenApi/Pointer.h>

namespace GenApi {

inline bool IsReadable(EAccessMode mode) {
    return mode == RO || mode == RW;
}
inline bool IsWritable(EAccessMode mode) {
    return mode == WO || mode == RW;
}
inline bool IsImplemented(EAccessMode mode) {
    return mode != NI;
}
inline bool IsAvailable(EAccessMode mode) {
    return !(mode == NA || mode == NI);
}

inline bool IsReadable(const IBase* p) {
    return p && IsReadable(p->GetAccessMode());
}
inline bool IsWritable(const IBase* p) {
    return p && IsWritable(p->GetAccessMode());
}
inline bool IsImplemented(const IBase* p) {
    return p && IsImplemented(p->GetAccessMode());
}
inline bool IsAvailable(const IBase* p) {
    return p && IsAvailable(p->GetAccessMode());
}

template <class T, class B>
bool IsReadable(const CPointer<T, B>& p) {
    return p.IsValid() && IsReadable(p->GetAccessMode());
}
template <class T, class B>
bool IsWritable(const CPointer<T, B>& p) {
    return p.IsValid() && IsWritable(p->GetAccessMode());
}
template <class T, class B>
bool IsImplemented(const CPointer<T, B>& p) {
    return p.IsValid() && IsImplemented(p->GetAccessMode());
}
template <class T, class B>
bool IsAvailable(const CPointer<T, B>& p) {
    return p.IsValid() && IsAvailable(p->GetAccessMode());
}

// The stronger of two access restrictions, as used when a mode is imposed on a node.
inline EAccessMode Combine(EAccessMode a, EAccessMode b) {
    if (a == NI || b == NI)
        return NI;
    if (a == NA || b == NA)
        return NA;
    if ((a == RO && b == WO) || (a == WO && b == RO))
        return NA;
    if (a == WO || b == WO)
        return WO;
    if (a == RO || b == RO)
        return RO;
    return RW;
}

// True if a node with this mode may keep its access mode in a cache.
inline bool IsAccessModeCacheable(EAccessMode mode) {
    return mode != _UndefinedAccesMode;
}

} // namespace GenApi

#endif
