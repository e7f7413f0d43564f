// A node map's features as the viewer's page shows them: the category tree, and for each
// feature what its control needs (value, access, limits and increment, enumeration entries).
#ifndef ORVAN_TOOLS_ORVAN_FEATUREJSON_H
#define ORVAN_TOOLS_ORVAN_FEATUREJSON_H

#include <GenApi/INode.h>
#include <GenApi/INodeMap.h>
#include <nlohmann/json.hpp>

namespace Orvan {
namespace Cli {

// {"access", "value", "min", "max", "inc", "unit", "entries", "lockedByStream"}, each only when
// the feature has it. Values are read past the cache, so that what the camera changed by itself
// shows. lockedByStream marks a feature that is read-only only while the stream runs.
nlohmann::json FeatureState(GenApi::INode& node);

// [{"name", "type": "Category", "features": [...]}, {"name", "type", "visibility", "tip", and
// the state}, ...] under the node map's Root.
nlohmann::json FeatureStateTree(GenApi::INodeMap* nodeMap);

} // namespace Cli
} // namespace Orvan

#endif
