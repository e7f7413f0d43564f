#include <Orvan/GenApiCustom.h>

#include "core/ErrorTranslation.h"

#include <GenApi/Pointer.h>

#include <boost/any.hpp>

#include <cmath>
#include <limits>
#include <string>
#include <type_traits>

namespace Orvan {
namespace {

using GenApi::EInterfaceType;
using GenICam::gcstring;

#define GENAPI_CUSTOM_SITE(function) ORVAN_SITE("GenApiCustom", function)

enum class Need { Read, Write };

std::string NodeText(const gcstring& name, const char* what) {
    return std::string("Node ") + name.c_str() + what;
}

// The checks every helper makes before touching a value, in their fixed order.
GenApi::INode* CheckedNode(GenApi::INodeMap* nodeMap, const gcstring& name, Need need,
                           const char* function) {
    if (!nodeMap)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Node map is null",
                                                             GENAPI_CUSTOM_SITE(function));
    if (name.empty())
        ThrowLibraryError<GenICam::InvalidArgumentException>("Node name invalid",
                                                             GENAPI_CUSTOM_SITE(function));
    GenApi::INode* node = nodeMap->GetNode(name);
    GenApi::EAccessMode mode = node ? node->GetAccessMode() : GenApi::NI;
    if (mode == GenApi::NI)
        ThrowLibraryError<GenICam::RuntimeException>(NodeText(name, " not implemented"),
                                                     GENAPI_CUSTOM_SITE(function));
    if (mode < GenApi::WO)
        ThrowLibraryError<GenICam::RuntimeException>(NodeText(name, " not available"),
                                                     GENAPI_CUSTOM_SITE(function));
    if (need == Need::Read && mode != GenApi::RO && mode != GenApi::RW)
        ThrowLibraryError<GenICam::RuntimeException>(NodeText(name, " not readable"),
                                                     GENAPI_CUSTOM_SITE(function));
    if (need == Need::Write && mode != GenApi::WO && mode != GenApi::RW)
        ThrowLibraryError<GenICam::RuntimeException>(NodeText(name, " not writable"),
                                                     GENAPI_CUSTOM_SITE(function));
    return node;
}

[[noreturn]] void ThrowUnsupported(const gcstring& name, const char* function,
                                   const char* what = " unsupported node type") {
    ThrowLibraryError<GenICam::LogicalErrorException>(NodeText(name, what),
                                                      GENAPI_CUSTOM_SITE(function));
}

// The value-carrying node kinds: their names in messages and the value type they hold.
struct ValueKind {
    EInterfaceType type;
    const char* nodeText;
    const char* valueText;
};

constexpr ValueKind kValueKinds[] = {
    {GenApi::intfIInteger, "GenApi::IInteger", "int64_t"},
    {GenApi::intfIBoolean, "GenApi::IBoolean", "bool"},
    {GenApi::intfIFloat, "GenApi::IFloat", "double"},
    {GenApi::intfIString, "GenApi::IString", "GenICam::gcstring"},
    {GenApi::intfIEnumeration, "GenApi::IEnumeration", "GenICam::gcstring"},
};

const ValueKind* ValueKindOf(EInterfaceType type) {
    for (const ValueKind& kind : kValueKinds)
        if (kind.type == type)
            return &kind;
    return nullptr;
}

template <class T>
bool HoldsType(EInterfaceType type) {
    if constexpr (std::is_same<T, bool>::value)
        return type == GenApi::intfIBoolean;
    else if constexpr (std::is_same<T, double>::value)
        return type == GenApi::intfIFloat;
    else if constexpr (std::is_same<T, int64_t>::value)
        return type == GenApi::intfIInteger;
    else
        return type == GenApi::intfIString || type == GenApi::intfIEnumeration;
}

// Finds the node's value kind and checks that it holds T; verb is "return" or "set".
const ValueKind& CheckedValueKind(GenApi::INode* node, const gcstring& name, bool matches,
                                  const char* verb, const char* function) {
    const ValueKind* kind = ValueKindOf(node->GetPrincipalInterfaceType());
    if (!kind)
        ThrowUnsupported(name, function);
    if (!matches)
        ThrowLibraryError<GenICam::InvalidArgumentException>(NodeText(name, " of type ") +
                                                                 kind->nodeText + " must " + verb +
                                                                 " type " + kind->valueText,
                                                             GENAPI_CUSTOM_SITE(function));
    return *kind;
}

// The node's value in its own type. Booleans, strings and enumerations come from the string
// form read beforehand.
boost::any ReadValue(GenApi::INode* node, EInterfaceType type, const gcstring& text) {
    switch (type) {
    case GenApi::intfIBoolean:
        return text == "1";
    case GenApi::intfIFloat:
        return GenApi::CFloatPtr(node)->GetValue(false, false);
    case GenApi::intfIInteger:
        return GenApi::CIntegerPtr(node)->GetValue(false, false);
    default:
        return text;
    }
}

template <class T>
void WriteValue(GenApi::INode* node, EInterfaceType type, const T& value) {
    if constexpr (std::is_same<T, bool>::value) {
        GenApi::CBooleanPtr(node)->SetValue(value, true);
    } else if constexpr (std::is_same<T, double>::value) {
        GenApi::CFloatPtr(node)->SetValue(value, true);
    } else if constexpr (std::is_same<T, int64_t>::value) {
        GenApi::CIntegerPtr(node)->SetValue(value, true);
    } else if (type == GenApi::intfIString) {
        GenApi::CStringPtr(node)->SetValue(value, true);
    } else {
        _throwLogicExceptionIfNotValidEnumEntry(GenApi::CEnumerationPtr(node), value);
        GenApi::CValuePtr(node)->FromString(value, true);
    }
}

// A float limit asked for as an integer saturates instead of overflowing the conversion.
template <class T>
T Converted(double value) {
    if constexpr (std::is_same<T, int64_t>::value) {
        if (std::isnan(value))
            return 0;
        if (value >= 9223372036854775807.0)
            return std::numeric_limits<int64_t>::max();
        if (value <= -9223372036854775808.0)
            return std::numeric_limits<int64_t>::min();
    }
    return static_cast<T>(value);
}

enum class Limit { Min, Max };

template <class T>
T GetLimit(GenApi::INodeMap* nodeMap, const gcstring& name, Limit limit, const char* function) {
    GenApi::INode* node = CheckedNode(nodeMap, name, Need::Read, function);
    switch (node->GetPrincipalInterfaceType()) {
    case GenApi::intfIFloat: {
        GenApi::CFloatPtr value(node);
        return Converted<T>(limit == Limit::Min ? value->GetMin() : value->GetMax());
    }
    case GenApi::intfIInteger: {
        GenApi::CIntegerPtr value(node);
        return static_cast<T>(limit == Limit::Min ? value->GetMin() : value->GetMax());
    }
    default:
        ThrowUnsupported(name, function);
    }
}

} // namespace

