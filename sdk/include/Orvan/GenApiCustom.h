// Reading, writing and executing a node map's features by name, with one order of checks and
// one family of messages; and the names of two GenApi enumerations.
#ifndef ORVAN_GENAPICUSTOM_H
#define ORVAN_GENAPICUSTOM_H

#include <Base/GCString.h>
#include <GenApi/IEnumeration.h>
#include <GenApi/INodeMap.h>
#include <GenApi/Types.h>

#include <cstdint>

namespace Orvan {

// Every helper first checks, in this order: a node map, a non-empty name, a node that is
// implemented, available, and readable (getters) or writable (setters, ExecuteNode).

// T is bool, double, int64_t or GenICam::gcstring and must be the node's own type; an
// enumeration reads as its current entry's symbolic name.
template <class T>
T GetNodeValue(GenApi::INodeMap* nodeMap, const GenICam::gcstring& name);

// T as for GetNodeValue; an enumeration is set by one of its entries' symbolic names.
template <class T>
void SetNodeValue(GenApi::INodeMap* nodeMap, const GenICam::gcstring& name, const T& value);

// A register node's bytes. A null buffer only sets length to the register's length; a longer
// length is lowered to it.
void GetNodeValue(GenApi::INodeMap* nodeMap, const GenICam::gcstring& name, uint8_t* buffer,
                  int64_t& length);
// Writes length bytes to a register node. A null buffer only sets length to the register's
// length; a longer length is refused.
void SetNodeValue(GenApi::INodeMap* nodeMap, const GenICam::gcstring& name, const uint8_t* buffer,
                  int64_t& length);

// Starts a command; callers that need its completion poll ICommand::IsDone.
void ExecuteNode(GenApi::INodeMap* nodeMap, const GenICam::gcstring& name);

// Limits and increment of an integer or float node, converted to T (double or int64_t).
template <class T>
T GetNodeMin(GenApi::INodeMap* nodeMap, const GenICam::gcstring& name);
template <class T>
T GetNodeMax(GenApi::INodeMap* nodeMap, const GenICam::gcstring& name);
template <class T>
T GetNodeInc(GenApi::INodeMap* nodeMap, const GenICam::gcstring& name);

// Throws LogicalErrorException, listing the valid names, unless value is the symbolic name of
// one of the enumeration's entries, available or not.
void _throwLogicExceptionIfNotValidEnumEntry(GenApi::IEnumeration* enumeration,
                                             GenICam::gcstring value);

class EInterfaceTypeClass {
public:
    // Exact names such as "intfIInteger"; false, leaving *value alone, for anything else.
    static bool FromString(const GenICam::gcstring& text, GenApi::EInterfaceType* value);
    // "intfIUnknown" for a value outside the enumeration.
    static void ToString(GenICam::gcstring& text, GenApi::EInterfaceType value);
    static GenICam::gcstring ToString(GenApi::EInterfaceType value);
};

class EIncModeClass {
public:
    static bool FromString(const GenICam::gcstring& text, GenApi::EIncMode* value);
    // "unknownIncrement" for a value outside the enumeration.
    static void ToString(GenICam::gcstring& text, GenApi::EIncMode value);
    static GenICam::gcstring ToString(GenApi::EIncMode value);
};

} // namespace Orvan

#endif
