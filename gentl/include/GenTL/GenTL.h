/*
 * GenTL 1.6 C interface of the Orvan producer: handle and value types, error codes, info
 * commands and the other enumerations, the data structures and every entry point.
 *
 * The same declarations serve C and C++. A C translation unit sees them at global scope; C++
 * sees them inside namespace GenTL (so callers write GenTL::GCInitLib), while extern "C" keeps
 * every exported symbol the plain C name that GenTL consumers look up in the .cti.
 *
 * Enumerations follow the usual GenTL layout: the values are listed in an enum named X_LIST and
 * the type used in signatures is a 32-bit integer typedef X, so producers may hand out values
 * beyond the list (the *_CUSTOM_ID ranges) without leaving the type.
 *
 * Build switch: define ORVAN_GENTL_BUILD when compiling the producer itself; its entry points are
 * then exported with default visibility.
 */
#ifndef ORVAN_GENTL_GENTL_H
#define ORVAN_GENTL_GENTL_H

#include <stddef.h>
#include <stdint.h>

/* ---- Version of the GenTL interface described here ------------------------------------------ */

#define GenTLMajorVersion 1
#define GenTLMinorVersion 6
#define GenTLSubMinorVersion 0

#define GC_GENTL_HEADER_VERSION_CODE(major, minor, subminor)                                       \
    (((major) << 24) + ((minor) << 16) + (subminor))
#define GC_GENTL_HEADER_VERSION                                                                    \
    GC_GENTL_HEADER_VERSION_CODE(GenTLMajorVersion, GenTLMinorVersion, GenTLSubMinorVersion)

/* ---- Calling convention, symbol export ------------------------------------------------------ */

#ifndef GC_CALLTYPE
#if defined(_WIN32)
#define GC_CALLTYPE __stdcall
#else
#define GC_CALLTYPE
#endif
#endif

#ifndef GC_IMPORT_EXPORT
#if defined(_WIN32)
#if defined(ORVAN_GENTL_BUILD)
#define GC_IMPORT_EXPORT __declspec(dllexport)
#else
#define GC_IMPORT_EXPORT __declspec(dllimport)
#endif
#elif defined(ORVAN_GENTL_BUILD) && (defined(__GNUC__) || defined(__clang__))
#define GC_IMPORT_EXPORT __attribute__((visibility("default")))
#else
#define GC_IMPORT_EXPORT
#endif
#endif

/* Declares an entry point: GC_API GCInitLib(void); */
#define GC_API GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE
/* Declares the matching pointer type: GC_API_P(PGCInitLib)(void); */
#define GC_API_P(name) typedef GC_ERROR(GC_CALLTYPE* name)

/* ---- Fixed names ---------------------------------------------------------------------------- */

/* Module names, as reported by PORT_INFO_MODULE. */
#define TLSystemModuleName "TLSystem"
#define TLInterfaceModuleName "TLInterface"
#define TLDeviceModuleName "TLDevice"
#define TLDataStreamModuleName "TLDataStream"
#define TLBufferModuleName "TLBuffer"
#define TLRemoteDeviceModuleName "Device"

/* Transport-layer type names reported by the *_INFO_TLTYPE commands. */
#define TLTypeMixedName "Mixed"
#define TLTypeCustomName "Custom"
#define TLTypeGEVName "GEV"
#define TLTypeCLName "CL"
#define TLTypeIIDCName "IIDC"
#define TLTypeUVCName "UVC"
#define TLTypeCXPName "CXP"
#define TLTypeCLHSName "CLHS"
#define TLTypeU3VName "U3V"
#define TLTypeETHERNETName "Ethernet"
#define TLTypePCIName "PCI"

/* No valid handle ever compares equal to this. */
#define GENTL_INVALID_HANDLE NULL
/* Timeout value meaning "wait forever", and count meaning "no limit" for DSStartAcquisition. */
#define GENTL_INFINITE 0xFFFFFFFFFFFFFFFFULL

