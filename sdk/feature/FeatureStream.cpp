#include "feature/FeatureStream.h"

#include "core/ErrorTranslation.h"

#include <Base/GCException.h>
#include <GenApi/INode.h>
#include <GenApi/IValue.h>
#include <GenApi/Types.h>

#include <fstream>
#include <string>

namespace Orvan {

FeatureStream::FeatureStream(GenApi::INodeMap* nodeMap) : m_impl(new FeatureStream_t) {
    m_impl->nodeMap = nodeMap;
    m_impl->saveAll = true;
}

FeatureStream::FeatureStream() : m_impl(new FeatureStream_t) {}

FeatureStream::~FeatureStream() = default;

void FeatureStream::Select(GenICam::gcstring featureName) {
    GenApi::INode* node = m_impl->nodeMap ? m_impl->nodeMap->GetNode(featureName) : nullptr;
    // Categories and commands are value nodes of the engine too, but carry no value to keep.
    auto* value = dynamic_cast<GenApi::IValue*>(node);
    const bool streamable = value && node->IsStreamable() &&
                            node->GetPrincipalInterfaceType() != GenApi::intfICommand &&
                            node->GetPrincipalInterfaceType() != GenApi::intfICategory;
    if (!streamable)
        ThrowLibraryError<GenICam::LogicalErrorException>("Selected feature " + featureName.str() +
                                                              " not streamable",
                                                          ORVAN_SITE("FeatureStream", "Select"));
    m_impl->bag.PersistFeature(*value);
    m_impl->saveAll = false;
}

FeatureStream& FeatureStream::operator<<(GenICam::gcstring featureName) {
    Select(featureName);
    return *this;
}

void FeatureStream::Write(GenICam::gcstring fileName) {
    if (m_impl->saveAll)
        m_impl->bag.StoreToBag(m_impl->nodeMap, -1, nullptr);
    std::ofstream file(fileName.c_str(), std::ios::out | std::ios::trunc);
    if (!file.is_open())
        return;
    file << m_impl->bag;
}

void FeatureStream::Read(GenICam::gcstring fileName) {
    std::ifstream file(fileName.c_str());
    GenApi::CFeatureBag bag;
    file >> bag;
    GenApi::gcstring_vector errors;
    bag.LoadFromBag(m_impl->nodeMap, true, &errors);
}

} // namespace Orvan
