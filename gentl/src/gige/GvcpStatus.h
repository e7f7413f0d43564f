// What a camera's GVCP status code means to a GenTL caller.
#ifndef ORVAN_GENTL_GIGE_GVCPSTATUS_H
#define ORVAN_GENTL_GIGE_GVCPSTATUS_H

#include <GenTL/GenTL.h>

#include <cstdint>
#include <string>

namespace Orvan {
namespace Producer {

GenTL::GC_ERROR GvcpStatusError(uint16_t status);
// A sentence for the last-error text, naming the status code.
std::string GvcpStatusText(uint16_t status);

} // namespace Producer
} // namespace Orvan

#endif
