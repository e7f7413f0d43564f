#include "Description.h"

#include "ZipArchive.h"

#include <Base/GCException.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <sstream>
#include <unordered_map>

namespace GenApi {
namespace detail {

namespace {

std::string Trim(const char* text) {
    const char* begin = text;
    while (*begin && std::strchr(" \t\r\n", *begin))
        ++begin;
    const char* end = begin + std::strlen(begin);
    while (end > begin && std::strchr(" \t\r\n", end[-1]))
        --end;
    return std::string(begin, end);
}

bool IsZip(const void* data, size_t size) {
    return size >= 4 && std::memcmp(data, "PK\x03\x04", 4) == 0;
}

} // namespace

Description::Description(std::string xml) : m_text(std::move(xml)) {
    m_lineStarts.push_back(0);
    for (size_t i = 0; i < m_text.size(); ++i)
        if (m_text[i] == '\n')
            m_lineStarts.push_back(i + 1);
    pugi::xml_parse_result result =
        m_document.load_buffer(m_text.data(), m_text.size(),
                               pugi::parse_default | pugi::parse_declaration, pugi::encoding_auto);
    if (!result) {
        unsigned line = LineOf(result.offset);
        size_t column = static_cast<size_t>(result.offset) - m_lineStarts[line - 1];
        throw RUNTIME_EXCEPTION("XML parse error at line %u, column %zu: %s", line, column,
                                result.description());
    }
    CheckStructure();
    Collect(m_document.document_element());
}

std::shared_ptr<Description> Description::FromBytes(const void* data, size_t size, bool zipped,
                                                    bool detect) {
    if (!data || size == 0)
        throw RUNTIME_EXCEPTION("The camera description is empty");
    if (detect)
        zipped = IsZip(data, size);
    if (zipped)
        return std::make_shared<Description>(ExtractSingleXml(data, size));
    return std::make_shared<Description>(std::string(static_cast<const char*>(data), size));
}

unsigned Description::LineOf(ptrdiff_t offset) const {
    if (offset < 0)
        return 0;
    auto after =
        std::upper_bound(m_lineStarts.begin(), m_lineStarts.end(), static_cast<size_t>(offset));
    return static_cast<unsigned>(after - m_lineStarts.begin());
}

// pugixml accepts a few things that are not well-formed XML; camera descriptions with text or a
// misplaced declaration in front are damaged and must be refused.
void Description::CheckStructure() const {
    size_t start = m_text.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
    size_t first = m_text.find_first_not_of(" \t\r\n", start);
    if (first == std::string::npos || m_text[first] != '<')
        throw RUNTIME_EXCEPTION(
            "XML parse error at line %u: text before the first element",
            LineOf(static_cast<ptrdiff_t>(first == std::string::npos ? start : first)));
    for (pugi::xml_node child : m_document.children()) {
        if (child.type() == pugi::node_declaration && m_text.compare(start, 5, "<?xml") != 0)
            throw RUNTIME_EXCEPTION("XML parse error at line %u: XML declaration not at the "
                                    "start of the document",
                                    LineOf(child.offset_debug()));
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata)
            throw RUNTIME_EXCEPTION("XML parse error at line %u: text outside the root element",
                                    LineOf(child.offset_debug()));
    }
    pugi::xml_node root = m_document.document_element();
    if (std::strcmp(root.name(), "RegisterDescription") != 0)
        throw RUNTIME_EXCEPTION("Line %u: the root element is <%s>, not <RegisterDescription>",
                                LineOf(root.offset_debug()), root.name());
}

void Description::Collect(const pugi::xml_node& container) {
    for (pugi::xml_node element : container.children()) {
        if (element.type() != pugi::node_element)
            continue;
        if (std::strcmp(element.name(), "Group") == 0)
            Collect(element);
        else if (std::strcmp(element.name(), "StructReg") == 0)
            AddStructEntries(element);
        else
            AddNode(element, element, false);
    }
}

std::vector<Property> Description::MakeProperties(const pugi::xml_node& element,
                                                  const pugi::xml_node& topElement,
                                                  const char* skip, bool hideNested) {
    std::vector<Property> properties;
    for (pugi::xml_node child : element.children()) {
        if (child.type() != pugi::node_element || std::strcmp(child.name(), "Extension") == 0 ||
            std::strcmp(child.name(), skip) == 0)
            continue;
        if (std::strcmp(child.name(), "IntSwissKnife") == 0) {
            properties.push_back({"pAddress",
                                  AddNode(child, topElement, hideNested),
                                  {},
                                  LineOf(child.offset_debug())});
            continue;
        }
        properties.push_back(MakeProperty(child));
    }
    return properties;
}

Property Description::MakeProperty(const pugi::xml_node& element) const {
    Property property;
    property.name = element.name();
    // Comments may split an element's text; the parts belong together.
    std::string text;
    for (pugi::xml_node part : element.children())
        if (part.type() == pugi::node_pcdata || part.type() == pugi::node_cdata)
            text += part.value();
    property.text = Trim(text.c_str());
    property.line = LineOf(element.offset_debug());
    for (pugi::xml_attribute attribute : element.attributes())
        property.attributes.emplace_back(attribute.name(), attribute.value());
    return property;
}

std::string Description::AddNode(const pugi::xml_node& element, const pugi::xml_node& topElement,
                                 bool hidden) {
    NodeDescription node;
    node.kind = element.name();
    node.name = element.attribute("Name").value();
    node.nameSpace = element.attribute("NameSpace").value();
    node.line = LineOf(element.offset_debug());
    if (node.name.empty())
        throw RUNTIME_EXCEPTION("Element <%s> at line %u has no Name", node.kind.c_str(),
                                node.line);
    if (hidden)
        node.name = "_" + node.name;
    node.properties = MakeProperties(element, topElement, "EnumEntry", true);
    std::string name = node.name;
    size_t index = m_nodes.size();
    m_nodes.push_back(std::move(node));
    m_elements.push_back(topElement);
    if (m_nodes[index].kind == "Enumeration")
        AddEnumEntries(element, m_nodes[index]);
    return name;
}

void Description::AddEnumEntries(const pugi::xml_node& element, NodeDescription& enumeration) {
    std::vector<NodeDescription> entries;
    for (pugi::xml_node child : element.children("EnumEntry")) {
        NodeDescription entry;
        entry.kind = "EnumEntry";
        entry.name = child.attribute("Name").value();
        entry.nameSpace = child.attribute("NameSpace").value();
        entry.owner = enumeration.name;
        entry.line = LineOf(child.offset_debug());
        if (entry.name.empty())
            throw RUNTIME_EXCEPTION("<EnumEntry> at line %u has no Name", entry.line);
        for (pugi::xml_node property : child.children())
            if (property.type() == pugi::node_element &&
                std::strcmp(property.name(), "Extension") != 0)
                entry.properties.push_back(MakeProperty(property));
        if (!entry.Find("Symbolic"))
            entry.properties.push_back({"Symbolic", entry.name, {}, entry.line});
        entry.name = "EnumEntry_" + enumeration.name + "_" + entry.name;
        enumeration.properties.push_back({"pEnumEntry", entry.name, {}, entry.line});
        entries.push_back(std::move(entry));
    }
    for (auto& entry : entries) {
        m_nodes.push_back(std::move(entry));
        m_elements.push_back(element);
    }
}

// Each StructEntry becomes a MaskedIntReg that shares the register elements of its StructReg;
// an element the entry sets itself replaces the shared one.
void Description::AddStructEntries(const pugi::xml_node& element) {
    std::vector<Property> shared = MakeProperties(element, element, "StructEntry", false);
    for (pugi::xml_node child : element.children("StructEntry")) {
        NodeDescription entry;
        entry.kind = "MaskedIntReg";
        entry.name = child.attribute("Name").value();
        entry.nameSpace = child.attribute("NameSpace").value();
        entry.line = LineOf(child.offset_debug());
        if (entry.name.empty())
            throw RUNTIME_EXCEPTION("<StructEntry> at line %u has no Name", entry.line);
        entry.properties = MakeProperties(child, element, "", false);
        for (const Property& property : shared)
            if (!entry.Find(property.name.c_str()))
                entry.properties.push_back(property);
        m_nodes.push_back(std::move(entry));
        m_elements.push_back(element);
    }
}

std::string Description::ToXml() const {
    std::ostringstream out;
    m_document.save(out, "  ", pugi::format_default, pugi::encoding_utf8);
    return out.str();
}

std::shared_ptr<Description> Description::Subtree(const std::string& rootName) const {
    std::unordered_map<std::string, size_t> byName;
    for (size_t i = 0; i < m_nodes.size(); ++i)
        byName.emplace(m_nodes[i].name, i);
    auto root = byName.find(rootName);
    if (root == byName.end())
        throw RUNTIME_EXCEPTION("The description has no node '%s'", rootName.c_str());

    std::vector<size_t> pending{root->second};
    std::set<size_t> reached{root->second};
    while (!pending.empty()) {
        size_t index = pending.back();
        pending.pop_back();
        for (const Property& property : m_nodes[index].properties) {
            std::vector<std::string> names;
            if (property.name[0] == 'p')
                names.push_back(property.text);
            if (const std::string* offset = property.Attribute("pOffset"))
                names.push_back(*offset);
            for (const std::string& name : names) {
                auto found = byName.find(name);
                if (found != byName.end() && reached.insert(found->second).second)
                    pending.push_back(found->second);
            }
        }
    }

    pugi::xml_document subtree;
    pugi::xml_node originalRoot = m_document.document_element();
    pugi::xml_node newRoot = subtree.append_child(originalRoot.name());
    for (pugi::xml_attribute attribute : originalRoot.attributes())
        newRoot.append_copy(attribute);
    std::set<const void*> copied;
    for (size_t index : reached) {
        const pugi::xml_node& element = m_elements[index];
        if (copied.insert(element.internal_object()).second)
            newRoot.append_copy(element);
    }
    std::ostringstream out;
    subtree.save(out, "  ", pugi::format_default, pugi::encoding_utf8);
    return std::make_shared<Description>(out.str());
}

} // namespace detail
} // namespace GenApi
