// Formats one line of the dump for a node: its attributes and what reading it returns.
#ifndef ORVAN_TOOLS_NODEDUMP_H
#define ORVAN_TOOLS_NODEDUMP_H

#include <Base/GCException.h>
#include <GenApi/INode.h>

#include <string>

// The name of the exception's class, as the dump prints it after "EXC:".
std::string ExceptionClassName(const GenICam::GenericException& exception);

// Name, interface, access, visibility, caching, streamable, value, min, max, inc; tab-separated.
std::string DumpNode(GenApi::INode& node);

#endif
