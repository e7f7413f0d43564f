// Reads and writes the value of a referenced node whatever its interface, as the links between
// nodes (pValue, pMin, pIsAvailable, formula variables, ...) require.
#ifndef ORVAN_GENAPI_VALUEACCESS_H
#define ORVAN_GENAPI_VALUEACCESS_H

#include <cstdint>

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
double ReadFloatMax(Node* node);

// Float to integer the way every node converts: rounded to the nearest integer, saturated.
int64_t FloatToInt(double value);

} // namespace detail
} // namespace GenApi

#endif
