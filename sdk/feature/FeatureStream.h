// The implementation object of a FeatureStream: the feature bag, the node map it reads from and
// writes to, and whether the whole map is saved.
#ifndef ORVAN_FEATURE_FEATURESTREAM_H
#define ORVAN_FEATURE_FEATURESTREAM_H

#include <Orvan/FeatureStream.h>

#include <GenApi/INodeMap.h>
#include <GenApi/Persistence.h>

namespace Orvan {

struct FeatureStream_t {
    GenApi::CFeatureBag bag;
    GenApi::INodeMap* nodeMap = nullptr; // not owned
    // True from construction with a node map until the first Select.
    bool saveAll = false;
};

} // namespace Orvan

#endif
