// Reading, writing and executing one feature by name, with messages that say what the user got
// wrong (an unknown name, a read-only feature, a command used as a value) instead of the node
// map's internal wording.
#ifndef ORVAN_TOOLS_ORVAN_FEATUREACCESS_H
#define ORVAN_TOOLS_ORVAN_FEATUREACCESS_H

#include <GenApi/INode.h>
#include <GenApi/INodeMap.h>

#include <string>

namespace Orvan {
namespace Cli {

// Throws ToolError for a name the node map does not hold.
GenApi::INode& FindFeature(GenApi::INodeMap* nodeMap, const std::string& name);

// The value in the text form feature files and "orvan set" use.
std::string ReadFeature(GenApi::INode& node);
void WriteFeature(GenApi::INode& node, const std::string& value);
// Starts the command and waits for the camera to report it done.
void ExecuteFeature(GenApi::INode& node);

// "RW", "RO", ... as GenApi names access modes.
const char* AccessModeText(GenApi::INode& node);

} // namespace Cli
} // namespace Orvan

#endif
