// The element's "features" property: FEATURE=VALUE assignments separated by white space,
// written to the camera in the order given.
#ifndef ORVAN_GSTREAMER_FEATURESETTINGS_H
#define ORVAN_GSTREAMER_FEATURESETTINGS_H

#include <GenApi/INodeMap.h>

#include <string>
#include <utility>
#include <vector>

namespace Orvan {
namespace Gst {

using FeatureSettings = std::vector<std::pair<std::string, std::string>>;

// Throws std::invalid_argument naming the first word that is not FEATURE=VALUE. The whole text
// is checked before any of it reaches the camera.
FeatureSettings ParseFeatureSettings(const std::string& text);

// Throws std::runtime_error naming the feature that could not be set and why.
void ApplyFeatureSettings(GenApi::INodeMap* nodeMap, const FeatureSettings& settings);

} // namespace Gst
} // namespace Orvan

#endif
