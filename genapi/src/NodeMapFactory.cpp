#include <GenApi/NodeMapFactory.h>

#include "Description.h"
#include "NodeMap.h"

#include <Base/GCException.h>

#include <fstream>
#include <iterator>

namespace GenApi {

class CNodeMapFactory::Impl {
public:
    std::string data;
    EContentType_t contentType = ContentType_Auto;
    std::shared_ptr<detail::Description> description;

    void Preprocess() {
        if (description)
            return;
        if (data.empty())
            throw RUNTIME_EXCEPTION("The node map factory holds no camera description");
        description = detail::Description::FromBytes(data.data(), data.size(),
                                                     contentType == ContentType_ZippedXml,
                                                     contentType == ContentType_Auto);
    }
};

CNodeMapFactory::CNodeMapFactory() : m_impl(std::make_shared<Impl>()) {}

CNodeMapFactory::CNodeMapFactory(EContentType_t contentType, const gcstring& fileName,
                                 ECacheUsage_t, bool)
    : m_impl(std::make_shared<Impl>()) {
    std::ifstream file(fileName.c_str(), std::ios::binary);
    if (!file)
        throw RUNTIME_EXCEPTION("Cannot open the camera description file '%s'", fileName.c_str());
    m_impl->data.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    m_impl->contentType = contentType;
}

CNodeMapFactory::CNodeMapFactory(EContentType_t contentType, const void* data, size_t dataSize,
                                 ECacheUsage_t, bool)
    : m_impl(std::make_shared<Impl>()) {
    if (!data && dataSize != 0)
        throw INVALID_ARGUMENT_EXCEPTION("The camera description data pointer is null");
    if (data)
        m_impl->data.assign(static_cast<const char*>(data), dataSize);
    m_impl->contentType = contentType;
}

CNodeMapFactory::CNodeMapFactory(const CNodeMapFactory& other) = default;
CNodeMapFactory& CNodeMapFactory::operator=(const CNodeMapFactory& other) = default;
CNodeMapFactory::~CNodeMapFactory() = default;

INodeMap* CNodeMapFactory::CreateNodeMap(const gcstring& deviceName,
                                         bool releaseCameraDescriptionFileData) {
    m_impl->Preprocess();
    auto* map = new detail::NodeMap(deviceName.str(), m_impl->description->Nodes());
    if (releaseCameraDescriptionFileData)
        ReleaseCameraDescriptionFileData();
    return map;
}

CNodeMapFactory CNodeMapFactory::ExtractSubtree(const gcstring& subTreeRootName) {
    m_impl->Preprocess();
    CNodeMapFactory subtree;
    subtree.m_impl->description = m_impl->description->Subtree(subTreeRootName.str());
    return subtree;
}

bool CNodeMapFactory::IsEmpty() const {
    return m_impl->data.empty() && !m_impl->description;
}

bool CNodeMapFactory::IsLoaded() const {
    return !IsEmpty();
}

bool CNodeMapFactory::IsPreprocessed() const {
    return m_impl->description != nullptr;
}

void CNodeMapFactory::Preprocess() {
    m_impl->Preprocess();
}

void CNodeMapFactory::ReleaseCameraDescriptionFileData() {
    std::string().swap(m_impl->data);
}

void CNodeMapFactory::ToXml(gcstring& xml) const {
    m_impl->Preprocess();
    xml = m_impl->description->ToXml();
}

gcstring CNodeMapFactory::ToXml() const {
    gcstring xml;
    ToXml(xml);
    return xml;
}

} // namespace GenApi
