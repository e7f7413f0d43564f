// Builds a module's node map from the description the module serves.
#ifndef ORVAN_FEATURE_NODEMAPUTILITY_H
#define ORVAN_FEATURE_NODEMAPUTILITY_H

#include "core/Port.h"
#include "core/TLBase.h"

#include <GenApi/INodeMap.h>

#include <string>

namespace Orvan {

// The module's first description URL.
std::string GetUrl(TLBase* module);

// The module's node map connected to port, or null when its description cannot be read. The
// caller releases the map with DestroyNodeMap.
GenApi::INodeMap* InitNodeMap(TLBase* module, Port& port);

// Releases a map made by InitNodeMap through the engine that allocated it; null is ignored.
void DestroyNodeMap(GenApi::INodeMap* nodeMap) noexcept;

} // namespace Orvan

#endif
