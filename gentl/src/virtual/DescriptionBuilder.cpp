#include "DescriptionBuilder.h"

#include <cstdio>
#include <sstream>
#include <stdexcept>

namespace Orvan {
namespace Producer {

namespace {

constexpr uint64_t kSlot = 0x20;
constexpr uint64_t kMinOffset = 0x08;
constexpr uint64_t kMaxOffset = 0x10;
constexpr uint64_t kIncOffset = 0x18;

std::string Escape(const std::string& text) {
    std::string out;
    for (char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

std::string Hex(uint64_t value, int digits = 0) {
    char text[32];
    std::snprintf(text, sizeof text, "%0*llX", digits, static_cast<unsigned long long>(value));
    return text;
}

std::string Number(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.10g", value);
    return text;
}

std::string Element(const std::string& tag, const std::string& value) {
    return "<" + tag + ">" + Escape(value) + "</" + tag + ">";
}

const char* AccessText(RegisterAccess access) {
    switch (access) {
    case RegisterAccess::RO:
        return "RO";
    case RegisterAccess::WO:
        return "WO";
    default:
        return "RW";
    }
}

bool IsFloat(const Feature& f) {
    return f.kind == FeatureKind::Float || (f.kind == FeatureKind::ChunkValue && f.floatChunk);
}

std::string LimitXml(const char* tag, const RegisterLimit& limit, bool isFloat) {
    if (limit.source == RegisterLimit::Source::Constant)
        return Element(tag, isFloat ? Number(limit.constant)
                                    : std::to_string(static_cast<int64_t>(limit.constant)));
    if (limit.source == RegisterLimit::Source::Register)
        return Element((std::string("p") + tag).c_str(), limit.registerName);
    return {};
}

std::string RegXml(bool isFloat, const std::string& name, uint64_t address, uint32_t length,
                   RegisterAccess access, const std::string& port) {
    std::string xml = std::string("  <") + (isFloat ? "FloatReg" : "IntReg") + " Name=\"" + name +
                      "\" NameSpace=\"Custom\">";
    xml += Element("Visibility", "Invisible") + Element("Address", "0x" + Hex(address)) +
           Element("Length", std::to_string(length)) + Element("AccessMode", AccessText(access)) +
           Element("pPort", port) + Element("Cachable", "NoCache");
    if (!isFloat)
        xml += Element("Sign", "Unsigned");
    xml += Element("Endianess", "BigEndian");
    return xml + (isFloat ? "</FloatReg>\n" : "</IntReg>\n");
}

} // namespace

void DescriptionBuilder::Category(const std::string& name, const std::string& parent) {
    m_categories.emplace_back(name, parent);
}

Feature& DescriptionBuilder::Declare(FeatureKind kind, const std::string& category,
                                     const std::string& name, uint32_t length) {
    Feature& feature = m_features.emplace_back();
    feature.kind = kind;
    feature.category = category;
    feature.name = name;
    feature.length = length;
    feature.address = m_cursor;
    m_cursor += (uint64_t(length) + kSlot - 1) / kSlot * kSlot;
    return feature;
}

Feature& DescriptionBuilder::Integer(const std::string& category, const std::string& name,
                                     int64_t value) {
    Feature& f = Declare(FeatureKind::Integer, category, name, 8);
    f.intValue = value;
    f.representation = "Linear";
    return f;
}

Feature& DescriptionBuilder::Float(const std::string& category, const std::string& name,
                                   double value) {
    Feature& f = Declare(FeatureKind::Float, category, name, 8);
    f.floatValue = value;
    f.representation = "Linear";
    return f;
}

Feature& DescriptionBuilder::Boolean(const std::string& category, const std::string& name,
                                     bool value) {
    Feature& f = Declare(FeatureKind::Boolean, category, name, 4);
    f.intValue = value ? 1 : 0;
    return f;
}

Feature& DescriptionBuilder::Enumeration(const std::string& category, const std::string& name,
                                         int64_t value) {
    Feature& f = Declare(FeatureKind::Enumeration, category, name, 4);
    f.intValue = value;
    return f;
}

Feature& DescriptionBuilder::Command(const std::string& category, const std::string& name) {
    return Declare(FeatureKind::Command, category, name, 4);
}

Feature& DescriptionBuilder::String(const std::string& category, const std::string& name,
                                    uint32_t capacity, const std::string& value) {
    Feature& f = Declare(FeatureKind::String, category, name, capacity);
    f.stringValue = value;
    return f;
}

Feature& DescriptionBuilder::Constant(const std::string& category, const std::string& name,
                                      int64_t value) {
    Feature& f = Declare(FeatureKind::Constant, category, name, 0);
    f.intValue = value;
    f.access = RegisterAccess::RO;
    return f;
}

Feature& DescriptionBuilder::At(uint64_t address, Feature& feature) {
    if (&feature != &m_features.back())
        throw std::logic_error("At() must follow the declaration of " + feature.name);
    m_cursor = feature.address;
    feature.address = address;
    return feature;
}

Feature& DescriptionBuilder::ChunkValue(const std::string& category, const std::string& name,
                                        uint32_t chunkId, uint32_t length) {
    Feature& f = Declare(FeatureKind::ChunkValue, category, name, 0);
    f.address = 0; // the value is the whole chunk
    f.length = length;
    f.access = RegisterAccess::RO;
    f.port = name + "Port";
    f.visibility = "Expert";
    m_chunkPorts[f.port] = chunkId;
    return f;
}

void DescriptionBuilder::EventPort(const std::string& event, uint16_t eventId) {
    m_eventPorts["Event" + event + "Port"] = eventId;
}

Feature& DescriptionBuilder::EventValue(const std::string& category, const std::string& name,
                                        const std::string& event, uint32_t offset,
                                        uint32_t length) {
    Feature& f = Declare(FeatureKind::EventValue, category, name, 0);
    f.length = length;
    f.address = offset;
    f.access = RegisterAccess::RO;
    f.port = "Event" + event + "Port";
    f.visibility = "Expert";
    if (!m_eventPorts.count(f.port))
        throw std::logic_error("event port not declared: " + f.port);
    return f;
}

void DescriptionBuilder::DefineRegisters(const Feature& f, RegisterMap& map) const {
    if (f.kind == FeatureKind::Constant || f.kind == FeatureKind::ChunkValue ||
        f.kind == FeatureKind::EventValue)
        return;
    RegisterDefinition def;
    def.name = f.name;
    def.address = f.address;
    def.length = f.length;
    def.access = f.access;
    def.lockedBy = f.lockedBy;
    def.persistent = f.persistent;
    def.min = f.min;
    def.max = f.max;
    def.inc = f.inc;
    def.command = f.kind == FeatureKind::Command;
    def.kind = IsFloat(f) ? RegisterKind::Float : RegisterKind::Integer;
    if (f.kind == FeatureKind::String)
        def.kind = RegisterKind::String;
    if (f.kind == FeatureKind::Boolean)
        def.allowed = {0, 1};
    for (const auto& entry : f.entries)
        def.allowed.push_back(entry.second);
    map.Add(def);
    if (def.kind == RegisterKind::String)
        map.SetString(f.name, f.stringValue);
    else if (def.kind == RegisterKind::Float)
        map.SetFloat(f.name, f.floatValue);
    else
        map.SetInt(f.name, f.intValue);

    const std::pair<const RegisterLimit*, uint64_t> limits[] = {
        {&f.min, kMinOffset}, {&f.max, kMaxOffset}, {&f.inc, kIncOffset}};
    for (const auto& [limit, offset] : limits) {
        if (limit->source != RegisterLimit::Source::Register)
            continue;
        RegisterDefinition reg;
        reg.name = limit->registerName;
        reg.address = f.address + offset;
        reg.length = 8;
        reg.access = RegisterAccess::RO;
        reg.kind = def.kind;
        map.Add(reg);
    }
}

std::string DescriptionBuilder::NodeXml(const Feature& f) const {
    const bool isFloat = IsFloat(f);
    std::string tag;
    switch (f.kind) {
    case FeatureKind::Float:
        tag = "Float";
        break;
    case FeatureKind::Boolean:
        tag = "Boolean";
        break;
    case FeatureKind::Enumeration:
        tag = "Enumeration";
        break;
    case FeatureKind::Command:
        tag = "Command";
        break;
    case FeatureKind::String:
        tag = "StringReg";
        break;
    default:
        tag = isFloat ? "Float" : "Integer";
    }
    std::string xml = "  <" + tag + " Name=\"" + f.name + "\" NameSpace=\"" +
                      (f.standard ? "Standard" : "Custom") + "\">";
    if (!f.toolTip.empty())
        xml += Element("ToolTip", f.toolTip);
    xml += Element("Visibility", f.visibility);
    if (!f.eventId.empty())
        xml += Element("EventID", f.eventId);
    if (!f.lockedBy.empty())
        xml += Element("pIsLocked", f.lockedBy);
    const std::string streamable = f.streamable ? Element("Streamable", "Yes") : std::string();
    if (f.kind == FeatureKind::String) {
        xml += streamable + Element("Address", "0x" + Hex(f.address)) +
               Element("Length", std::to_string(f.length)) +
               Element("AccessMode", AccessText(f.access)) + Element("pPort", f.port) +
               Element("Cachable", "NoCache");
        return xml + "</StringReg>\n";
    }
    if (f.access == RegisterAccess::RO && f.kind != FeatureKind::Constant)
        xml += Element("ImposedAccessMode", "RO");
    xml += streamable;
    for (const auto& [entry, value] : f.entries)
        xml += "<EnumEntry Name=\"" + entry + "\" NameSpace=\"Standard\">" +
               Element("Value", std::to_string(value)) + "</EnumEntry>";
    if (f.kind == FeatureKind::Constant)
        xml += Element("Value", std::to_string(f.intValue));
    else
        xml += Element("pValue", f.name + "_Reg");
    xml += LimitXml("Min", f.min, isFloat) + LimitXml("Max", f.max, isFloat) +
           LimitXml("Inc", f.inc, isFloat);
    if (f.kind == FeatureKind::Boolean)
        xml += Element("OnValue", "1") + Element("OffValue", "0");
    if (f.kind == FeatureKind::Command)
        xml += Element("CommandValue", "1");
    if (!f.unit.empty())
        xml += Element("Unit", f.unit);
    if (!f.representation.empty())
        xml += Element("Representation", f.representation);
    for (const std::string& node : f.selected)
        xml += Element("pSelected", node);
    return xml + "</" + tag + ">\n";
}

std::string DescriptionBuilder::RegisterXml(const Feature& f) const {
    if (f.kind == FeatureKind::Constant || f.kind == FeatureKind::String)
        return {};
    const bool isFloat = IsFloat(f);
    std::string xml = RegXml(isFloat, f.name + "_Reg", f.address, f.length, f.access, f.port);
    const std::pair<const RegisterLimit*, uint64_t> limits[] = {
        {&f.min, kMinOffset}, {&f.max, kMaxOffset}, {&f.inc, kIncOffset}};
    for (const auto& [limit, offset] : limits)
        if (limit->source == RegisterLimit::Source::Register)
            xml += RegXml(isFloat, limit->registerName, f.address + offset, 8, RegisterAccess::RO,
                          f.port);
    return xml;
}

std::string DescriptionBuilder::Build(const Header& header, RegisterMap& map) const {
    std::ostringstream xml;
    xml << "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
        << "<RegisterDescription xmlns=\"http://www.genicam.org/GenApi/Version_1_1\" "
           "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
           "xsi:schemaLocation=\"http://www.genicam.org/GenApi/Version_1_1 "
           "http://www.genicam.org/GenApi/GenApiSchema_Version_1_1.xsd\" ModelName=\""
        << Escape(header.model) << "\" VendorName=\"" << Escape(header.vendor)
        << "\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" "
           "SchemaSubMinorVersion=\"0\" MajorVersion=\""
        << header.fileMajor << "\" MinorVersion=\"" << header.fileMinor << "\" SubMinorVersion=\""
        << header.fileSubminor << "\" ProductGuid=\"" << header.productGuid << "\" VersionGuid=\""
        << header.versionGuid << "\">\n";

    std::map<std::string, std::vector<std::string>> members;
    for (const auto& [name, parent] : m_categories)
        members[parent].push_back(name);
    for (const Feature& f : m_features)
        if (f.standard || f.visibility != "Invisible") // helpers stay out of the tree
            members[f.category].push_back(f.name);
    std::vector<std::string> categories{"Root"};
    for (const auto& category : m_categories)
        categories.push_back(category.first);
    for (const std::string& category : categories) {
        xml << "  <Category Name=\"" << category << "\" NameSpace=\"Standard\">";
        for (const std::string& member : members[category])
            xml << Element("pFeature", member);
        xml << "</Category>\n";
    }

    for (const Feature& f : m_features) {
        xml << NodeXml(f) << RegisterXml(f);
        DefineRegisters(f, map);
    }

    xml << "  <Port Name=\"Device\" NameSpace=\"Standard\"></Port>\n";
    for (const auto& [port, id] : m_chunkPorts)
        xml << "  <Port Name=\"" << port << "\" NameSpace=\"Custom\">"
            << Element("ChunkID", Hex(id, 8)) << "</Port>\n";
    for (const auto& [port, id] : m_eventPorts)
        xml << "  <Port Name=\"" << port << "\" NameSpace=\"Custom\">"
            << Element("EventID", Hex(id, 4)) << "</Port>\n";
    xml << "</RegisterDescription>\n";
    return xml.str();
}

} // namespace Producer
} // namespace Orvan
