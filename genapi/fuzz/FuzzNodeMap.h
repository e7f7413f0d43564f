// Shared by the adapter fuzz targets: a node map built once from an inline description, and a
// pass that reads every feature of it the way an application would after an attach or event.
#ifndef ORVAN_GENAPI_FUZZ_FUZZNODEMAP_H
#define ORVAN_GENAPI_FUZZ_FUZZNODEMAP_H

#include <GenApi/GenApi.h>

#include <cstdlib>
#include <string>

namespace FuzzSupport {

inline GenApi::INodeMap* LoadMap(const std::string& xml) {
    GenApi::CNodeMapFactory factory(GenApi::ContentType_Xml, xml.data(), xml.size());
    return factory.CreateNodeMap("Device");
}

// Reading may fail in GenICam's own ways (unavailable, out of range); anything else that
// leaves the engine is a finding.
inline void ReadEverything(GenApi::INodeMap& map) {
    GenApi::NodeList_t nodes;
    map.GetNodes(nodes);
    for (GenApi::INode* node : nodes) {
        auto* value = dynamic_cast<GenApi::IValue*>(node);
        if (!value || node->GetPrincipalInterfaceType() == GenApi::intfICategory)
            continue;
        try {
            if (GenApi::IsReadable(node->GetAccessMode()))
                value->ToString();
        } catch (const GenICam::GenericException&) {
        }
    }
}

template <class Body>
void OnlyGenICamExceptions(Body body) {
    try {
        body();
    } catch (const GenICam::GenericException&) {
    } catch (...) {
        std::abort();
    }
}

} // namespace FuzzSupport

#endif
