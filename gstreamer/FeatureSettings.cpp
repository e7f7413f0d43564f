#include "FeatureSettings.h"

#include "FeatureAccess.h"

#include <sstream>
#include <stdexcept>

namespace Orvan {
namespace Gst {

FeatureSettings ParseFeatureSettings(const std::string& text) {
    FeatureSettings settings;
    std::istringstream words(text);
    std::string word;
    while (words >> word) {
        const size_t equals = word.find('=');
        if (equals == std::string::npos || equals == 0)
            throw std::invalid_argument("expected FEATURE=VALUE, got '" + word + "'");
        settings.emplace_back(word.substr(0, equals), word.substr(equals + 1));
    }
    return settings;
}

void ApplyFeatureSettings(GenApi::INodeMap* nodeMap, const FeatureSettings& settings) {
    for (const auto& [name, value] : settings)
        Cli::WriteFeature(Cli::FindFeature(nodeMap, name), value);
}

} // namespace Gst
} // namespace Orvan
