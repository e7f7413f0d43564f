#include "FeatureRegister.h"

#include <cstdlib>

namespace Orvan {
namespace Emulator {

namespace {

// The text of the first <tag> element after position `from`, inside the node ending at `end`.
std::string ElementText(const std::string& xml, const std::string& tag, size_t from, size_t end) {
    const std::string open = "<" + tag + ">";
    const size_t start = xml.find(open, from);
    if (start == std::string::npos || start > end)
        return {};
    const size_t close = xml.find("</" + tag + ">", start);
    if (close == std::string::npos || close > end)
        return {};
    return xml.substr(start + open.size(), close - start - open.size());
}

} // namespace

FeatureRegister FindFeatureRegister(const std::string& descriptionXml, const std::string& feature) {
    const size_t node = descriptionXml.find("Name=\"" + feature + "_Reg\"");
    if (node == std::string::npos)
        return {};
    const size_t end = descriptionXml.find("Reg>", node);
    const std::string address = ElementText(descriptionXml, "Address", node, end);
    const std::string length = ElementText(descriptionXml, "Length", node, end);
    if (address.empty() || length.empty())
        return {};
    return {std::strtoull(address.c_str(), nullptr, 0),
            uint32_t(std::strtoul(length.c_str(), nullptr, 10))};
}

} // namespace Emulator
} // namespace Orvan
