// A limit or increment given either as a constant (Min, Max, Inc) or by a node (pMin, ...).
#ifndef ORVAN_GENAPI_NUMERICBOUND_H
#define ORVAN_GENAPI_NUMERICBOUND_H

#include "NodeDescription.h"

#include <GenApi/Types.h>

#include <cstdint>

namespace GenApi {
namespace detail {

class Node;

class NumericBound {
public:
    void Link(Node& owner, const NodeDescription& description, const char* constantName,
              const char* pointerName);
    bool IsSet() const { return m_node || m_hasConstant; }
    // A limit that comes from a node which cannot be read makes the owner unavailable too.
    EAccessMode Restrict(EAccessMode mode) const;
    int64_t GetInt() const;
    double GetFloat() const;

private:
    Node* m_node = nullptr;
    bool m_hasConstant = false;
    int64_t m_int = 0;
    double m_float = 0.0;
};

} // namespace detail
} // namespace GenApi

#endif
