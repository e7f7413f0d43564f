#include "FeatureInfo.h"

#include <GenApi/AccessModeHelpers.h>
#include <GenApi/IEnumEntry.h>
#include <GenApi/IEnumeration.h>
#include <GenApi/IFloat.h>
#include <GenApi/IInteger.h>
#include <GenApi/Pointer.h>

namespace py = pybind11;

namespace OrvanPy {
namespace {

const char* TypeName(GenApi::EInterfaceType type) {
    switch (type) {
    case GenApi::intfIInteger:
        return "int";
    case GenApi::intfIFloat:
        return "float";
    case GenApi::intfIBoolean:
        return "bool";
    case GenApi::intfIString:
        return "str";
    case GenApi::intfIEnumeration:
        return "enum";
    case GenApi::intfICommand:
        return "command";
    case GenApi::intfIRegister:
        return "register";
    case GenApi::intfICategory:
        return "category";
    default:
        return "other";
    }
}

const char* AccessName(GenApi::EAccessMode mode) {
    switch (mode) {
    case GenApi::RW:
        return "RW";
    case GenApi::RO:
        return "RO";
    case GenApi::WO:
        return "WO";
    case GenApi::NA:
        return "NA";
    default:
        return "NI";
    }
}

void DescribeInteger(GenApi::INode* node, FeatureInfo& info) {
    GenApi::CIntegerPtr integer(node);
    info.minimum = py::int_(integer->GetMin());
    info.maximum = py::int_(integer->GetMax());
    info.increment = py::int_(integer->GetInc());
    info.unit = integer->GetUnit().c_str();
}

void DescribeFloat(GenApi::INode* node, FeatureInfo& info) {
    GenApi::CFloatPtr value(node);
    info.minimum = py::float_(value->GetMin());
    info.maximum = py::float_(value->GetMax());
    if (value->HasInc())
        info.increment = py::float_(value->GetInc());
    info.unit = value->GetUnit().c_str();
}

void DescribeEnumeration(GenApi::INode* node, FeatureInfo& info) {
    GenApi::NodeList_t entries;
    GenApi::CEnumerationPtr(node)->GetEntries(entries);
    for (GenApi::INode* entry : entries)
        if (GenApi::IsAvailable(entry))
            info.entries.push_back(GenApi::CEnumEntryPtr(entry)->GetSymbolic().c_str());
}

} // namespace

FeatureInfo DescribeNode(GenApi::INode* node) {
    FeatureInfo info;
    const GenApi::EInterfaceType type = node->GetPrincipalInterfaceType();
    const GenApi::EAccessMode access = node->GetAccessMode();
    info.name = node->GetName().c_str();
    info.type = TypeName(type);
    info.access = AccessName(access);
    info.description = node->GetDescription().c_str();
    if (access == GenApi::NI || access == GenApi::NA)
        return info;
    if (type == GenApi::intfIInteger)
        DescribeInteger(node, info);
    else if (type == GenApi::intfIFloat)
        DescribeFloat(node, info);
    else if (type == GenApi::intfIEnumeration)
        DescribeEnumeration(node, info);
    return info;
}

} // namespace OrvanPy
