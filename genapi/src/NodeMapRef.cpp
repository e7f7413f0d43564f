#include <GenApi/NodeMapRef.h>

#include <Base/GCException.h>
#include <GenApi/IDestroy.h>
#include <GenApi/NodeMapFactory.h>

namespace GenApi {

namespace {

void DestroyNodeMap(INodeMap* nodeMap) {
    if (auto* destroy = dynamic_cast<IDestroy*>(nodeMap))
        destroy->Destroy();
    else
        delete nodeMap;
}

} // namespace

CNodeMapRef::CNodeMapRef(const gcstring& deviceName) : _Ptr(nullptr), m_deviceName(deviceName) {}

CNodeMapRef::CNodeMapRef(INodeMap* nodeMap, const gcstring& deviceName)
    : _Ptr(nullptr), m_deviceName(deviceName) {
    Attach(nodeMap);
}

CNodeMapRef::CNodeMapRef(const CNodeMapRef& other) = default;
CNodeMapRef& CNodeMapRef::operator=(const CNodeMapRef& other) = default;
CNodeMapRef::~CNodeMapRef() = default;

void CNodeMapRef::Attach(INodeMap* nodeMap) {
    m_owner.reset(nodeMap, DestroyNodeMap);
    _Ptr = nodeMap;
}

INodeMap* CNodeMapRef::Checked() const {
    if (!_Ptr)
        throw ACCESS_EXCEPTION("No node map is loaded (reference not valid)");
    return _Ptr;
}

void CNodeMapRef::_Destroy() {
    m_owner.reset();
    _Ptr = nullptr;
}

void CNodeMapRef::_LoadXMLFromFile(const gcstring& fileName) {
    if (_Ptr)
        throw RUNTIME_EXCEPTION("A node map is already loaded");
    CNodeMapFactory factory(ContentType_Auto, fileName);
    Attach(factory.CreateNodeMap(m_deviceName));
}

void CNodeMapRef::_LoadXMLFromZIPFile(const gcstring& zipFileName) {
    if (_Ptr)
        throw RUNTIME_EXCEPTION("A node map is already loaded");
    CNodeMapFactory factory(ContentType_ZippedXml, zipFileName);
    Attach(factory.CreateNodeMap(m_deviceName));
}

void CNodeMapRef::_LoadXMLFromString(const gcstring& xmlData) {
    if (_Ptr)
        throw RUNTIME_EXCEPTION("A node map is already loaded");
    CNodeMapFactory factory(ContentType_Xml, xmlData.c_str(), xmlData.size());
    Attach(factory.CreateNodeMap(m_deviceName));
}

void CNodeMapRef::_LoadXMLFromZIPData(const void* zipData, size_t zipSize) {
    if (_Ptr)
        throw RUNTIME_EXCEPTION("A node map is already loaded");
    CNodeMapFactory factory(ContentType_ZippedXml, zipData, zipSize);
    Attach(factory.CreateNodeMap(m_deviceName));
}

void CNodeMapRef::_GetSupportedSchemaVersions(gcstring_vector& schemaVersions) {
    schemaVersions.clear();
    schemaVersions.push_back("1.0");
    schemaVersions.push_back("1.1");
}

gcstring CNodeMapRef::_GetDeviceName() const {
    return Checked()->GetDeviceName();
}

void CNodeMapRef::_Poll(int64_t elapsedTime) {
    Checked()->Poll(elapsedTime);
}

void CNodeMapRef::_GetNodes(NodeList_t& nodes) const {
    Checked()->GetNodes(nodes);
}

INode* CNodeMapRef::_GetNode(const gcstring& name) const {
    return Checked()->GetNode(name);
}

bool CNodeMapRef::_Connect(IPort* port, const gcstring& portName) const {
    return Checked()->Connect(port, portName);
}

bool CNodeMapRef::_Connect(IPort* port) const {
    return Checked()->Connect(port);
}

void CNodeMapRef::_InvalidateNodes() const {
    Checked()->InvalidateNodes();
}

} // namespace GenApi
