// Enumerations and small value types shared by every GenApi interface. The numeric values are
// part of the binary interface that applications and transport layers rely on.
#ifndef GENAPI_TYPES_H
#define GENAPI_TYPES_H

#include <Base/GCStringVector.h>

#include <cstdint>

namespace GenApi {

using GenICam::gcstring;
using GenICam::gcstring_vector;

enum EAccessMode { NI, NA, WO, RO, RW, _UndefinedAccesMode, _CycleDetectAccesMode };

enum EVisibility { Beginner = 0, Expert = 1, Guru = 2, Invisible = 3, _UndefinedVisibility = 99 };

enum ECachingMode { NoCache, WriteThrough, WriteAround, _UndefinedCachingMode };

enum ERepresentation {
    Linear,
    Logarithmic,
    Boolean,
    PureNumber,
    HexNumber,
    IPV4Address,
    MACAddress,
    _UndefinedRepresentation
};

enum EEndianess { BigEndian, LittleEndian, _UndefinedEndian };

enum ENameSpace { Custom, Standard, _UndefinedNameSpace };

enum EStandardNameSpace { None, IIDC, CL, GEV, USB, _UndefinedStandardNameSpace };

enum EYesNo { No = 0, Yes = 1, _UndefinedYesNo = 2 };

enum ESlope { Increasing, Decreasing, Varying, Automatic, _UndefinedESlope };

enum EDisplayNotation { fnAutomatic, fnFixed, fnScientific, _UndefinedEDisplayNotation };

enum EInputDirection { idFrom, idTo, idNone };

enum ESign { Signed, Unsigned, _UndefinedSign };

enum EIncMode { noIncrement, fixedIncrement, listIncrement };

enum EGenApiSchemaVersion { v1_0 = 1, v1_1 = 2, _Undefined = -1 };

enum EInterfaceType {
    intfIValue,
    intfIBase,
    intfIInteger,
    intfIBoolean,
    intfICommand,
    intfIFloat,
    intfIString,
    intfIRegister,
    intfICategory,
    intfIEnumeration,
    intfIEnumEntry,
    intfIPort
};

// Which links GetChildren follows.
enum ELinkType {
    ctAllDependingNodes,
    ctAllTerminalNodes,
    ctInvalidators,
    ctReadingChildren,
    ctWritingChildren,
    ctDependingChildren,
    ctDependingNodes,
    ctTerminalNodes,
    ctValueChildren
};

enum ECallbackType { cbPostInsideLock = 1, cbPostOutsideLock = 2 };

// Content of the buffer handed to CNodeMapFactory.
enum EContentType_t { ContentType_Auto, ContentType_Xml, ContentType_ZippedXml };

enum ECacheUsage_t {
    CacheUsage_Automatic,
    CacheUsage_ForceWrite,
    CacheUsage_ForceRead,
    CacheUsage_Ignore
};

using StringList_t = gcstring_vector;

} // namespace GenApi

#endif
