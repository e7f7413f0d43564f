// Creates the node object for one description element.
#ifndef ORVAN_GENAPI_NODEFACTORY_H
#define ORVAN_GENAPI_NODEFACTORY_H

#include "Node.h"

#include <memory>

namespace GenApi {
namespace detail {

std::unique_ptr<Node> CreateNode(NodeMap& map, const NodeDescription& description);

} // namespace detail
} // namespace GenApi

#endif
