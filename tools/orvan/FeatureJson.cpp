#include "FeatureJson.h"

#include "FeatureAccess.h"
#include "FeatureTree.h"

#include <Base/GCException.h>
#include <GenApi/AccessModeHelpers.h>
#include <GenApi/IEnumEntry.h>
#include <GenApi/IEnumeration.h>
#include <GenApi/IFloat.h>
#include <GenApi/IInteger.h>
#include <GenApi/IValue.h>

namespace Orvan {
namespace Cli {

namespace {

const char* VisibilityText(GenApi::EVisibility visibility) {
    switch (visibility) {
    case GenApi::Beginner:
        return "Beginner";
    case GenApi::Expert:
        return "Expert";
    case GenApi::Guru:
        return "Guru";
    default:
        return "Invisible";
    }
}

void AddInteger(GenApi::IInteger& feature, nlohmann::json& state) {
    state["min"] = feature.GetMin();
    state["max"] = feature.GetMax();
    if (feature.GetIncMode() == GenApi::fixedIncrement)
        state["inc"] = feature.GetInc();
    state["unit"] = feature.GetUnit().c_str();
}

void AddFloat(GenApi::IFloat& feature, nlohmann::json& state) {
    state["min"] = feature.GetMin();
    state["max"] = feature.GetMax();
    if (feature.HasInc())
        state["inc"] = feature.GetInc();
    state["unit"] = feature.GetUnit().c_str();
}

void AddEntries(GenApi::IEnumeration& feature, nlohmann::json& state) {
    GenApi::NodeList_t entries;
    feature.GetEntries(entries);
    nlohmann::json names = nlohmann::json::array();
    for (GenApi::INode* node : entries) {
        auto* entry = dynamic_cast<GenApi::IEnumEntry*>(node);
        if (entry && GenApi::IsAvailable(node))
            names.push_back(entry->GetSymbolic().c_str());
    }
    state["entries"] = std::move(names);
}

// Limits and entries are only asked of a feature that can be read now.
void AddDetails(GenApi::INode& node, nlohmann::json& state) {
    switch (node.GetPrincipalInterfaceType()) {
    case GenApi::intfIInteger:
        AddInteger(dynamic_cast<GenApi::IInteger&>(node), state);
        break;
    case GenApi::intfIFloat:
        AddFloat(dynamic_cast<GenApi::IFloat&>(node), state);
        break;
    case GenApi::intfIEnumeration:
        AddEntries(dynamic_cast<GenApi::IEnumeration&>(node), state);
        break;
    default:
        break;
    }
}

// Features that the transport layer locks while the stream runs (SFNC's TLParamsLocked): the
// viewer writes them with the stream stopped for the moment.
bool LockedByStream(GenApi::INode& node) {
    GenICam::gcstring lockedBy, attribute;
    return node.GetAccessMode() == GenApi::RO &&
           node.GetProperty("pIsLocked", lockedBy, attribute) &&
           std::string(lockedBy.c_str()).find("TLParamsLocked") != std::string::npos;
}

nlohmann::json Describe(const std::vector<FeatureEntry>& entries, GenApi::INodeMap* nodeMap) {
    nlohmann::json list = nlohmann::json::array();
    for (const FeatureEntry& entry : entries) {
        nlohmann::json item;
        if (entry.type == "Category") {
            item["features"] = Describe(entry.children, nodeMap);
        } else {
            GenApi::INode& node = FindFeature(nodeMap, entry.name);
            item = FeatureState(node);
            item["visibility"] = VisibilityText(node.GetVisibility());
            const std::string tip = node.GetToolTip().c_str();
            if (!tip.empty())
                item["tip"] = tip;
        }
        item["name"] = entry.name;
        item["type"] = entry.type;
        list.push_back(std::move(item));
    }
    return list;
}

} // namespace

nlohmann::json FeatureState(GenApi::INode& node) {
    nlohmann::json state = {{"access", AccessModeText(node)}};
    if (LockedByStream(node))
        state["lockedByStream"] = true;
    const GenApi::EInterfaceType type = node.GetPrincipalInterfaceType();
    if (type == GenApi::intfICommand || type == GenApi::intfIRegister || !GenApi::IsReadable(&node))
        return state;
    try {
        state["value"] = dynamic_cast<GenApi::IValue&>(node).ToString(false, true).c_str();
        AddDetails(node, state);
    } catch (const GenICam::GenericException&) {
        // Readable by its access mode yet refused at this moment: shown without a value.
    }
    return state;
}

nlohmann::json FeatureStateTree(GenApi::INodeMap* nodeMap) {
    return Describe(BuildFeatureTree(nodeMap, FeatureTreeOptions{}), nodeMap);
}

} // namespace Cli
} // namespace Orvan
