#include "FeatureAccess.h"

#include "ToolError.h"

#include <Base/GCException.h>
#include <GenApi/AccessModeHelpers.h>
#include <GenApi/ICommand.h>
#include <GenApi/IValue.h>

#include <chrono>
#include <thread>

namespace Orvan {
namespace Cli {

namespace {

// A command such as DeviceReset may take a while on a real camera; beyond this it is stuck.
constexpr std::chrono::seconds kCommandTimeout{10};

std::string Name(GenApi::INode& node) {
    return node.GetName().c_str();
}

GenApi::IValue& ValueOf(GenApi::INode& node) {
    auto* value = dynamic_cast<GenApi::IValue*>(&node);
    if (!value || node.GetPrincipalInterfaceType() == GenApi::intfICategory)
        throw ToolError("'" + Name(node) + "' is a category, not a feature with a value");
    if (node.GetPrincipalInterfaceType() == GenApi::intfICommand)
        throw ToolError("'" + Name(node) + "' is a command (use 'orvan exec')");
    return *value;
}

} // namespace

GenApi::INode& FindFeature(GenApi::INodeMap* nodeMap, const std::string& name) {
    GenApi::INode* node = nodeMap ? nodeMap->GetNode(name.c_str()) : nullptr;
    if (!node || !GenApi::IsImplemented(node))
        throw ToolError("unknown feature '" + name + "'");
    return *node;
}

std::string ReadFeature(GenApi::INode& node) {
    GenApi::IValue& value = ValueOf(node);
    if (!GenApi::IsReadable(&node))
        throw ToolError("feature '" + Name(node) + "' is not readable now (access " +
                        AccessModeText(node) + ")");
    try {
        return value.ToString().c_str();
    } catch (const GenICam::GenericException& e) {
        throw ToolError("cannot read '" + Name(node) + "': " + e.GetDescription());
    }
}

void WriteFeature(GenApi::INode& node, const std::string& text) {
    GenApi::IValue& value = ValueOf(node);
    if (!GenApi::IsWritable(&node))
        throw ToolError("feature '" + Name(node) + "' is not writable now (access " +
                        AccessModeText(node) + ")");
    try {
        value.FromString(text.c_str());
    } catch (const GenICam::GenericException& e) {
        throw ToolError("cannot set '" + Name(node) + "' to '" + text + "': " + e.GetDescription());
    }
}

void ExecuteFeature(GenApi::INode& node) {
    auto* command = dynamic_cast<GenApi::ICommand*>(&node);
    if (!command)
        throw ToolError("'" + Name(node) + "' is not a command (use 'orvan set')");
    if (!GenApi::IsWritable(&node))
        throw ToolError("command '" + Name(node) + "' cannot be executed now (access " +
                        AccessModeText(node) + ")");
    try {
        command->Execute();
        const auto deadline = std::chrono::steady_clock::now() + kCommandTimeout;
        while (!command->IsDone()) {
            if (std::chrono::steady_clock::now() > deadline)
                throw ToolError("command '" + Name(node) + "' did not complete");
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    } catch (const GenICam::GenericException& e) {
        throw ToolError("cannot execute '" + Name(node) + "': " + e.GetDescription());
    }
}

const char* AccessModeText(GenApi::INode& node) {
    switch (node.GetAccessMode()) {
    case GenApi::NI:
        return "NI";
    case GenApi::NA:
        return "NA";
    case GenApi::WO:
        return "WO";
    case GenApi::RO:
        return "RO";
    case GenApi::RW:
        return "RW";
    default:
        return "?";
    }
}

} // namespace Cli
} // namespace Orvan