template <class T>
T GetNodeValue(GenApi::INodeMap* nodeMap, const gcstring& name) {
    GenApi::INode* node = CheckedNode(nodeMap, name, Need::Read, "GetNodeValue");
    gcstring text = GenApi::CValuePtr(node)->ToString(false, false);
    EInterfaceType type = node->GetPrincipalInterfaceType();
    // An enumeration asked for as an integer passes the type check on purpose: its symbolic
    // name then fails the any_cast below with boost::bad_any_cast.
    bool enumAsInteger = std::is_same<T, int64_t>::value && type == GenApi::intfIEnumeration;
    CheckedValueKind(node, name, HoldsType<T>(type) || enumAsInteger, "return", "GetNodeValue");
    return boost::any_cast<T>(ReadValue(node, type, text));
}

template <class T>
void SetNodeValue(GenApi::INodeMap* nodeMap, const gcstring& name, const T& value) {
    GenApi::INode* node = CheckedNode(nodeMap, name, Need::Write, "SetNodeValue");
    EInterfaceType type = node->GetPrincipalInterfaceType();
    CheckedValueKind(node, name, HoldsType<T>(type), "set", "SetNodeValue");
    WriteValue(node, type, value);
}

void GetNodeValue(GenApi::INodeMap* nodeMap, const gcstring& name, uint8_t* buffer,
                  int64_t& length) {
    GenApi::INode* node = CheckedNode(nodeMap, name, Need::Read, "GetNodeValue");
    if (node->GetPrincipalInterfaceType() != GenApi::intfIRegister)
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Unsupported node type: this overload is for GenApi::intfIRegister",
            GENAPI_CUSTOM_SITE("GetNodeValue"));
    GenApi::CRegisterPtr reg(node);
    int64_t registerLength = reg->GetLength();
    if (!buffer) {
        length = registerLength;
        return;
    }
    if (length == 0)
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Buffer length cannot be zero. " + std::string(name.c_str()) +
                " length = " + std::to_string(registerLength),
            GENAPI_CUSTOM_SITE("GetNodeValue"));
    if (length > registerLength)
        length = registerLength;
    reg->Get(buffer, length, false, false);
}

