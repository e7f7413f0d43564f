#include "NodeFactory.h"

#include "BooleanNode.h"
#include "CategoryNode.h"
#include "CommandNode.h"
#include "ConverterNode.h"
#include "EnumerationNode.h"
#include "FloatNode.h"
#include "FloatRegNode.h"
#include "IntRegNode.h"
#include "IntegerNode.h"
#include "PlainNode.h"
#include "PortNode.h"
#include "RegisterNode.h"
#include "StringNode.h"
#include "StringRegNode.h"
#include "SwissKnifeNode.h"

#include <Base/GCException.h>

#include <functional>
#include <unordered_map>

namespace GenApi {
namespace detail {

namespace {

using Maker = std::function<std::unique_ptr<Node>(NodeMap&, const NodeDescription&)>;

template <class T>
Maker Make() {
    return [](NodeMap& map, const NodeDescription& description) {
        return std::make_unique<T>(map, description);
    };
}

const std::unordered_map<std::string, Maker>& Makers() {
    // The IEEE 1394 kinds (ConfRom, IntKey, AdvFeatureLock, SmartFeature, DcamLock, TextDesc) are
    // registers read through their port like IntReg and StringReg.
    static const std::unordered_map<std::string, Maker> makers = {
        {"Node", Make<PlainNode>()},
        {"Category", Make<CategoryNode>()},
        {"Integer", Make<IntegerNode>()},
        {"IntReg", Make<IntRegNode>()},
        {"MaskedIntReg", Make<IntRegNode>()},
        {"ConfRom", Make<IntRegNode>()},
        {"IntKey", Make<IntRegNode>()},
        {"AdvFeatureLock", Make<IntRegNode>()},
        {"SmartFeature", Make<IntRegNode>()},
        {"DcamLock", Make<IntRegNode>()},
        {"IntSwissKnife", Make<IntSwissKnifeNode>()},
        {"IntConverter", Make<IntConverterNode>()},
        {"Float", Make<FloatNode>()},
        {"FloatReg", Make<FloatRegNode>()},
        {"SwissKnife", Make<FloatSwissKnifeNode>()},
        {"Converter", Make<FloatConverterNode>()},
        {"Boolean", Make<BooleanNode>()},
        {"Command", Make<CommandNode>()},
        {"Enumeration", Make<EnumerationNode>()},
        {"EnumEntry", Make<EnumEntryNode>()},
        {"String", Make<StringNode>()},
        {"StringReg", Make<StringRegNode>()},
        {"TextDesc", Make<StringRegNode>()},
        {"Register", Make<RegisterNode>()},
        {"Port", Make<PortNode>()},
    };
    return makers;
}

} // namespace

std::unique_ptr<Node> CreateNode(NodeMap& map, const NodeDescription& description) {
    auto found = Makers().find(description.kind);
    if (found == Makers().end())
        throw RUNTIME_EXCEPTION("Unknown node kind <%s> at line %u", description.kind.c_str(),
                                description.line);
    return found->second(map, description);
}

} // namespace detail
} // namespace GenApi
