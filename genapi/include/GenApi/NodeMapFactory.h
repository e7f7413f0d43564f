// Loads a camera description once and creates node maps from it.
#ifndef GENAPI_NODEMAPFACTORY_H
#define GENAPI_NODEMAPFACTORY_H

#include <GenApi/INodeMap.h>

#include <memory>

namespace GenApi {

class CNodeMapFactory {
public:
    CNodeMapFactory();
    // Reads the description from a file.
    CNodeMapFactory(EContentType_t contentType, const gcstring& fileName,
                    ECacheUsage_t cacheUsage = CacheUsage_Automatic,
                    bool suppressStringsOnLoad = false);
    // Takes the description from memory; the bytes are copied.
    CNodeMapFactory(EContentType_t contentType, const void* data, size_t dataSize,
                    ECacheUsage_t cacheUsage = CacheUsage_Automatic,
                    bool suppressStringsOnLoad = false);
    CNodeMapFactory(const CNodeMapFactory& other);
    CNodeMapFactory& operator=(const CNodeMapFactory& other);
    ~CNodeMapFactory();

    // The caller releases the map through IDestroy.
    INodeMap* CreateNodeMap(const gcstring& deviceName = "Device",
                            bool releaseCameraDescriptionFileData = true);
    // A factory holding the named node and every node it refers to, directly or not.
    CNodeMapFactory ExtractSubtree(const gcstring& subTreeRootName);

    bool IsEmpty() const;
    bool IsLoaded() const;
    bool IsPreprocessed() const;
    void Preprocess();
    void ReleaseCameraDescriptionFileData();
    void ToXml(gcstring& xml) const;
    gcstring ToXml() const;

    static void ClearCache() {}

    class Impl;

private:
    std::shared_ptr<Impl> m_impl;
};

} // namespace GenApi

#endif
