// Reads and writes the value of a referenced node whatever its interface, as the links between
// nodes (pValue, pMin, pIsAvailable, formula variables, ...) require.
#ifndef ORVAN_GENAPI_VALUEACCESS_H
#define ORVAN_GENAPI_VALUEACCESS_H

#include <cstdint>
#include <type_traits>

namespace GenApi {
namespace detail {

class Node;

int64_t ReadInt(Node* node, bool verify, bool ignoreCache);
double ReadFloat(Node* node, bool verify, bool ignoreCache);
void WriteInt(Node* node, int64_t value, bool verify);
void WriteFloat(Node* node, double value, bool verify);

int64_t ReadIntMin(Node* node);
int64_t ReadIntMax(Node* node);
int64_t ReadIntInc(Node* node);
double ReadFloatMin(Node* node);
// Whether the node's values lie on a grid, and its spacing.
bool HasStep(Node* node);
double ReadStep(Node* node);
double ReadFloatMax(Node* node);

// Float to integer the way every node converts: rounded to the nearest integer, saturated.
int64_t FloatToInt(double value);

// The accessors above chosen by the value type a node kind computes in.
template <class T>
T ReadValue(Node* node, bool verify, bool ignoreCache) {
    if constexpr (std::is_integral_v<T>)
        return ReadInt(node, verify, ignoreCache);
    else
        return ReadFloat(node, verify, ignoreCache);
}

template <class T>
void WriteValue(Node* node, T value, bool verify) {
    if constexpr (std::is_integral_v<T>)
        WriteInt(node, value, verify);
    else
        WriteFloat(node, value, verify);
}

template <class T>
T ReadMin(Node* node) {
    if constexpr (std::is_integral_v<T>)
        return ReadIntMin(node);
    else
        return ReadFloatMin(node);
}

template <class T>
T ReadMax(Node* node) {
    if constexpr (std::is_integral_v<T>)
        return ReadIntMax(node);
    else
        return ReadFloatMax(node);
}

} // namespace detail
} // namespace GenApi

#endif
