// Lists returned by the node interfaces.
#ifndef GENAPI_CONTAINER_H
#define GENAPI_CONTAINER_H

#include <cstdint>
#include <vector>

namespace GenApi {

struct INode;
struct IValue;

class node_vector : public std::vector<INode*> {
public:
    using std::vector<INode*>::vector;
};

class value_vector : public std::vector<IValue*> {
public:
    using std::vector<IValue*>::vector;
};

class int64_autovector_t : public std::vector<int64_t> {
public:
    using std::vector<int64_t>::vector;
};

class double_autovector_t : public std::vector<double> {
public:
    using std::vector<double>::vector;
};

using NodeList_t = node_vector;
using FeatureList_t = value_vector;

} // namespace GenApi

#endif