void SetNodeValue(GenApi::INodeMap* nodeMap, const gcstring& name, const uint8_t* buffer,
                  int64_t& length) {
    GenApi::INode* node = CheckedNode(nodeMap, name, Need::Write, "SetNodeValue");
    if (node->GetPrincipalInterfaceType() != GenApi::intfIRegister)
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Unsupported node type this overload is for GenApi::intfIRegister",
            GENAPI_CUSTOM_SITE("SetNodeValue"));
    GenApi::CRegisterPtr reg(node);
    int64_t registerLength = reg->GetLength();
    if (!buffer) {
        length = registerLength;
        return;
    }
    if (length == 0)
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Buffer length cannot be zero. " + std::string(name.c_str()) +
                " length = " + std::to_string(registerLength),
            GENAPI_CUSTOM_SITE("SetNodeValue"));
    if (length > registerLength)
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Buffer length is greater than the length of the destination node, " +
                std::string(name.c_str()) + "; " + std::to_string(length) + " > " +
                std::to_string(registerLength),
            GENAPI_CUSTOM_SITE("SetNodeValue"));
    reg->Set(buffer, length, true);
}

void ExecuteNode(GenApi::INodeMap* nodeMap, const gcstring& name) {
    GenApi::INode* node = CheckedNode(nodeMap, name, Need::Write, "ExecuteNode");
    if (node->GetPrincipalInterfaceType() != GenApi::intfICommand)
        ThrowUnsupported(name, "ExecuteNode");
    GenApi::CCommandPtr(node)->Execute(true);
}

template <class T>
T GetNodeMin(GenApi::INodeMap* nodeMap, const gcstring& name) {
    return GetLimit<T>(nodeMap, name, Limit::Min, "GetNodeMin");
}

template <class T>
T GetNodeMax(GenApi::INodeMap* nodeMap, const gcstring& name) {
    return GetLimit<T>(nodeMap, name, Limit::Max, "GetNodeMax");
}

template <class T>
T GetNodeInc(GenApi::INodeMap* nodeMap, const gcstring& name) {
    GenApi::INode* node = CheckedNode(nodeMap, name, Need::Read, "GetNodeInc");
    switch (node->GetPrincipalInterfaceType()) {
    case GenApi::intfIInteger:
        return static_cast<T>(GenApi::CIntegerPtr(node)->GetInc());
    case GenApi::intfIFloat: {
        GenApi::CFloatPtr value(node);
        if (!value->HasInc())
            ThrowUnsupported(name, "GetNodeInc", " unsupported increment");
        return Converted<T>(value->GetInc());
    }
    default:
        ThrowUnsupported(name, "GetNodeInc");
    }
}

void _throwLogicExceptionIfNotValidEnumEntry(GenApi::IEnumeration* enumeration, gcstring value) {
    GenApi::CEnumerationPtr checked(enumeration);
    GenApi::NodeList_t entries;
    checked->GetEntries(entries);
    std::string valid;
    for (GenApi::INode* node : entries) {
        GenApi::CEnumEntryPtr entry(node);
        if (!entry.IsValid())
            break;
        gcstring symbolic = entry->GetSymbolic();
        if (symbolic == value)
            return;
        valid += std::string(symbolic.c_str()) + "\n";
    }
    ThrowLibraryError<GenICam::LogicalErrorException>(
        "'" + std::string(value.c_str()) + "' is invalid EnumEntry. " +
            GenApi::CNodePtr(checked->GetNode())->GetName().c_str() + " valid EnumEntries are:\n" +
            valid,
        GENAPI_CUSTOM_SITE("_throwLogicExceptionIfNotValidEnumEntry"));
}

