// A camera description, parsed and checked: the XML document and the node descriptions taken
// from it.
#ifndef ORVAN_GENAPI_DESCRIPTION_H
#define ORVAN_GENAPI_DESCRIPTION_H

#include "NodeDescription.h"

#include <pugixml.hpp>

#include <memory>
#include <string>
#include <vector>

namespace GenApi {
namespace detail {

class Description {
public:
    // Parses XML text; throws RuntimeException naming the problem and its line.
    explicit Description(std::string xml);
    // Parses plain or zipped XML, telling them apart by the zip signature.
    static std::shared_ptr<Description> FromBytes(const void* data, size_t size, bool zipped,
                                                  bool detect);

    const std::vector<NodeDescription>& Nodes() const { return m_nodes; }
    std::string ToXml() const;
    // A description of `rootName` and every node it refers to, directly or not.
    std::shared_ptr<Description> Subtree(const std::string& rootName) const;

private:
    unsigned LineOf(ptrdiff_t offset) const;
    void CheckStructure() const;
    void Collect(const pugi::xml_node& container);
    // Adds the node and returns its name; a hidden node's name gets a leading underscore.
    std::string AddNode(const pugi::xml_node& element, const pugi::xml_node& topElement,
                        bool hidden);
    // The properties of a node element. An IntSwissKnife nested in a register is a node of its
    // own that adds to the register's address; nested in a single register it is that
    // register's helper (hidden), nested in a StructReg it is shared by the entries and public.
    std::vector<Property> MakeProperties(const pugi::xml_node& element,
                                         const pugi::xml_node& topElement, const char* skip,
                                         bool hideNested);
    Property MakeProperty(const pugi::xml_node& element) const;
    void AddStructEntries(const pugi::xml_node& element);
    void AddEnumEntries(const pugi::xml_node& element, NodeDescription& enumeration);

    std::string m_text;
    std::vector<size_t> m_lineStarts;
    pugi::xml_document m_document;
    std::vector<NodeDescription> m_nodes;
    // The top-level element each node came from, in the order of m_nodes.
    std::vector<pugi::xml_node> m_elements;
};

} // namespace detail
} // namespace GenApi

#endif
