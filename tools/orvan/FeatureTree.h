// A node map's features as the category tree under "Root", optionally narrowed by a name filter
// and carrying the current values; printed as indented text or as JSON.
#ifndef ORVAN_TOOLS_ORVAN_FEATURETREE_H
#define ORVAN_TOOLS_ORVAN_FEATURETREE_H

#include <GenApi/INodeMap.h>
#include <nlohmann/json.hpp>

#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace Orvan {
namespace Cli {

struct FeatureEntry {
    std::string name;
    std::string type;   // "Category", "Integer", "Enumeration", ...
    std::string access; // "RW", "RO", ...
    std::optional<std::string> value;
    std::vector<FeatureEntry> children;
};

struct FeatureTreeOptions {
    bool values = false;
    // Case-insensitive part of a feature name. A feature is kept when its name contains it; a
    // category when its own name does (then with everything under it) or when anything under
    // it is kept.
    std::string filter;
};

std::vector<FeatureEntry> BuildFeatureTree(GenApi::INodeMap* nodeMap,
                                           const FeatureTreeOptions& options);
void PrintFeatureTree(std::ostream& out, const std::vector<FeatureEntry>& tree);
nlohmann::json FeatureTreeToJson(const std::vector<FeatureEntry>& tree);

} // namespace Cli
} // namespace Orvan

#endif
