#include "FeatureTree.h"

#include "FeatureAccess.h"

#include <Base/GCException.h>
#include <GenApi/AccessModeHelpers.h>
#include <GenApi/ICategory.h>
#include <GenApi/IValue.h>

#include <algorithm>
#include <cctype>
#include <set>

namespace Orvan {
namespace Cli {

namespace {

const char* TypeName(GenApi::EInterfaceType type) {
    switch (type) {
    case GenApi::intfIInteger:
        return "Integer";
    case GenApi::intfIBoolean:
        return "Boolean";
    case GenApi::intfICommand:
        return "Command";
    case GenApi::intfIFloat:
        return "Float";
    case GenApi::intfIString:
        return "String";
    case GenApi::intfIRegister:
        return "Register";
    case GenApi::intfICategory:
        return "Category";
    case GenApi::intfIEnumeration:
        return "Enumeration";
    default:
        return "Value";
    }
}

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

// Registers are raw bytes and commands have no value worth printing.
std::optional<std::string> ValueText(GenApi::INode& node) {
    const GenApi::EInterfaceType type = node.GetPrincipalInterfaceType();
    if (type == GenApi::intfICommand || type == GenApi::intfIRegister || !GenApi::IsReadable(&node))
        return std::nullopt;
    try {
        return std::string(dynamic_cast<GenApi::IValue&>(node).ToString().c_str());
    } catch (const GenICam::GenericException&) {
        return std::nullopt; // unreadable at this moment; the tree is still worth printing
    }
}

class TreeBuilder {
public:
    explicit TreeBuilder(const FeatureTreeOptions& options)
        : m_options(options), m_filter(Lower(options.filter)) {}

    // Empty when neither the node nor anything under it passes the filter.
    std::optional<FeatureEntry> Build(GenApi::INode& node, bool forceKeep) {
        const std::string name = node.GetName().c_str();
        const bool matches = forceKeep || Lower(name).find(m_filter) != std::string::npos;
        FeatureEntry entry{name,
                           TypeName(node.GetPrincipalInterfaceType()),
                           AccessModeText(node),
                           std::nullopt,
                           {}};
        auto* category = dynamic_cast<GenApi::ICategory*>(&node);
        if (category && node.GetPrincipalInterfaceType() == GenApi::intfICategory) {
            // A description may list a category under itself; print it once.
            if (!m_visited.insert(name).second)
                return std::nullopt;
            GenApi::FeatureList_t features;
            category->GetFeatures(features);
            for (GenApi::IValue* feature : features)
                if (GenApi::INode* child = feature ? feature->GetNode() : nullptr)
                    if (auto built = Build(*child, matches && !m_filter.empty()))
                        entry.children.push_back(std::move(*built));
            if (!matches && entry.children.empty())
                return std::nullopt;
            return entry;
        }
        if (!matches || !GenApi::IsImplemented(&node))
            return std::nullopt;
        if (m_options.values)
            entry.value = ValueText(node);
        return entry;
    }

private:
    const FeatureTreeOptions& m_options;
    const std::string m_filter;
    std::set<std::string> m_visited;
};

void PrintEntries(std::ostream& out, const std::vector<FeatureEntry>& entries, int depth) {
    for (const FeatureEntry& entry : entries) {
        const std::string indent(static_cast<size_t>(depth) * 2, ' ');
        if (entry.type == "Category") {
            out << indent << entry.name << '\n';
            PrintEntries(out, entry.children, depth + 1);
            continue;
        }
        out << indent << entry.name << " (" << entry.type << ", " << entry.access << ')';
        if (entry.value)
            out << " = " << *entry.value;
        out << '\n';
    }
}

} // namespace

std::vector<FeatureEntry> BuildFeatureTree(GenApi::INodeMap* nodeMap,
                                           const FeatureTreeOptions& options) {
    GenApi::INode* root = nodeMap ? nodeMap->GetNode("Root") : nullptr;
    if (!root)
        return {};
    TreeBuilder builder(options);
    std::optional<FeatureEntry> tree = builder.Build(*root, false);
    return tree ? tree->children : std::vector<FeatureEntry>{};
}

void PrintFeatureTree(std::ostream& out, const std::vector<FeatureEntry>& tree) {
    PrintEntries(out, tree, 0);
}

nlohmann::json FeatureTreeToJson(const std::vector<FeatureEntry>& tree) {
    nlohmann::json list = nlohmann::json::array();
    for (const FeatureEntry& entry : tree) {
        nlohmann::json item = {{"name", entry.name}, {"type", entry.type}};
        if (entry.type == "Category") {
            item["features"] = FeatureTreeToJson(entry.children);
        } else {
            item["access"] = entry.access;
            if (entry.value)
                item["value"] = *entry.value;
        }
        list.push_back(std::move(item));
    }
    return list;
}

} // namespace Cli
} // namespace Orvan
