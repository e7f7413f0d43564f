// Small descriptions and a register space in memory for the engine's tests.
#ifndef ORVAN_TESTS_GENAPITESTSUPPORT_H
#define ORVAN_TESTS_GENAPITESTSUPPORT_H

#include <GenICam.h>

#include <cstring>
#include <map>
#include <memory>
#include <string>

namespace genapitest {

// Registers in memory; counts the accesses so that caching can be observed.
class TestPort : public GenApi::IPort {
public:
    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
    void Read(void* buffer, int64_t address, int64_t length) override {
        ++reads;
        for (int64_t i = 0; i < length; ++i)
            static_cast<uint8_t*>(buffer)[i] = bytes[address + i];
    }
    void Write(const void* buffer, int64_t address, int64_t length) override {
        ++writes;
        for (int64_t i = 0; i < length; ++i)
            bytes[address + i] = static_cast<const uint8_t*>(buffer)[i];
    }
    void Set32(int64_t address, uint32_t value) { // little-endian
        for (int i = 0; i < 4; ++i)
            bytes[address + i] = static_cast<uint8_t>(value >> (8 * i));
    }

    std::map<int64_t, uint8_t> bytes;
    int reads = 0;
    int writes = 0;
};

inline std::string Describe(const std::string& nodes) {
    return "<?xml version=\"1.0\"?>\n<RegisterDescription ModelName=\"Test\" "
           "VendorName=\"Orvan\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" "
           "SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" "
           "SubMinorVersion=\"0\" ProductGuid=\"0\" VersionGuid=\"0\" "
           "StandardNameSpace=\"None\">\n<Port Name=\"Device\"/>\n" +
           nodes + "\n</RegisterDescription>\n";
}

// A map over a test port, released with the fixture.
struct LoadedMap {
    explicit LoadedMap(const std::string& nodes) : ref("Device") {
        ref._LoadXMLFromString(Describe(nodes).c_str());
        ref._Connect(&port, "Device");
    }
    GenApi::INode* Node(const char* name) { return ref._GetNode(name); }

    TestPort port;
    GenApi::CNodeMapRef ref;
};

inline std::string IntReg(const char* name, int address, const char* extra = "") {
    return std::string("<IntReg Name=\"") + name + "\"><Address>" + std::to_string(address) +
           "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>" + extra +
           "</IntReg>";
}

} // namespace genapitest

#endif
