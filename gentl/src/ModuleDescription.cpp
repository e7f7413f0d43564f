#include "ModuleDescription.h"

#include "GenTLError.h"

#include <cstring>
#include <sstream>

namespace Orvan {
namespace Producer {

namespace {

using Kind = ModuleFeature::Kind;

constexpr uint64_t kRegisterBase = 0x1000;
constexpr uint64_t kFileAddress = 0x100000;

// Where each feature's register (and its live maximum, if any) sits.
struct Slot {
    uint64_t address = 0;
    uint32_t length = 0;
    uint64_t maxAddress = 0;
};

uint32_t RegisterLength(const ModuleFeature& feature) {
    switch (feature.kind) {
    case Kind::String:
        return ModuleDescription::kStringLength;
    case Kind::Boolean:
    case Kind::Enumeration:
    case Kind::Command:
        return 4;
    default:
        return 8;
    }
}

std::vector<Slot> Layout(const std::vector<ModuleFeature>& features) {
    std::vector<Slot> slots;
    uint64_t cursor = kRegisterBase;
    for (const ModuleFeature& feature : features) {
        Slot slot;
        slot.address = cursor;
        slot.length = RegisterLength(feature);
        cursor += (slot.length + 7) / 8 * 8;
        if (feature.getMax) {
            slot.maxAddress = cursor;
            cursor += 8;
        }
        slots.push_back(slot);
    }
    return slots;
}

std::string Hex(uint64_t value) {
    char text[24];
    std::snprintf(text, sizeof(text), "0x%llX", static_cast<unsigned long long>(value));
    return text;
}

void PutInt(uint8_t* bytes, int64_t value, size_t length) {
    // Little-endian, as the descriptions declare.
    for (size_t i = 0; i < length; ++i)
        bytes[i] = static_cast<uint8_t>(static_cast<uint64_t>(value) >> (8 * i));
}

int64_t GetInt(const uint8_t* bytes, size_t length) {
    uint64_t value = 0;
    for (size_t i = 0; i < length; ++i)
        value |= uint64_t(bytes[i]) << (8 * i);
    if (length < 8 && (value >> (8 * length - 1)) & 1) // sign-extend short registers
        value |= ~uint64_t(0) << (8 * length);
    return static_cast<int64_t>(value);
}

class XmlWriter {
public:
    XmlWriter(std::ostringstream& out, const std::string& port) : m_out(out), m_port(port) {}

    const std::string& PortName() const { return m_port; }

