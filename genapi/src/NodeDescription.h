// One node of a camera description as the loader found it, before the node exists.
#ifndef ORVAN_GENAPI_NODEDESCRIPTION_H
#define ORVAN_GENAPI_NODEDESCRIPTION_H

#include <string>
#include <utility>
#include <vector>

namespace GenApi {
namespace detail {

struct Property {
    std::string name;
    std::string text;
    std::vector<std::pair<std::string, std::string>> attributes;
    unsigned line = 0;

    const std::string* Attribute(const char* attributeName) const {
        for (const auto& attribute : attributes)
            if (attribute.first == attributeName)
                return &attribute.second;
        return nullptr;
    }
};

struct NodeDescription {
    std::string kind; // element name: Integer, IntReg, ...
    std::string name;
    std::string nameSpace;
    std::string owner; // the enumeration of an EnumEntry
    unsigned line = 0;
    std::vector<Property> properties;

    const Property* Find(const char* propertyName) const {
        for (const auto& property : properties)
            if (property.name == propertyName)
                return &property;
        return nullptr;
    }
    std::vector<const Property*> FindAll(const char* propertyName) const {
        std::vector<const Property*> found;
        for (const auto& property : properties)
            if (property.name == propertyName)
                found.push_back(&property);
        return found;
    }
};

} // namespace detail
} // namespace GenApi

#endif
