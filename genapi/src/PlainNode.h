// The Node element: a node with attributes and links but no value.
#ifndef ORVAN_GENAPI_PLAINNODE_H
#define ORVAN_GENAPI_PLAINNODE_H

#include "Node.h"

namespace GenApi {
namespace detail {

class PlainNode : public Node {
public:
    using Node::Node;
    EInterfaceType GetPrincipalInterfaceType() const override { return intfIBase; }
};

} // namespace detail
} // namespace GenApi

#endif