    void Register(const std::string& element, const std::string& name, const Slot& slot,
                  uint32_t length, bool writable, bool isInteger) {
        m_out << "  <" << element << " Name=\"" << name << "\">\n"
              << "    <Address>" << Hex(slot.address) << "</Address>\n"
              << "    <Length>" << length << "</Length>\n"
              << "    <AccessMode>" << (writable ? "RW" : "RO") << "</AccessMode>\n"
              << "    <pPort>" << m_port << "</pPort>\n"
              << "    <Cachable>NoCache</Cachable>\n";
        if (isInteger)
            m_out << "    <Sign>Signed</Sign>\n";
        if (element != "StringReg")
            m_out << "    <Endianess>LittleEndian</Endianess>\n";
        m_out << "  </" << element << ">\n";
    }

private:
    std::ostringstream& m_out;
    const std::string& m_port;
};

void WriteFeatureHead(std::ostringstream& out, const char* element, const ModuleFeature& feature) {
    out << "  <" << element << " Name=\"" << feature.name << "\" NameSpace=\""
        << (feature.standard ? "Standard" : "Custom") << "\">\n"
        << "    <Visibility>Beginner</Visibility>\n";
    if (!feature.availableIf.empty())
        out << "    <pIsAvailable>" << feature.availableIf << "</pIsAvailable>\n";
    for (const std::string& selected : feature.selects)
        out << "    <pSelected>" << selected << "</pSelected>\n";
}

void WriteFeature(std::ostringstream& out, XmlWriter& writer, const ModuleFeature& feature,
                  const Slot& slot) {
    const std::string reg = feature.name + "Reg";
    const bool writable = feature.setInt || feature.setFloat || feature.kind == Kind::Command;
    switch (feature.kind) {
    case Kind::Integer:
        WriteFeatureHead(out, "Integer", feature);
        out << "    <pValue>" << reg << "</pValue>\n";
        if (feature.getMax)
            out << "    <pMax>" << feature.name << "MaxReg</pMax>\n";
        if (!feature.representation.empty())
            out << "    <Representation>" << feature.representation << "</Representation>\n";
        out << "  </Integer>\n";
        writer.Register("IntReg", reg, slot, slot.length, writable, true);
        if (feature.getMax) {
            Slot max{slot.maxAddress, 8, 0};
            writer.Register("IntReg", feature.name + "MaxReg", max, 8, false, true);
        }
        break;
    case Kind::Boolean:
        WriteFeatureHead(out, "Boolean", feature);
        out << "    <pValue>" << reg << "</pValue>\n"
            << "    <OnValue>1</OnValue>\n    <OffValue>0</OffValue>\n  </Boolean>\n";
        writer.Register("IntReg", reg, slot, slot.length, writable, true);
        break;
    case Kind::Float:
        WriteFeatureHead(out, "Float", feature);
        out << "    <pValue>" << reg << "</pValue>\n  </Float>\n";
        writer.Register("FloatReg", reg, slot, slot.length, writable, false);
        break;
    case Kind::String:
        WriteFeatureHead(out, "StringReg", feature);
        out << "    <Address>" << Hex(slot.address) << "</Address>\n"
            << "    <Length>" << slot.length << "</Length>\n"
            << "    <AccessMode>RO</AccessMode>\n"
            << "    <pPort>" << writer.PortName() << "</pPort>\n"
            << "    <Cachable>NoCache</Cachable>\n  </StringReg>\n";
        break;
    case Kind::Enumeration:
        WriteFeatureHead(out, "Enumeration", feature);
        for (const auto& entry : feature.entries)
            out << "    <EnumEntry Name=\"EnumEntry_" << feature.name << "_" << entry.first
                << "\" NameSpace=\"" << (feature.standard ? "Standard" : "Custom") << "\">\n"
                << "      <Value>" << entry.second << "</Value>\n"
                << "      <Symbolic>" << entry.first << "</Symbolic>\n    </EnumEntry>\n";
        out << "    <pValue>" << reg << "</pValue>\n  </Enumeration>\n";
        writer.Register("IntReg", reg, slot, slot.length, writable, true);
        break;
    case Kind::Command:
        WriteFeatureHead(out, "Command", feature);
        out << "    <pValue>" << reg << "</pValue>\n"
            << "    <CommandValue>1</CommandValue>\n  </Command>\n";
        writer.Register("IntReg", reg, slot, slot.length, true, true);
        break;
    }
}

} // namespace

ModuleDescription::ModuleDescription(std::string model, std::string port)
    : m_model(std::move(model)), m_port(std::move(port)) {}

ModuleFeature& ModuleDescription::Add(ModuleFeature::Kind kind, const std::string& name) {
    if (m_categories.empty())
        m_categories.push_back("ModuleInformation");
    m_features.emplace_back();
    ModuleFeature& feature = m_features.back();
    feature.kind = kind;
    feature.name = name;
    feature.category = m_categories.back();
    return feature;
}

ModuleFeature& ModuleDescription::Integer(const std::string& name, std::function<int64_t()> get,
                                          std::function<void(int64_t)> set) {
    ModuleFeature& feature = Add(Kind::Integer, name);
    feature.getInt = std::move(get);
    feature.setInt = std::move(set);
    return feature;
}

ModuleFeature& ModuleDescription::Boolean(const std::string& name, std::function<bool()> get,
                                          std::function<void(bool)> set) {
    ModuleFeature& feature = Add(Kind::Boolean, name);
    feature.getInt = [get] { return get() ? 1 : 0; };
    if (set)
        feature.setInt = [set](int64_t value) { set(value != 0); };
    return feature;
}

ModuleFeature& ModuleDescription::Float(const std::string& name, std::function<double()> get,
                                        std::function<void(double)> set) {
    ModuleFeature& feature = Add(Kind::Float, name);
    feature.getFloat = std::move(get);
    feature.setFloat = std::move(set);
    return feature;
}

ModuleFeature& ModuleDescription::String(const std::string& name,
                                         std::function<std::string()> get) {
    ModuleFeature& feature = Add(Kind::String, name);
    feature.getString = std::move(get);
    return feature;
}

ModuleFeature& ModuleDescription::Enumeration(const std::string& name,
                                              std::vector<std::pair<std::string, int64_t>> entries,
                                              std::function<int64_t()> get,
                                              std::function<void(int64_t)> set) {
    ModuleFeature& feature = Add(Kind::Enumeration, name);
    feature.entries = std::move(entries);
    std::vector<int64_t> allowed;
    for (const auto& entry : feature.entries)
        allowed.push_back(entry.second);
    feature.getInt = std::move(get);
    if (set)
        feature.setInt = [set, allowed](int64_t value) {
            for (int64_t candidate : allowed)
                if (candidate == value)
                    return set(value);
            throw GenTLError(GenTL::GC_ERR_INVALID_VALUE, "Not an entry of the enumeration");
        };
    return feature;
}

ModuleFeature& ModuleDescription::Command(const std::string& name, std::function<void()> execute) {
    ModuleFeature& feature = Add(Kind::Command, name);
    feature.getInt = [] { return 0; }; // commands complete before the write returns
    feature.setInt = [execute](int64_t value) {
        if (value == 1)
            execute();
    };
    return feature;
}

std::string ModuleDescription::Xml() const {
    std::vector<Slot> slots = Layout(m_features);
    std::ostringstream out;
    out << "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
        << "<RegisterDescription ModelName=\"" << m_model
        << "\" VendorName=\"Orvan\" ToolTip=\"Orvan producer module " << m_model
        << "\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" "
           "SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" "
           "SubMinorVersion=\"0\" ProductGuid=\"4F52564E-0000-4000-8000-000000000001\" "
           "VersionGuid=\"4F52564E-0000-4000-8000-000000000002\" "
           "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\" "
           "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
           "xsi:schemaLocation=\"http://www.genicam.org/GenApi/Version_1_1 "
           "http://www.genicam.org/GenApi/GenApiSchema_Version_1_1.xsd\">\n";
    out << "  <Category Name=\"Root\" NameSpace=\"Standard\">\n";
    for (const std::string& category : m_categories)
        out << "    <pFeature>" << category << "</pFeature>\n";
    out << "  </Category>\n";
    for (const std::string& category : m_categories) {
        out << "  <Category Name=\"" << category << "\" NameSpace=\"Standard\">\n";
        for (const ModuleFeature& feature : m_features)
            if (feature.category == category)
                out << "    <pFeature>" << feature.name << "</pFeature>\n";
        out << "  </Category>\n";
    }
    XmlWriter writer(out, m_port);
    for (size_t i = 0; i < m_features.size(); ++i)
        WriteFeature(out, writer, m_features[i], slots[i]);
    out << "  <Port Name=\"" << m_port << "\" NameSpace=\"Standard\"/>\n"
        << "</RegisterDescription>\n";
    return out.str();
}

void ModuleDescription::Bind(RegisterSpace& space) const {
    std::vector<Slot> slots = Layout(m_features);
    for (size_t i = 0; i < m_features.size(); ++i) {
        const ModuleFeature& feature = m_features[i];
        const uint32_t length = slots[i].length;
        RegisterSpace::Reader reader;
        RegisterSpace::Writer writer;
        if (feature.kind == Kind::String) {
            reader = [get = feature.getString, length](uint8_t* bytes) {
                std::string text = get();
                std::memset(bytes, 0, length);
                std::memcpy(bytes, text.data(), std::min<size_t>(text.size(), length - 1));
            };
        } else if (feature.kind == Kind::Float) {
            reader = [get = feature.getFloat](uint8_t* bytes) {
                double value = get();
                std::memcpy(bytes, &value, sizeof(value));
            };
            if (feature.setFloat)
                writer = [set = feature.setFloat](const uint8_t* bytes) {
                    double value;
                    std::memcpy(&value, bytes, sizeof(value));
                    set(value);
                };
        } else {
            reader = [get = feature.getInt, length](uint8_t* bytes) {
                PutInt(bytes, get(), length);
            };
            if (feature.setInt)
                writer = [set = feature.setInt, length](const uint8_t* bytes) {
                    set(GetInt(bytes, length));
                };
        }
        space.Add(slots[i].address, length, std::move(reader), std::move(writer));
        if (feature.getMax)
            space.Add(slots[i].maxAddress, 8,
                      [max = feature.getMax](uint8_t* bytes) { PutInt(bytes, max(), 8); });
    }
}

std::string ModuleDescription::Build(RegisterSpace& space) const {
    Bind(space);
    std::string xml = Xml();
    const size_t size = xml.size();
    space.SetFile(kFileAddress, std::move(xml));
    char url[160];
    std::snprintf(url, sizeof(url), "local:Orvan%s.xml;%llX;%zX", m_model.c_str(),
                  static_cast<unsigned long long>(kFileAddress), size);
    return url;
}

} // namespace Producer
} // namespace Orvan
