// A handle that loads a description into a node map it owns and forwards the map's functions.
#ifndef GENAPI_NODEMAPREF_H
#define GENAPI_NODEMAPREF_H

#include <GenApi/INodeMap.h>

#include <memory>

namespace GenApi {

class CNodeMapRef {
public:
    explicit CNodeMapRef(const gcstring& deviceName = "Device");
    // Shares an existing map; it is destroyed with the last CNodeMapRef that holds it.
    explicit CNodeMapRef(INodeMap* nodeMap, const gcstring& deviceName = "Device");
    CNodeMapRef(const CNodeMapRef& other);
    CNodeMapRef& operator=(const CNodeMapRef& other);
    virtual ~CNodeMapRef();

    void _Destroy();
    void _LoadXMLFromFile(const gcstring& fileName);
    void _LoadXMLFromZIPFile(const gcstring& zipFileName);
    void _LoadXMLFromString(const gcstring& xmlData);
    void _LoadXMLFromZIPData(const void* zipData, size_t zipSize);
    static void _GetSupportedSchemaVersions(gcstring_vector& schemaVersions);

    gcstring _GetDeviceName() const;
    void _Poll(int64_t elapsedTime);
    void _GetNodes(NodeList_t& nodes) const;
    INode* _GetNode(const gcstring& name) const;
    bool _Connect(IPort* port, const gcstring& portName) const;
    bool _Connect(IPort* port) const;
    void _InvalidateNodes() const;

    INodeMap* _Ptr;

private:
    void Attach(INodeMap* nodeMap);
    INodeMap* Checked() const;

    gcstring m_deviceName;
    std::shared_ptr<INodeMap> m_owner;
};

using CGenApiNodeMapRef = CNodeMapRef;

} // namespace GenApi

#endif
