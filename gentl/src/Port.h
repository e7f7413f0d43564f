// A register port as the GC*Port functions see it: the register space of a producer module or of
// the remote camera, the location of its description file, and its port info.
#ifndef ORVAN_GENTL_PORT_H
#define ORVAN_GENTL_PORT_H

#include "InfoValue.h"

#include <GenTL/GenTL.h>

#include <cstdint>
#include <string>

namespace Orvan {
namespace Producer {

struct DescriptionLocation {
    std::string url; // "local:<file>;<hex address>;<hex length>"
    int32_t schemaMajor = 1, schemaMinor = 1;
    int32_t fileMajor = 1, fileMinor = 0, fileSubminor = 0;
};

struct PortIdentity {
    std::string id, vendor, model, tlType, module, portName, version;
    bool littleEndian = true;
    bool readable = true;
    bool writable = true;
};

class Port {
public:
    virtual ~Port() = default;

    // Both throw on failure; size is the number of bytes to transfer.
    virtual void Read(uint64_t address, void* data, size_t size) = 0;
    virtual void Write(uint64_t address, const void* data, size_t size) = 0;
    virtual DescriptionLocation Description() const = 0;
    virtual PortIdentity Identity() const = 0;

    InfoValue Info(GenTL::PORT_INFO_CMD cmd) const;
    InfoValue UrlInfo(uint32_t index, GenTL::URL_INFO_CMD cmd) const;
};

} // namespace Producer
} // namespace Orvan

#endif