template bool GetNodeValue<bool>(GenApi::INodeMap*, const gcstring&);
template double GetNodeValue<double>(GenApi::INodeMap*, const gcstring&);
template int64_t GetNodeValue<int64_t>(GenApi::INodeMap*, const gcstring&);
template gcstring GetNodeValue<gcstring>(GenApi::INodeMap*, const gcstring&);
template void SetNodeValue<bool>(GenApi::INodeMap*, const gcstring&, const bool&);
template void SetNodeValue<double>(GenApi::INodeMap*, const gcstring&, const double&);
template void SetNodeValue<int64_t>(GenApi::INodeMap*, const gcstring&, const int64_t&);
template void SetNodeValue<gcstring>(GenApi::INodeMap*, const gcstring&, const gcstring&);
template double GetNodeMin<double>(GenApi::INodeMap*, const gcstring&);
template int64_t GetNodeMin<int64_t>(GenApi::INodeMap*, const gcstring&);
template double GetNodeMax<double>(GenApi::INodeMap*, const gcstring&);
template int64_t GetNodeMax<int64_t>(GenApi::INodeMap*, const gcstring&);
template double GetNodeInc<double>(GenApi::INodeMap*, const gcstring&);
template int64_t GetNodeInc<int64_t>(GenApi::INodeMap*, const gcstring&);

namespace {

template <class Enum>
struct EnumName {
    Enum value;
    const char* name;
};

constexpr EnumName<EInterfaceType> kInterfaceTypeNames[] = {
    {GenApi::intfIValue, "intfIValue"},         {GenApi::intfIBase, "intfIBase"},
    {GenApi::intfIInteger, "intfIInteger"},     {GenApi::intfIBoolean, "intfIBoolean"},
    {GenApi::intfICommand, "intfICommand"},     {GenApi::intfIFloat, "intfIFloat"},
    {GenApi::intfIString, "intfIString"},       {GenApi::intfIRegister, "intfIRegister"},
    {GenApi::intfICategory, "intfICategory"},   {GenApi::intfIEnumeration, "intfIEnumeration"},
    {GenApi::intfIEnumEntry, "intfIEnumEntry"}, {GenApi::intfIPort, "intfIPort"},
};

constexpr EnumName<GenApi::EIncMode> kIncModeNames[] = {
    {GenApi::noIncrement, "noIncrement"},
    {GenApi::fixedIncrement, "fixedIncrement"},
    {GenApi::listIncrement, "listIncrement"},
};

template <class Enum, size_t N>
bool NameToValue(const EnumName<Enum> (&names)[N], const gcstring& text, Enum* value) {
    if (!value)
        return false;
    for (const EnumName<Enum>& entry : names)
        if (text == entry.name) {
            *value = entry.value;
            return true;
        }
    return false;
}

template <class Enum, size_t N>
const char* ValueToName(const EnumName<Enum> (&names)[N], Enum value, const char* unknown) {
    for (const EnumName<Enum>& entry : names)
        if (entry.value == value)
            return entry.name;
    return unknown;
}

} // namespace

bool EInterfaceTypeClass::FromString(const gcstring& text, EInterfaceType* value) {
    return NameToValue(kInterfaceTypeNames, text, value);
}

void EInterfaceTypeClass::ToString(gcstring& text, EInterfaceType value) {
    text = ValueToName(kInterfaceTypeNames, value, "intfIUnknown");
}

gcstring EInterfaceTypeClass::ToString(EInterfaceType value) {
    return ValueToName(kInterfaceTypeNames, value, "intfIUnknown");
}

bool EIncModeClass::FromString(const gcstring& text, GenApi::EIncMode* value) {
    return NameToValue(kIncModeNames, text, value);
}

void EIncModeClass::ToString(gcstring& text, GenApi::EIncMode value) {
    text = ValueToName(kIncModeNames, value, "unknownIncrement");
}

gcstring EIncModeClass::ToString(GenApi::EIncMode value) {
    return ValueToName(kIncModeNames, value, "unknownIncrement");
}

} // namespace Orvan
