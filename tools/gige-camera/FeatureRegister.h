// Where a feature of the camera's own description keeps its value, so that bootstrap registers
// with the same meaning (packet size, action keys) can share it instead of drifting apart.
#ifndef ORVAN_TOOLS_GIGE_CAMERA_FEATUREREGISTER_H
#define ORVAN_TOOLS_GIGE_CAMERA_FEATUREREGISTER_H

#include <cstdint>
#include <string>

namespace Orvan {
namespace Emulator {

struct FeatureRegister {
    uint64_t address = 0;
    uint32_t length = 0; // 0: the description has no such register
    bool Found() const { return length != 0; }
};

// The register named "<feature>_Reg" (how the virtual cameras' descriptions name a feature's
// register) in the description XML.
FeatureRegister FindFeatureRegister(const std::string& descriptionXml, const std::string& feature);

} // namespace Emulator
} // namespace Orvan

#endif
