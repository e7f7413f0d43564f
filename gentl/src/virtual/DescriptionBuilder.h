// Declares a camera's features once and produces from that one declaration both its GenICam
// description (schema 1.1) and the registers behind it, so the two cannot disagree about an
// address. Registers are laid out in blocks of 0x20-byte slots: the value, then the live
// minimum, maximum and increment where a feature has them.
#ifndef ORVAN_GENTL_VIRTUAL_DESCRIPTIONBUILDER_H
#define ORVAN_GENTL_VIRTUAL_DESCRIPTIONBUILDER_H

#include "RegisterMap.h"

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace Orvan {
namespace Producer {

enum class FeatureKind {
    Integer,
    Float,
    Boolean,
    Enumeration,
    Command,
    String,
    Constant,   // an Integer with a fixed value and no register
    ChunkValue, // read from a chunk of the payload (a port with a ChunkID)
    EventValue, // read from an event message (a port with an EventID)
};

// One feature as the builder records it. The fluent setters return the feature itself.
struct Feature {
    FeatureKind kind = FeatureKind::Integer;
    std::string name;
    std::string category;
    std::string toolTip;
    RegisterAccess access = RegisterAccess::RW;
    int64_t intValue = 0;
    double floatValue = 0;
    std::string stringValue;
    uint32_t length = 8; // register bytes (strings: capacity)
    RegisterLimit min, max, inc;
    std::string lockedBy;
    bool persistent = false; // kept in user sets
    bool streamable = false; // saved in feature files (GenApi persistence files)
    bool standard = true;
    std::string visibility = "Beginner";
    std::string unit;
    std::string representation;
    std::vector<std::string> selected;
    std::vector<std::pair<std::string, int64_t>> entries;
    uint64_t address = 0;
    std::string port = "Device";
    std::string eventId;     // hex text, for the node that names an event
    bool floatChunk = false; // chunk values: a FloatReg instead of an IntReg

    Feature& Ro() { return access = RegisterAccess::RO, *this; }
    Feature& Wo() { return access = RegisterAccess::WO, *this; }
    Feature& Bytes(uint32_t count) { return length = count, *this; }
    Feature& Tip(const std::string& text) { return toolTip = text, *this; }
    // What a user set keeps, a feature file keeps too.
    Feature& Persist() { return persistent = streamable = true, *this; }
    // Saved in feature files without being part of the user sets: selectors and the values
    // they select.
    Feature& Streamable() { return streamable = true, *this; }
    Feature& LockedBy(const std::string& node) { return lockedBy = node, *this; }
    Feature& Range(double lo, double hi) {
        min = RegisterLimit::Const(lo), max = RegisterLimit::Const(hi);
        return *this;
    }
    Feature& Min(double lo) { return min = RegisterLimit::Const(lo), *this; }
    Feature& Inc(double step) { return inc = RegisterLimit::Const(step), *this; }
    // Live limits get registers of their own (<name>_Min, _Max, _Inc) that the camera computes.
    Feature& LiveMin() { return min = RegisterLimit::Named(name + "_Min"), *this; }
    Feature& LiveMax() { return max = RegisterLimit::Named(name + "_Max"), *this; }
    Feature& LiveInc() { return inc = RegisterLimit::Named(name + "_Inc"), *this; }
    Feature& Unit(const std::string& text) { return unit = text, *this; }
    Feature& Hex() { return representation = "HexNumber", *this; }
    Feature& Ip() { return representation = "IPV4Address", *this; }
    Feature& Mac() { return representation = "MACAddress", *this; }
    Feature& Selects(const std::string& node) { return selected.push_back(node), *this; }
    Feature& Entry(const std::string& entry, int64_t value) {
        entries.emplace_back(entry, value);
        return *this;
    }
    Feature& Custom() { return standard = false, *this; }
    Feature& Expert() { return visibility = "Expert", *this; }
    Feature& Guru() { return visibility = "Guru", *this; }
    Feature& Invisible() { return visibility = "Invisible", *this; }
};

class DescriptionBuilder {
public:
    struct Header {
        std::string vendor;
        std::string model;
        std::string productGuid;
        std::string versionGuid;
        int32_t fileMajor = 1, fileMinor = 0, fileSubminor = 0;
    };

    // Registers are placed from `base` on, one 0x20-byte slot per feature.
    void Block(uint64_t base) { m_cursor = base; }
    // Categories appear in the order declared; the parent of a top-level category is "Root".
    void Category(const std::string& name, const std::string& parent = "Root");

    Feature& Integer(const std::string& category, const std::string& name, int64_t value);
    Feature& Float(const std::string& category, const std::string& name, double value);
    Feature& Boolean(const std::string& category, const std::string& name, bool value);
    Feature& Enumeration(const std::string& category, const std::string& name, int64_t value);
    Feature& Command(const std::string& category, const std::string& name);
    Feature& String(const std::string& category, const std::string& name, uint32_t capacity,
                    const std::string& value);
    Feature& Constant(const std::string& category, const std::string& name, int64_t value);
    // A register at an address the layout fixes (the GigE Vision bootstrap area).
    Feature& At(uint64_t address, Feature& feature);
    // Chunk values: one port per chunk ID, the value at offset 0 of the chunk data.
    Feature& ChunkValue(const std::string& category, const std::string& name, uint32_t chunkId,
                        uint32_t length);
    // Event data: a port per event ID; the value at `offset` of the event record.
    void EventPort(const std::string& event, uint16_t eventId);
    Feature& EventValue(const std::string& category, const std::string& name,
                        const std::string& event, uint32_t offset, uint32_t length);

    // Defines every register in the map and returns the description text.
    std::string Build(const Header& header, RegisterMap& map) const;

private:
    Feature& Declare(FeatureKind kind, const std::string& category, const std::string& name,
                     uint32_t length);
    void DefineRegisters(const Feature& feature, RegisterMap& map) const;
    std::string NodeXml(const Feature& feature) const;
    std::string RegisterXml(const Feature& feature) const;

    uint64_t m_cursor = 0;
    std::deque<Feature> m_features;
    std::vector<std::pair<std::string, std::string>> m_categories; // name, parent
    std::map<std::string, uint32_t> m_chunkPorts;                  // port name, chunk ID
    std::map<std::string, uint16_t> m_eventPorts;                  // port name, event ID
};

} // namespace Producer
} // namespace Orvan

#endif