#ifdef __cplusplus
namespace GenTL {
extern "C" {
#endif

/* ---- Handles and basic types ---------------------------------------------------------------- */

typedef void* TL_HANDLE;       /* system module, from TLOpen */
typedef void* IF_HANDLE;       /* interface module, from TLOpenInterface */
typedef void* DEV_HANDLE;      /* device module, from IFOpenDevice */
typedef void* DS_HANDLE;       /* data stream module, from DevOpenDataStream */
typedef void* PORT_HANDLE;     /* any module with a register space, or the remote device */
typedef void* BUFFER_HANDLE;   /* announced buffer, from DS(Alloc)AnnounceBuffer */
typedef void* EVENTSRC_HANDLE; /* any module that can signal events */
typedef void* EVENT_HANDLE;    /* registered event, from GCRegisterEvent */

typedef uint8_t bool8_t; /* one byte; zero is false */

/* ---- Error codes ---------------------------------------------------------------------------- */

enum GC_ERROR_LIST {
    GC_ERR_SUCCESS = 0,
    GC_ERR_ERROR = -1001, /* failure without a more precise code */
    GC_ERR_NOT_INITIALIZED = -1002,
    GC_ERR_NOT_IMPLEMENTED = -1003,
    GC_ERR_RESOURCE_IN_USE = -1004,
    GC_ERR_ACCESS_DENIED = -1005,
    GC_ERR_INVALID_HANDLE = -1006,
    GC_ERR_INVALID_ID = -1007,
    GC_ERR_NO_DATA = -1008,
    GC_ERR_INVALID_PARAMETER = -1009,
    GC_ERR_IO = -1010,
    GC_ERR_TIMEOUT = -1011,
    GC_ERR_ABORT = -1012, /* wait ended by EventKill or an acquisition stop */
    GC_ERR_INVALID_BUFFER = -1013,
    GC_ERR_NOT_AVAILABLE = -1014,
    GC_ERR_INVALID_ADDRESS = -1015,
    GC_ERR_BUFFER_TOO_SMALL = -1016,
    GC_ERR_INVALID_INDEX = -1017,
    GC_ERR_PARSING_CHUNK_DATA = -1018,
    GC_ERR_INVALID_VALUE = -1019,
    GC_ERR_RESOURCE_EXHAUSTED = -1020,
    GC_ERR_OUT_OF_MEMORY = -1021,
    GC_ERR_BUSY = -1022,
    GC_ERR_AMBIGUOUS = -1023,
    GC_ERR_CUSTOM_ID = -10000 /* producer codes count down from here */
};
typedef int32_t GC_ERROR;

/* ---- Data types of info values -------------------------------------------------------------- */

enum INFO_DATATYPE_LIST {
    INFO_DATATYPE_UNKNOWN = 0,
    INFO_DATATYPE_STRING = 1,     /* NUL-terminated text; size includes the terminator */
    INFO_DATATYPE_STRINGLIST = 2, /* NUL-separated texts ending with an empty one */
    INFO_DATATYPE_INT16 = 3,
    INFO_DATATYPE_UINT16 = 4,
    INFO_DATATYPE_INT32 = 5,
    INFO_DATATYPE_UINT32 = 6,
    INFO_DATATYPE_INT64 = 7,
    INFO_DATATYPE_UINT64 = 8,
    INFO_DATATYPE_FLOAT64 = 9,
    INFO_DATATYPE_PTR = 10,
    INFO_DATATYPE_BOOL8 = 11,
    INFO_DATATYPE_SIZET = 12,
    INFO_DATATYPE_BUFFER = 13, /* raw bytes */
    INFO_DATATYPE_PTRDIFF = 14,
    INFO_DATATYPE_CUSTOM_ID = 1000
};
typedef int32_t INFO_DATATYPE;

/* ---- System module -------------------------------------------------------------------------- */

enum TL_CHAR_ENCODING_LIST { TL_CHAR_ENCODING_ASCII = 0, TL_CHAR_ENCODING_UTF8 = 1 };
typedef int32_t TL_CHAR_ENCODING;

/* Queried with TLGetInfo and, for the library as a whole, GCGetInfo. */
enum TL_INFO_CMD_LIST {
    TL_INFO_ID = 0,
    TL_INFO_VENDOR = 1,
    TL_INFO_MODEL = 2,
    TL_INFO_VERSION = 3,
    TL_INFO_TLTYPE = 4,
    TL_INFO_NAME = 5,     /* file name of the producer */
    TL_INFO_PATHNAME = 6, /* full path of the producer */
    TL_INFO_DISPLAYNAME = 7,
    TL_INFO_CHAR_ENCODING = 8, /* TL_CHAR_ENCODING of all strings */
    TL_INFO_GENTL_VER_MAJOR = 9,
    TL_INFO_GENTL_VER_MINOR = 10,
    TL_INFO_CUSTOM_ID = 1000
};
typedef int32_t TL_INFO_CMD;

/* ---- Interface module ----------------------------------------------------------------------- */

enum INTERFACE_INFO_CMD_LIST {
    INTERFACE_INFO_ID = 0,
    INTERFACE_INFO_DISPLAYNAME = 1,
    INTERFACE_INFO_TLTYPE = 2,
    INTERFACE_INFO_CUSTOM_ID = 1000
};
typedef int32_t INTERFACE_INFO_CMD;

/* ---- Device module -------------------------------------------------------------------------- */

/* How IFOpenDevice should open a device. */
enum DEVICE_ACCESS_FLAGS_LIST {
    DEVICE_ACCESS_UNKNOWN = 0,
    DEVICE_ACCESS_NONE = 1,
    DEVICE_ACCESS_READONLY = 2,
    DEVICE_ACCESS_CONTROL = 3,
    DEVICE_ACCESS_EXCLUSIVE = 4,
    DEVICE_ACCESS_CUSTOM_ID = 1000
};
typedef int32_t DEVICE_ACCESS_FLAGS;

/* Answer to DEVICE_INFO_ACCESS_STATUS. */
enum DEVICE_ACCESS_STATUS_LIST {
    DEVICE_ACCESS_STATUS_UNKNOWN = 0,
    DEVICE_ACCESS_STATUS_READWRITE = 1,
    DEVICE_ACCESS_STATUS_READONLY = 2,
    DEVICE_ACCESS_STATUS_NOACCESS = 3,
    DEVICE_ACCESS_STATUS_BUSY = 4,
    DEVICE_ACCESS_STATUS_OPEN_READWRITE = 5,
    DEVICE_ACCESS_STATUS_OPEN_READONLY = 6,
    DEVICE_ACCESS_STATUS_CUSTOM_ID = 1000
};
typedef int32_t DEVICE_ACCESS_STATUS;

/* Queried with IFGetDeviceInfo (device not yet open) and DevGetInfo. */
enum DEVICE_INFO_CMD_LIST {
    DEVICE_INFO_ID = 0,
    DEVICE_INFO_VENDOR = 1,
    DEVICE_INFO_MODEL = 2,
    DEVICE_INFO_TLTYPE = 3,
    DEVICE_INFO_DISPLAYNAME = 4,
    DEVICE_INFO_ACCESS_STATUS = 5,
    DEVICE_INFO_USER_DEFINED_NAME = 6,
    DEVICE_INFO_SERIAL_NUMBER = 7,
    DEVICE_INFO_VERSION = 8,
    DEVICE_INFO_TIMESTAMP_FREQUENCY = 9, /* ticks per second of the device clock */
    DEVICE_INFO_CUSTOM_ID = 1000
};
typedef int32_t DEVICE_INFO_CMD;

/* ---- Data stream module --------------------------------------------------------------------- */

enum ACQ_START_FLAGS_LIST { ACQ_START_FLAGS_DEFAULT = 0, ACQ_START_FLAGS_CUSTOM_ID = 1000 };
typedef int32_t ACQ_START_FLAGS;

enum ACQ_STOP_FLAGS_LIST {
    ACQ_STOP_FLAGS_DEFAULT = 0,
    ACQ_STOP_FLAGS_KILL = 1, /* abort the buffer being filled */
    ACQ_STOP_FLAGS_CUSTOM_ID = 1000
};
typedef int32_t ACQ_STOP_FLAGS;

/* Operation of DSFlushQueue. */
enum ACQ_QUEUE_TYPE_LIST {
    ACQ_QUEUE_INPUT_TO_OUTPUT = 0,   /* input pool to output queue */
    ACQ_QUEUE_OUTPUT_DISCARD = 1,    /* drop what waits in the output queue */
    ACQ_QUEUE_ALL_TO_INPUT = 2,      /* every announced buffer back to the input pool */
    ACQ_QUEUE_UNQUEUED_TO_INPUT = 3, /* announced but unqueued buffers to the input pool */
    ACQ_QUEUE_ALL_DISCARD = 4,       /* empty input pool and output queue */
    ACQ_QUEUE_CUSTOM_ID = 1000
};
typedef int32_t ACQ_QUEUE_TYPE;

/* Queried with DSGetInfo. */
enum STREAM_INFO_CMD_LIST {
    STREAM_INFO_ID = 0,
    STREAM_INFO_NUM_DELIVERED = 1,
    STREAM_INFO_NUM_UNDERRUN = 2,
    STREAM_INFO_NUM_ANNOUNCED = 3,
    STREAM_INFO_NUM_QUEUED = 4,
    STREAM_INFO_NUM_AWAIT_DELIVERY = 5,
    STREAM_INFO_NUM_STARTED = 6,
    STREAM_INFO_PAYLOAD_SIZE = 7,
    STREAM_INFO_IS_GRABBING = 8,
    STREAM_INFO_DEFINES_PAYLOADSIZE = 9,
    STREAM_INFO_TLTYPE = 10,
    STREAM_INFO_NUM_CHUNKS_MAX = 11,
    STREAM_INFO_BUF_ANNOUNCE_MIN = 12,
    STREAM_INFO_BUF_ALIGNMENT = 13,
    STREAM_INFO_CUSTOM_ID = 1000
};
typedef int32_t STREAM_INFO_CMD;

/* Queried with DSGetFlowInfo. */
enum FLOW_INFO_CMD_LIST { FLOW_INFO_SIZE = 0, FLOW_INFO_CUSTOM_ID = 1000 };
typedef int32_t FLOW_INFO_CMD;

/* ---- Buffers -------------------------------------------------------------------------------- */

/* Queried with DSGetBufferInfo. */
enum BUFFER_INFO_CMD_LIST {
    BUFFER_INFO_BASE = 0, /* PTR: start of the buffer memory */
    BUFFER_INFO_SIZE = 1, /* SIZET: size of the buffer memory */
    BUFFER_INFO_USER_PTR = 2,
    BUFFER_INFO_TIMESTAMP = 3, /* UINT64, device clock ticks */
    BUFFER_INFO_NEW_DATA = 4,
    BUFFER_INFO_IS_QUEUED = 5,
    BUFFER_INFO_IS_ACQUIRING = 6,
    BUFFER_INFO_IS_INCOMPLETE = 7,
    BUFFER_INFO_TLTYPE = 8,
    BUFFER_INFO_SIZE_FILLED = 9,
    BUFFER_INFO_WIDTH = 10,
    BUFFER_INFO_HEIGHT = 11,
    BUFFER_INFO_XOFFSET = 12,
    BUFFER_INFO_YOFFSET = 13,
    BUFFER_INFO_XPADDING = 14,
    BUFFER_INFO_YPADDING = 15,
    BUFFER_INFO_FRAMEID = 16,
    BUFFER_INFO_IMAGEPRESENT = 17,
    BUFFER_INFO_IMAGEOFFSET = 18,
    BUFFER_INFO_PAYLOADTYPE = 19, /* PAYLOADTYPE_INFO_ID */
    BUFFER_INFO_PIXELFORMAT = 20,
    BUFFER_INFO_PIXELFORMAT_NAMESPACE = 21, /* PIXELFORMAT_NAMESPACE_ID */
    BUFFER_INFO_DELIVERED_IMAGEHEIGHT = 22,
    BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE = 23,
    BUFFER_INFO_CHUNKLAYOUTID = 24,
    BUFFER_INFO_FILENAME = 25,
    BUFFER_INFO_PIXEL_ENDIANNESS = 26, /* PIXELENDIANNESS_ID */
    BUFFER_INFO_DATA_SIZE = 27,        /* bytes sent, even when more than the buffer holds */
    BUFFER_INFO_TIMESTAMP_NS = 28,     /* UINT64, nanoseconds */
    BUFFER_INFO_DATA_LARGER_THAN_BUFFER = 29,
    BUFFER_INFO_CONTAINS_CHUNKDATA = 30,
    BUFFER_INFO_CUSTOM_ID = 1000
};
typedef int32_t BUFFER_INFO_CMD;

/* Queried with DSGetBufferPartInfo for one part of a multi-part buffer. */
enum BUFFER_PART_INFO_CMD_LIST {
    BUFFER_PART_INFO_BASE = 0,
    BUFFER_PART_INFO_DATA_SIZE = 1,
    BUFFER_PART_INFO_DATA_TYPE = 2, /* PARTDATATYPE_ID */
    BUFFER_PART_INFO_DATA_FORMAT = 3,
    BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE = 4,
    BUFFER_PART_INFO_WIDTH = 5,
    BUFFER_PART_INFO_HEIGHT = 6,
    BUFFER_PART_INFO_XOFFSET = 7,
    BUFFER_PART_INFO_YOFFSET = 8,
    BUFFER_PART_INFO_XPADDING = 9,
    BUFFER_PART_INFO_SOURCE_ID = 10,
    BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT = 11,
    BUFFER_PART_INFO_REGION_ID = 12,
    BUFFER_PART_INFO_DATA_PURPOSE_ID = 13,
    BUFFER_PART_INFO_CUSTOM_ID = 1000
};
typedef int32_t BUFFER_PART_INFO_CMD;

/* Answer to BUFFER_INFO_PAYLOADTYPE. */
enum PAYLOADTYPE_INFO_IDS {
    PAYLOAD_TYPE_UNKNOWN = 0,
    PAYLOAD_TYPE_IMAGE = 1,
    PAYLOAD_TYPE_RAW_DATA = 2,
    PAYLOAD_TYPE_FILE = 3,
    PAYLOAD_TYPE_CHUNK_DATA = 4, /* chunk data only; older name of PAYLOAD_TYPE_CHUNK_ONLY */
    PAYLOAD_TYPE_JPEG = 5,
    PAYLOAD_TYPE_JPEG2000 = 6,
    PAYLOAD_TYPE_H264 = 7,
    PAYLOAD_TYPE_CHUNK_ONLY = 8,
    PAYLOAD_TYPE_DEVICE_SPECIFIC = 9,
    PAYLOAD_TYPE_MULTI_PART = 10,
    PAYLOAD_TYPE_CUSTOM_ID = 1000
};
typedef int32_t PAYLOADTYPE_INFO_ID;

/* Answer to BUFFER_INFO_PIXELFORMAT_NAMESPACE. */
enum PIXELFORMAT_NAMESPACE_IDS {
    PIXELFORMAT_NAMESPACE_UNKNOWN = 0,
    PIXELFORMAT_NAMESPACE_GEV = 1,
    PIXELFORMAT_NAMESPACE_IIDC = 2,
    PIXELFORMAT_NAMESPACE_PFNC_16BIT = 3,
    PIXELFORMAT_NAMESPACE_PFNC_32BIT = 4,
    PIXELFORMAT_NAMESPACE_CUSTOM_ID = 1000
};
typedef int32_t PIXELFORMAT_NAMESPACE_ID;

/* Answer to BUFFER_INFO_PIXEL_ENDIANNESS. */
enum PIXELENDIANNESS_IDS {
    PIXELENDIANNESS_UNKNOWN = 0,
    PIXELENDIANNESS_LITTLE = 1,
    PIXELENDIANNESS_BIG = 2
};
typedef int32_t PIXELENDIANNESS_ID;

/* Answer to BUFFER_PART_INFO_DATA_TYPE. */
enum PARTDATATYPE_IDS {
    PART_DATATYPE_UNKNOWN = 0,
    PART_DATATYPE_2D_IMAGE = 1,
    PART_DATATYPE_2D_PLANE_BIPLANAR = 2,
    PART_DATATYPE_2D_PLANE_TRIPLANAR = 3,
    PART_DATATYPE_2D_PLANE_QUADPLANAR = 4,
    PART_DATATYPE_3D_IMAGE = 5,
    PART_DATATYPE_3D_PLANE_BIPLANAR = 6,
    PART_DATATYPE_3D_PLANE_TRIPLANAR = 7,
    PART_DATATYPE_3D_PLANE_QUADPLANAR = 8,
    PART_DATATYPE_CONFIDENCE_MAP = 9,
    PART_DATATYPE_CUSTOM_ID = 1000
};
typedef int32_t PARTDATATYPE_ID;

/* ---- Ports and description-file locations --------------------------------------------------- */

/* Queried with GCGetPortInfo. */
enum PORT_INFO_CMD_LIST {
    PORT_INFO_ID = 0,
    PORT_INFO_VENDOR = 1,
    PORT_INFO_MODEL = 2,
    PORT_INFO_TLTYPE = 3,
    PORT_INFO_MODULE = 4, /* one of the *ModuleName strings */
    PORT_INFO_LITTLE_ENDIAN = 5,
    PORT_INFO_BIG_ENDIAN = 6,
    PORT_INFO_ACCESS_READ = 7,
    PORT_INFO_ACCESS_WRITE = 8,
    PORT_INFO_ACCESS_NA = 9,
    PORT_INFO_ACCESS_NI = 10,
    PORT_INFO_VERSION = 11,
    PORT_INFO_PORTNAME = 12, /* name to connect the port to in the node map */
    PORT_INFO_CUSTOM_ID = 1000
};
typedef int32_t PORT_INFO_CMD;

/* Answer to URL_INFO_SCHEME. */
enum URL_SCHEME_IDS {
    URL_SCHEME_LOCAL = 0, /* "local:" - file inside the module's register space */
    URL_SCHEME_HTTP = 1,
    URL_SCHEME_FILE = 2,
    URL_SCHEME_CUSTOM_ID = 1000
};
typedef int32_t URL_SCHEME_ID;

/* Queried with GCGetPortURLInfo for one description-file location. */
enum URL_INFO_CMD_LIST {
    URL_INFO_URL = 0,
    URL_INFO_SCHEMA_VER_MAJOR = 1,
    URL_INFO_SCHEMA_VER_MINOR = 2,
    URL_INFO_FILE_VER_MAJOR = 3,
    URL_INFO_FILE_VER_MINOR = 4,
    URL_INFO_FILE_VER_SUBMINOR = 5,
    URL_INFO_FILE_SHA1_HASH = 6,
    URL_INFO_FILE_REGISTER_ADDRESS = 7,
    URL_INFO_FILE_SIZE = 8,
    URL_INFO_SCHEME = 9, /* URL_SCHEME_ID */
    URL_INFO_FILENAME = 10,
    URL_INFO_CUSTOM_ID = 1000
};
typedef int32_t URL_INFO_CMD;

/* ---- Events --------------------------------------------------------------------------------- */

/* Event kinds for GCRegisterEvent. */
enum EVENT_TYPE_LIST {
    EVENT_ERROR = 0,
    EVENT_NEW_BUFFER = 1, /* data: EVENT_NEW_BUFFER_DATA */
    EVENT_FEATURE_INVALIDATE = 2,
    EVENT_FEATURE_CHANGE = 3,
    EVENT_REMOTE_DEVICE = 4, /* events sent by the camera itself */
    EVENT_MODULE = 5,
    EVENT_CUSTOM_ID = 1000
};
typedef int32_t EVENT_TYPE;

/* Queried with EventGetInfo. */
enum EVENT_INFO_CMD_LIST {
    EVENT_EVENT_TYPE = 0,
    EVENT_NUM_IN_QUEUE = 1,
    EVENT_NUM_FIRED = 2,
    EVENT_SIZE_MAX = 3,
    EVENT_INFO_DATA_SIZE_MAX = 4,
    EVENT_INFO_CUSTOM_ID = 1000
};
typedef int32_t EVENT_INFO_CMD;

/* Queried with EventGetDataInfo on data returned by EventGetData. */
enum EVENT_DATA_INFO_CMD_LIST {
    EVENT_DATA_ID = 0,
    EVENT_DATA_VALUE = 1,
    EVENT_DATA_NUMID = 2,
    EVENT_DATA_CUSTOM_ID = 1000
};
typedef int32_t EVENT_DATA_INFO_CMD;

/* ---- Structures ----------------------------------------------------------------------------- */

#pragma pack(push, 8)

/* What EventGetData returns for EVENT_NEW_BUFFER. */
typedef struct S_EVENT_NEW_BUFFER {
    BUFFER_HANDLE BufferHandle;
    void* pUserPointer; /* the pointer given when the buffer was announced */
} EVENT_NEW_BUFFER_DATA;

/* One access of GCReadPortStacked / GCWritePortStacked. */
typedef struct S_PORT_REGISTER_STACK_ENTRY {
    uint64_t Address;
    void* pBuffer;
    size_t Size; /* bytes to transfer */
} PORT_REGISTER_STACK_ENTRY;

/* One chunk found by DSGetBufferChunkData. */
typedef struct S_SINGLE_CHUNK_DATA {
    uint64_t ChunkID;
    ptrdiff_t ChunkOffset; /* from the buffer start */
    size_t ChunkLength;
} SINGLE_CHUNK_DATA;

/* One query of DSGetBufferInfoStacked; the producer fills iType, the value, iSize and iResult. */
typedef struct S_DS_BUFFER_INFO_STACKED {
    BUFFER_INFO_CMD iInfoCmd;
    INFO_DATATYPE iType;
    void* pBuffer;
    size_t iSize;
    GC_ERROR iResult;
} DS_BUFFER_INFO_STACKED;

/* One query of DSGetBufferPartInfoStacked. */
typedef struct S_DS_BUFFER_PART_INFO_STACKED {
    uint32_t iPartIndex;
    BUFFER_PART_INFO_CMD iInfoCmd;
    GC_ERROR iResult;
    INFO_DATATYPE iType;
    void* pBuffer;
    size_t iSize;
} DS_BUFFER_PART_INFO_STACKED;

#pragma pack(pop)

/*
 * ---- Entry points ----------------------------------------------------------------------------
 *
 * Conventions shared by all of them: the result is GC_ERR_SUCCESS or an error code, with details
 * from GCGetLastError on the same thread. Info functions take the command, report the value's
 * INFO_DATATYPE through *type and write the value to buffer; *size holds the buffer's capacity
 * on entry and the bytes needed or written on return. A null buffer asks for the size only.
 * Timeouts are in milliseconds; GENTL_INFINITE waits without limit.
 */

/* Library */
GC_API GCGetInfo(TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API GCGetLastError(GC_ERROR* errorCode, char* text, size_t* size);
GC_API GCInitLib(void);
GC_API GCCloseLib(void);

/* Register ports */
GC_API GCReadPort(PORT_HANDLE hPort, uint64_t address, void* buffer, size_t* size);
GC_API GCWritePort(PORT_HANDLE hPort, uint64_t address, const void* buffer, size_t* size);
GC_API GCGetPortURL(PORT_HANDLE hPort, char* url, size_t* size);
GC_API GCGetPortInfo(PORT_HANDLE hPort, PORT_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                     size_t* size);
GC_API GCGetNumPortURLs(PORT_HANDLE hPort, uint32_t* numUrls);
GC_API GCGetPortURLInfo(PORT_HANDLE hPort, uint32_t urlIndex, URL_INFO_CMD cmd, INFO_DATATYPE* type,
                        void* buffer, size_t* size);
GC_API GCReadPortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* entries, size_t* numEntries);
GC_API GCWritePortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* entries,
                          size_t* numEntries);

/* Events */
GC_API GCRegisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE eventType, EVENT_HANDLE* phEvent);
GC_API GCUnregisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE eventType);
GC_API EventGetData(EVENT_HANDLE hEvent, void* buffer, size_t* size, uint64_t timeout);
GC_API EventGetDataInfo(EVENT_HANDLE hEvent, const void* data, size_t dataSize,
                        EVENT_DATA_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API EventGetInfo(EVENT_HANDLE hEvent, EVENT_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                    size_t* size);
GC_API EventFlush(EVENT_HANDLE hEvent);
GC_API EventKill(EVENT_HANDLE hEvent); /* ends one pending EventGetData with GC_ERR_ABORT */

/* System module */
GC_API TLOpen(TL_HANDLE* phSystem);
GC_API TLClose(TL_HANDLE hSystem);
GC_API TLGetInfo(TL_HANDLE hSystem, TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                 size_t* size);
GC_API TLGetNumInterfaces(TL_HANDLE hSystem, uint32_t* numInterfaces);
GC_API TLGetInterfaceID(TL_HANDLE hSystem, uint32_t index, char* id, size_t* size);
GC_API TLGetInterfaceInfo(TL_HANDLE hSystem, const char* interfaceId, INTERFACE_INFO_CMD cmd,
                          INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API TLOpenInterface(TL_HANDLE hSystem, const char* interfaceId, IF_HANDLE* phInterface);
GC_API TLUpdateInterfaceList(TL_HANDLE hSystem, bool8_t* changed, uint64_t timeout);

/* Interface module */
GC_API IFClose(IF_HANDLE hInterface);
GC_API IFGetInfo(IF_HANDLE hInterface, INTERFACE_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                 size_t* size);
GC_API IFGetNumDevices(IF_HANDLE hInterface, uint32_t* numDevices);
GC_API IFGetDeviceID(IF_HANDLE hInterface, uint32_t index, char* id, size_t* size);
GC_API IFUpdateDeviceList(IF_HANDLE hInterface, bool8_t* changed, uint64_t timeout);
GC_API IFGetDeviceInfo(IF_HANDLE hInterface, const char* deviceId, DEVICE_INFO_CMD cmd,
                       INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API IFOpenDevice(IF_HANDLE hInterface, const char* deviceId, DEVICE_ACCESS_FLAGS openFlags,
                    DEV_HANDLE* phDevice);
GC_API IFGetParentTL(IF_HANDLE hInterface, TL_HANDLE* phSystem);

/* Device module */
GC_API DevGetPort(DEV_HANDLE hDevice, PORT_HANDLE* phRemoteDevice);
GC_API DevGetNumDataStreams(DEV_HANDLE hDevice, uint32_t* numDataStreams);
GC_API DevGetDataStreamID(DEV_HANDLE hDevice, uint32_t index, char* id, size_t* size);
GC_API DevOpenDataStream(DEV_HANDLE hDevice, const char* dataStreamId, DS_HANDLE* phDataStream);
GC_API DevGetInfo(DEV_HANDLE hDevice, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                  size_t* size);
GC_API DevClose(DEV_HANDLE hDevice);
GC_API DevGetParentIF(DEV_HANDLE hDevice, IF_HANDLE* phInterface);

/* Data stream module */
GC_API DSAnnounceBuffer(DS_HANDLE hDataStream, void* memory, size_t size, void* userPointer,
                        BUFFER_HANDLE* phBuffer);
GC_API DSAllocAndAnnounceBuffer(DS_HANDLE hDataStream, size_t size, void* userPointer,
                                BUFFER_HANDLE* phBuffer);
GC_API DSFlushQueue(DS_HANDLE hDataStream, ACQ_QUEUE_TYPE operation);
GC_API DSStartAcquisition(DS_HANDLE hDataStream, ACQ_START_FLAGS flags, uint64_t numToAcquire);
GC_API DSStopAcquisition(DS_HANDLE hDataStream, ACQ_STOP_FLAGS flags);
GC_API DSGetInfo(DS_HANDLE hDataStream, STREAM_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                 size_t* size);
GC_API DSGetBufferID(DS_HANDLE hDataStream, uint32_t index, BUFFER_HANDLE* phBuffer);
GC_API DSClose(DS_HANDLE hDataStream);
GC_API DSRevokeBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, void** memory,
                      void** userPointer);
GC_API DSQueueBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer);
GC_API DSGetParentDev(DS_HANDLE hDataStream, DEV_HANDLE* phDevice);
GC_API DSGetNumFlows(DS_HANDLE hDataStream, uint32_t* numFlows);
GC_API DSGetFlowInfo(DS_HANDLE hDataStream, uint32_t flowIndex, FLOW_INFO_CMD cmd,
                     INFO_DATATYPE* type, void* buffer, size_t* size);

/* Buffers */
GC_API DSGetBufferInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, BUFFER_INFO_CMD cmd,
                       INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API DSGetBufferChunkData(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, SINGLE_CHUNK_DATA* chunks,
                            size_t* numChunks);
GC_API DSGetNumBufferParts(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t* numParts);
GC_API DSGetBufferPartInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t partIndex,
                           BUFFER_PART_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                           size_t* size);
