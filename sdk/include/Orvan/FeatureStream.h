// Feature files: the values of a node map's features saved to a GenApi persistence file and
// loaded back. A stream saves every streamable feature of its map, or, once one feature has been
// selected, only the selected ones, with the values they had when they were selected.
#ifndef ORVAN_FEATURESTREAM_H
#define ORVAN_FEATURESTREAM_H

#include <Base/GCString.h>
#include <GenApi/INodeMap.h>

#include <memory>

namespace Orvan {

struct FeatureStream_t;

class FeatureStream {
public:
    // A stream over nodeMap (not owned; it must outlive the stream) that saves the whole map.
    explicit FeatureStream(GenApi::INodeMap* nodeMap);
    // A stream without a node map, not to be used for Select, Write or Read.
    FeatureStream();
    virtual ~FeatureStream();
    FeatureStream(const FeatureStream&) = delete;
    FeatureStream& operator=(const FeatureStream&) = delete;

    // Adds the feature with its current value to the file's content; from then on only selected
    // features are saved. Throws LogicalErrorException, before anything is added, for a name
    // that is not a streamable value feature (commands, unknown names included).
    virtual void Select(GenICam::gcstring featureName);
    // Select, returning the stream: stream << "Width" << "Height".
    virtual FeatureStream& operator<<(GenICam::gcstring featureName);

    // Creates or truncates the file and writes the persistence file; without a selection the
    // whole map's streamable features are gathered first. A file that cannot be opened is
    // passed over silently.
    void Write(GenICam::gcstring fileName);
    // Writes the file's values back into the node map in file order. Throws RuntimeException
    // when the file is empty or missing, is not a GenApi persistence file, or was made by the
    // feature bagger; features that cannot be set are passed over.
    void Read(GenICam::gcstring fileName);

private:
    std::unique_ptr<FeatureStream_t> m_impl;
};

} // namespace Orvan

#endif
