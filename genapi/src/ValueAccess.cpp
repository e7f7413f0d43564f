#include "ValueAccess.h"

#include "Node.h"

#include <Base/GCException.h>
#include <GenApi/IBoolean.h>
#include <GenApi/IEnumeration.h>
#include <GenApi/IFloat.h>
#include <GenApi/IInteger.h>

#include <cmath>
#include <limits>

namespace GenApi {
namespace detail {

namespace {

[[noreturn]] void NotNumeric(Node* node) {
    throw RUNTIME_EXCEPTION("Node '%s' has no numeric value", node->Name().c_str());
}

} // namespace

int64_t FloatToInt(double value) {
    if (std::isnan(value))
        return 0;
    if (value >= 9223372036854775807.0)
        return std::numeric_limits<int64_t>::max();
    if (value <= -9223372036854775808.0)
        return std::numeric_limits<int64_t>::min();
    return static_cast<int64_t>(std::llround(value));
}

int64_t ReadInt(Node* node, bool verify, bool ignoreCache) {
    if (auto* integer = dynamic_cast<IInteger*>(node))
        return integer->GetValue(verify, ignoreCache);
    if (auto* boolean = dynamic_cast<IBoolean*>(node))
        return boolean->GetValue(verify, ignoreCache) ? 1 : 0;
    if (auto* enumeration = dynamic_cast<IEnumeration*>(node)) {
        // Another node can only use a value that one of the entries stands for.
        int64_t value = enumeration->GetIntValue(verify, ignoreCache);
        if (!enumeration->GetEntry(value))
            throw LOGICAL_ERROR_EXCEPTION("Enumeration '%s' has no entry for its value %lld",
                                          node->Name().c_str(), static_cast<long long>(value));
        return value;
    }
    if (auto* real = dynamic_cast<IFloat*>(node))
        return FloatToInt(real->GetValue(verify, ignoreCache));
    NotNumeric(node);
}

double ReadFloat(Node* node, bool verify, bool ignoreCache) {
    if (auto* real = dynamic_cast<IFloat*>(node))
        return real->GetValue(verify, ignoreCache);
    return static_cast<double>(ReadInt(node, verify, ignoreCache));
}

void WriteInt(Node* node, int64_t value, bool verify) {
    if (auto* integer = dynamic_cast<IInteger*>(node))
        return integer->SetValue(value, verify);
    if (auto* boolean = dynamic_cast<IBoolean*>(node))
        return boolean->SetValue(value != 0, verify);
    if (auto* enumeration = dynamic_cast<IEnumeration*>(node))
        return enumeration->SetIntValue(value, verify);
    if (auto* real = dynamic_cast<IFloat*>(node))
        return real->SetValue(static_cast<double>(value), verify);
    NotNumeric(node);
}

void WriteFloat(Node* node, double value, bool verify) {
    if (auto* real = dynamic_cast<IFloat*>(node))
        return real->SetValue(value, verify);
    WriteInt(node, FloatToInt(value), verify);
}

int64_t ReadIntMin(Node* node) {
    if (auto* integer = dynamic_cast<IInteger*>(node))
        return integer->GetMin();
    if (auto* real = dynamic_cast<IFloat*>(node))
        return FloatToInt(real->GetMin());
    return std::numeric_limits<int64_t>::min();
}

int64_t ReadIntMax(Node* node) {
    if (auto* integer = dynamic_cast<IInteger*>(node))
        return integer->GetMax();
    if (auto* real = dynamic_cast<IFloat*>(node))
        return FloatToInt(real->GetMax());
    return std::numeric_limits<int64_t>::max();
}

int64_t ReadIntInc(Node* node) {
    if (auto* integer = dynamic_cast<IInteger*>(node))
        return integer->GetInc();
    return 1;
}

bool HasStep(Node* node) {
    if (auto* real = dynamic_cast<IFloat*>(node))
        return real->HasInc();
    return dynamic_cast<IInteger*>(node) != nullptr;
}

double ReadStep(Node* node) {
    if (auto* real = dynamic_cast<IFloat*>(node))
        return real->GetInc();
    return static_cast<double>(ReadIntInc(node));
}

double ReadFloatMin(Node* node) {
    if (auto* real = dynamic_cast<IFloat*>(node))
        return real->GetMin();
    if (auto* integer = dynamic_cast<IInteger*>(node))
        return static_cast<double>(integer->GetMin());
    return -std::numeric_limits<double>::max();
}

double ReadFloatMax(Node* node) {
    if (auto* real = dynamic_cast<IFloat*>(node))
        return real->GetMax();
    if (auto* integer = dynamic_cast<IInteger*>(node))
        return static_cast<double>(integer->GetMax());
    return std::numeric_limits<double>::max();
}

} // namespace detail
} // namespace GenApi
