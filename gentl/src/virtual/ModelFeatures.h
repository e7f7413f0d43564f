// What some models add to the shared features: transport selection for the multi-stream camera,
// event format and rate control for the event-based sensor.
#ifndef ORVAN_GENTL_VIRTUAL_MODELFEATURES_H
#define ORVAN_GENTL_VIRTUAL_MODELFEATURES_H

#include "CameraModel.h"
#include "DescriptionBuilder.h"

namespace Orvan {
namespace Producer {

enum class EventFormat : int64_t { EVT3_0 = 0 };

void DeclareModelFeatures(const CameraModel& model, DescriptionBuilder& builder);

} // namespace Producer
} // namespace Orvan

#endif