GC_API DSGetBufferInfoStacked(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                              DS_BUFFER_INFO_STACKED* queries, size_t numQueries);
GC_API DSGetBufferPartInfoStacked(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                  DS_BUFFER_PART_INFO_STACKED* queries, size_t numQueries);

/* ---- Pointer types, for consumers that load a producer at run time -------------------------- */

GC_API_P(PGCGetInfo)(TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API_P(PGCGetLastError)(GC_ERROR* errorCode, char* text, size_t* size);
GC_API_P(PGCInitLib)(void);
GC_API_P(PGCCloseLib)(void);

GC_API_P(PGCReadPort)(PORT_HANDLE hPort, uint64_t address, void* buffer, size_t* size);
GC_API_P(PGCWritePort)(PORT_HANDLE hPort, uint64_t address, const void* buffer, size_t* size);
GC_API_P(PGCGetPortURL)(PORT_HANDLE hPort, char* url, size_t* size);
GC_API_P(PGCGetPortInfo)
(PORT_HANDLE hPort, PORT_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API_P(PGCGetNumPortURLs)(PORT_HANDLE hPort, uint32_t* numUrls);
GC_API_P(PGCGetPortURLInfo)
(PORT_HANDLE hPort, uint32_t urlIndex, URL_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
 size_t* size);
GC_API_P(PGCReadPortStacked)
(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* entries, size_t* numEntries);
GC_API_P(PGCWritePortStacked)
(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* entries, size_t* numEntries);

GC_API_P(PGCRegisterEvent)(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE eventType, EVENT_HANDLE* phEvent);
GC_API_P(PGCUnregisterEvent)(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE eventType);
GC_API_P(PEventGetData)(EVENT_HANDLE hEvent, void* buffer, size_t* size, uint64_t timeout);
GC_API_P(PEventGetDataInfo)
(EVENT_HANDLE hEvent, const void* data, size_t dataSize, EVENT_DATA_INFO_CMD cmd,
 INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API_P(PEventGetInfo)
(EVENT_HANDLE hEvent, EVENT_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API_P(PEventFlush)(EVENT_HANDLE hEvent);
GC_API_P(PEventKill)(EVENT_HANDLE hEvent);

GC_API_P(PTLOpen)(TL_HANDLE* phSystem);
GC_API_P(PTLClose)(TL_HANDLE hSystem);
GC_API_P(PTLGetInfo)
(TL_HANDLE hSystem, TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API_P(PTLGetNumInterfaces)(TL_HANDLE hSystem, uint32_t* numInterfaces);
GC_API_P(PTLGetInterfaceID)(TL_HANDLE hSystem, uint32_t index, char* id, size_t* size);
GC_API_P(PTLGetInterfaceInfo)
(TL_HANDLE hSystem, const char* interfaceId, INTERFACE_INFO_CMD cmd, INFO_DATATYPE* type,
 void* buffer, size_t* size);
GC_API_P(PTLOpenInterface)(TL_HANDLE hSystem, const char* interfaceId, IF_HANDLE* phInterface);
GC_API_P(PTLUpdateInterfaceList)(TL_HANDLE hSystem, bool8_t* changed, uint64_t timeout);

GC_API_P(PIFClose)(IF_HANDLE hInterface);
GC_API_P(PIFGetInfo)
(IF_HANDLE hInterface, INTERFACE_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API_P(PIFGetNumDevices)(IF_HANDLE hInterface, uint32_t* numDevices);
GC_API_P(PIFGetDeviceID)(IF_HANDLE hInterface, uint32_t index, char* id, size_t* size);
GC_API_P(PIFUpdateDeviceList)(IF_HANDLE hInterface, bool8_t* changed, uint64_t timeout);
GC_API_P(PIFGetDeviceInfo)
(IF_HANDLE hInterface, const char* deviceId, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
 size_t* size);
GC_API_P(PIFOpenDevice)
(IF_HANDLE hInterface, const char* deviceId, DEVICE_ACCESS_FLAGS openFlags, DEV_HANDLE* phDevice);
GC_API_P(PIFGetParentTL)(IF_HANDLE hInterface, TL_HANDLE* phSystem);

GC_API_P(PDevGetPort)(DEV_HANDLE hDevice, PORT_HANDLE* phRemoteDevice);
GC_API_P(PDevGetNumDataStreams)(DEV_HANDLE hDevice, uint32_t* numDataStreams);
GC_API_P(PDevGetDataStreamID)(DEV_HANDLE hDevice, uint32_t index, char* id, size_t* size);
GC_API_P(PDevOpenDataStream)(DEV_HANDLE hDevice, const char* dataStreamId, DS_HANDLE* phDataStream);
GC_API_P(PDevGetInfo)
(DEV_HANDLE hDevice, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API_P(PDevClose)(DEV_HANDLE hDevice);
GC_API_P(PDevGetParentIF)(DEV_HANDLE hDevice, IF_HANDLE* phInterface);

GC_API_P(PDSAnnounceBuffer)
(DS_HANDLE hDataStream, void* memory, size_t size, void* userPointer, BUFFER_HANDLE* phBuffer);
GC_API_P(PDSAllocAndAnnounceBuffer)
(DS_HANDLE hDataStream, size_t size, void* userPointer, BUFFER_HANDLE* phBuffer);
GC_API_P(PDSFlushQueue)(DS_HANDLE hDataStream, ACQ_QUEUE_TYPE operation);
GC_API_P(PDSStartAcquisition)(DS_HANDLE hDataStream, ACQ_START_FLAGS flags, uint64_t numToAcquire);
GC_API_P(PDSStopAcquisition)(DS_HANDLE hDataStream, ACQ_STOP_FLAGS flags);
GC_API_P(PDSGetInfo)
(DS_HANDLE hDataStream, STREAM_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API_P(PDSGetBufferID)(DS_HANDLE hDataStream, uint32_t index, BUFFER_HANDLE* phBuffer);
GC_API_P(PDSClose)(DS_HANDLE hDataStream);
GC_API_P(PDSRevokeBuffer)
(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, void** memory, void** userPointer);
GC_API_P(PDSQueueBuffer)(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer);
GC_API_P(PDSGetParentDev)(DS_HANDLE hDataStream, DEV_HANDLE* phDevice);
GC_API_P(PDSGetNumFlows)(DS_HANDLE hDataStream, uint32_t* numFlows);
GC_API_P(PDSGetFlowInfo)
(DS_HANDLE hDataStream, uint32_t flowIndex, FLOW_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
 size_t* size);

GC_API_P(PDSGetBufferInfo)
(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, BUFFER_INFO_CMD cmd, INFO_DATATYPE* type,
 void* buffer, size_t* size);
GC_API_P(PDSGetBufferChunkData)
(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, SINGLE_CHUNK_DATA* chunks, size_t* numChunks);
GC_API_P(PDSGetNumBufferParts)(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t* numParts);
GC_API_P(PDSGetBufferPartInfo)
(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t partIndex, BUFFER_PART_INFO_CMD cmd,
 INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API_P(PDSGetBufferInfoStacked)
(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, DS_BUFFER_INFO_STACKED* queries, size_t numQueries);
GC_API_P(PDSGetBufferPartInfoStacked)
(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, DS_BUFFER_PART_INFO_STACKED* queries,
 size_t numQueries);

#ifdef __cplusplus
} /* extern "C" */
} /* namespace GenTL */
#endif

#endif /* ORVAN_GENTL_GENTL_H */
