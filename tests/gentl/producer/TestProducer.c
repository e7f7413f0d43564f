/*
 * A small GenTL producer of its own for the tests of the producer bridge: one interface, two
 * cameras with a register map and a minimal description, one data stream per camera that fills
 * the queued buffers with a counting pattern, new-buffer events, and TP_FailNext, which makes
 * a chosen call fail once. Built in variants (see CMakeLists.txt): TP_FAIL_INIT fails GCInitLib,
 * TP_NO_OPEN_DEVICE lacks IFOpenDevice, TP_CONTROL_ONLY has no stream or event functions.
 *
 * Handles are the addresses of the static module records below, compared before use.
 */
#include <GenTL/GenTL.h>

#include <pthread.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#define TP_EXPORT __attribute__((visibility("default")))
#define CAMERAS 2
#define BUFFERS 1024
#define XML_ADDRESS 0x1000u
#define REG_WIDTH 0x00u
#define REG_HEIGHT 0x04u
#define REG_PAYLOAD 0x08u
#define REG_START 0x0Cu
#define REG_STOP 0x10u
#define REG_LOCKED 0x14u
#define MONO8 0x01080001u

static const char kXml[] =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
    "<RegisterDescription ModelName=\"TestCam\" VendorName=\"TestWorks\" "
    "StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" "
    "SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" "
    "ToolTip=\"\" ProductGuid=\"5A1D0D6A-1A64-4E5B-9C53-6A0B2A7E0001\" "
    "VersionGuid=\"5A1D0D6A-1A64-4E5B-9C53-6A0B2A7E0002\" "
    "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n"
    "<Category Name=\"Root\"><pFeature>Width</pFeature><pFeature>Height</pFeature>"
    "<pFeature>PixelFormat</pFeature><pFeature>PayloadSize</pFeature>"
    "<pFeature>AcquisitionStart</pFeature><pFeature>AcquisitionStop</pFeature>"
    "<pFeature>TLParamsLocked</pFeature></Category>\n"
    "<IntReg Name=\"Width\"><Address>0x0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
    "<pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>\n"
    "<IntReg Name=\"Height\"><Address>0x4</Address><Length>4</Length><AccessMode>RW</AccessMode>"
    "<pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>\n"
    "<Enumeration Name=\"PixelFormat\"><EnumEntry Name=\"Mono8\"><Value>17301505</Value>"
    "</EnumEntry><Value>17301505</Value></Enumeration>\n"
    "<IntReg Name=\"PayloadSize\"><Address>0x8</Address><Length>4</Length>"
    "<AccessMode>RO</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable>"
    "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>\n"
    "<Command Name=\"AcquisitionStart\"><pValue>StartReg</pValue><CommandValue>1</CommandValue>"
    "</Command>\n"
    "<Command Name=\"AcquisitionStop\"><pValue>StopReg</pValue><CommandValue>1</CommandValue>"
    "</Command>\n"
    "<IntReg Name=\"StartReg\"><Address>0xC</Address><Length>4</Length><AccessMode>RW</AccessMode>"
    "<pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>\n"
    "<IntReg Name=\"StopReg\"><Address>0x10</Address><Length>4</Length><AccessMode>RW</AccessMode>"
    "<pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>\n"
    "<IntReg Name=\"TLParamsLocked\"><Address>0x14</Address><Length>4</Length>"
    "<AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign>"
    "<Endianess>LittleEndian</Endianess></IntReg>\n"
    "<Port Name=\"Device\"/>\n"
    "</RegisterDescription>\n";

/* Interface, device and data-stream modules describe themselves too, minimally. */
enum { MODULES = 3 };
static const char* const kModuleFiles[MODULES] = {"TestGenTLInterface.xml", "TestGenTLDevice.xml",
                                                  "TestGenTLDataStream.xml"};
static const char* const kModulePorts[MODULES] = {"InterfacePort", "DevicePort", "StreamPort"};
static char g_moduleXml[MODULES][896];
/* What a consumer reads to know it may start the camera. */
static const char kAccessStatus[] =
    "<Enumeration Name=\"DeviceAccessStatus\"><EnumEntry Name=\"ReadWrite\"><Value>1</Value>"
    "</EnumEntry><Value>1</Value></Enumeration>\n";

static void DescribeModules(void) {
    for (int i = 0; i < MODULES; ++i)
        snprintf(g_moduleXml[i], sizeof(g_moduleXml[i]),
                 "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<RegisterDescription "
                 "ModelName=\"TestModule\" VendorName=\"TestWorks\" StandardNameSpace=\"None\" "
                 "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" "
                 "MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" ToolTip=\"\" "
                 "ProductGuid=\"5A1D0D6A-1A64-4E5B-9C53-6A0B2A7E001%d\" "
                 "VersionGuid=\"5A1D0D6A-1A64-4E5B-9C53-6A0B2A7E002%d\" "
                 "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n"
                 "<Category Name=\"Root\"><pFeature>ModuleRevision</pFeature></Category>\n"
                 "<Integer Name=\"ModuleRevision\"><Value>1</Value></Integer>\n%s"
                 "<Port Name=\"%s\"/>\n</RegisterDescription>\n",
                 i, i, i == 1 ? kAccessStatus : "", kModulePorts[i]);
}

struct Buffer {
    unsigned char* base;
    size_t size;
    void* user;
    int owned, queued, filled;
    uint64_t frameId;
};

struct Camera {
    int open, streamOpen, eventOn, acquiring, started, killed;
    uint32_t regs[8];
    char remote; /* handle of the remote port */
    char stream; /* handle of the data stream */
    char event;  /* handle of the new-buffer event */
    struct Buffer buffers[BUFFERS];
    int input[BUFFERS], inputCount;
    int output[BUFFERS], outputCount;
    uint64_t nextFrame, toAcquire, delivered;
    pthread_t thread;
    pthread_mutex_t mutex;
    pthread_cond_t wake;
};

static int g_initialised, g_systemOpen, g_interfaceOpen;
static char g_system, g_interface;
static struct Camera g_cameras[CAMERAS];
static _Thread_local GC_ERROR t_code;
static _Thread_local char t_text[256];
static char g_failFunction[64];
static GC_ERROR g_failCode;
static char g_failText[256];
static pthread_mutex_t g_failMutex = PTHREAD_MUTEX_INITIALIZER;

static GC_ERROR Fail(GC_ERROR code, const char* text) {
    t_code = code;
    snprintf(t_text, sizeof(t_text), "%s", text);
    return code;
}

/* The switch of the tests: the next call of that function fails with that code and text. */
TP_EXPORT void TP_FailNext(const char* function, GC_ERROR code, const char* text) {
    pthread_mutex_lock(&g_failMutex);
    snprintf(g_failFunction, sizeof(g_failFunction), "%s", function);
    g_failCode = code;
    snprintf(g_failText, sizeof(g_failText), "%s", text);
    pthread_mutex_unlock(&g_failMutex);
}

static int Armed(const char* function, GC_ERROR* code) {
    pthread_mutex_lock(&g_failMutex);
    int armed = strcmp(g_failFunction, function) == 0;
    if (armed) {
        g_failFunction[0] = '\0';
        *code = Fail(g_failCode, g_failText);
    }
    pthread_mutex_unlock(&g_failMutex);
    return armed;
}

#define CHECK_ARMED()                                                                              \
    do {                                                                                           \
        GC_ERROR armed_;                                                                           \
        if (Armed(__func__, &armed_))                                                              \
            return armed_;                                                                         \
    } while (0)

static GC_ERROR Put(INFO_DATATYPE kind, const void* value, size_t length, INFO_DATATYPE* type,
                    void* buffer, size_t* size) {
    if (!size)
        return Fail(GC_ERR_INVALID_PARAMETER, "size is null");
    if (type)
        *type = kind;
    if (buffer && *size < length)
        return *size = length, Fail(GC_ERR_BUFFER_TOO_SMALL, "buffer too small");
    if (buffer)
        memcpy(buffer, value, length);
    *size = length;
    return GC_ERR_SUCCESS;
}

static GC_ERROR PutText(const char* text, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return Put(INFO_DATATYPE_STRING, text, strlen(text) + 1, type, buffer, size);
}

static inline GC_ERROR PutSize(size_t value, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return Put(INFO_DATATYPE_SIZET, &value, sizeof(value), type, buffer, size);
}

static GC_ERROR PutU64(uint64_t value, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return Put(INFO_DATATYPE_UINT64, &value, sizeof(value), type, buffer, size);
}

static GC_ERROR PutBool(int value, INFO_DATATYPE* type, void* buffer, size_t* size) {
    bool8_t flag = value ? 1 : 0;
    return Put(INFO_DATATYPE_BOOL8, &flag, 1, type, buffer, size);
}

static GC_ERROR PutI32(int32_t value, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return Put(INFO_DATATYPE_INT32, &value, sizeof(value), type, buffer, size);
}

static struct Camera* CameraOf(const void* handle, size_t offset) {
    for (int i = 0; i < CAMERAS; ++i)
        if ((const char*)handle == (const char*)&g_cameras[i] + offset && g_cameras[i].open)
            return &g_cameras[i];
    return NULL;
}

#define DEVICE_OF(h) CameraOf(h, 0)
#define REMOTE_OF(h) CameraOf(h, offsetof(struct Camera, remote))
#define STREAM_OF(h) CameraOf(h, offsetof(struct Camera, stream))
#define EVENT_OF(h) CameraOf(h, offsetof(struct Camera, event))
#define FIND_OR_FAIL(camera, lookup, text)                                                         \
    struct Camera* camera = lookup;                                                                \
    if (!camera)                                                                                   \
    return Fail(GC_ERR_INVALID_HANDLE, text)

static int IndexOfId(const char* id) {
    for (int i = 0; id && i < CAMERAS; ++i) {
        char expected[16];
        snprintf(expected, sizeof(expected), "TestCam%d", i);
        if (strcmp(id, expected) == 0)
            return i;
    }
    return -1;
}

/* ---- Library and system ----------------------------------------------------------------- */

static GC_ERROR LibraryInfo(TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer, size_t* size) {
    switch (cmd) {
    case TL_INFO_ID:
        return PutText("TestProducer", type, buffer, size);
    case TL_INFO_VENDOR:
        return PutText("TestWorks", type, buffer, size);
    case TL_INFO_MODEL:
        return PutText("Test producer", type, buffer, size);
    case TL_INFO_TLTYPE:
        return PutText("Custom", type, buffer, size);
    default:
        return Fail(GC_ERR_NOT_IMPLEMENTED, "unknown library info");
    }
}

TP_EXPORT GC_ERROR GCGetInfo(TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return LibraryInfo(cmd, type, buffer, size);
}

TP_EXPORT GC_ERROR GCGetLastError(GC_ERROR* code, char* text, size_t* size) {
    if (!code || !size)
        return GC_ERR_INVALID_PARAMETER;
    *code = t_code;
    return Put(INFO_DATATYPE_STRING, t_text, strlen(t_text) + 1, NULL, text, size);
}

TP_EXPORT GC_ERROR GCInitLib(void) {
#ifdef TP_FAIL_INIT
    return Fail(GC_ERR_ERROR, "no frame grabber found");
#endif
    CHECK_ARMED();
    if (g_initialised)
        return Fail(GC_ERR_RESOURCE_IN_USE, "already initialised");
    for (int i = 0; i < CAMERAS; ++i) {
        pthread_mutex_init(&g_cameras[i].mutex, NULL);
        pthread_cond_init(&g_cameras[i].wake, NULL);
    }
    DescribeModules();
    g_initialised = 1;
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR GCCloseLib(void) {
    g_initialised = 0;
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR TLOpen(TL_HANDLE* system) {
    CHECK_ARMED();
    if (!g_initialised || g_systemOpen)
        return Fail(GC_ERR_RESOURCE_IN_USE, "not initialised or already open");
    g_systemOpen = 1;
    *system = &g_system;
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR TLClose(TL_HANDLE system) {
    if (system != &g_system || !g_systemOpen)
        return Fail(GC_ERR_INVALID_HANDLE, "not the system");
    g_systemOpen = g_interfaceOpen = 0;
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR TLGetInfo(TL_HANDLE system, TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                             size_t* size) {
    (void)system;
    return LibraryInfo(cmd, type, buffer, size);
}

TP_EXPORT GC_ERROR TLGetNumInterfaces(TL_HANDLE system, uint32_t* count) {
    CHECK_ARMED();
    (void)system;
    *count = 1;
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR TLGetInterfaceID(TL_HANDLE system, uint32_t index, char* id, size_t* size) {
    (void)system;
    if (index != 0)
        return Fail(GC_ERR_INVALID_INDEX, "one interface");
    return Put(INFO_DATATYPE_STRING, "TestIF", 7, NULL, id, size);
}

static GC_ERROR InterfaceInfo(INTERFACE_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                              size_t* size) {
    if (cmd == INTERFACE_INFO_ID)
        return PutText("TestIF", type, buffer, size);
    if (cmd == INTERFACE_INFO_DISPLAYNAME)
        return PutText("Test interface", type, buffer, size);
    if (cmd == INTERFACE_INFO_TLTYPE)
        return PutText("Custom", type, buffer, size);
    return Fail(GC_ERR_NOT_IMPLEMENTED, "unknown interface info");
}

TP_EXPORT GC_ERROR TLGetInterfaceInfo(TL_HANDLE system, const char* id, INTERFACE_INFO_CMD cmd,
                                      INFO_DATATYPE* type, void* buffer, size_t* size) {
    (void)system;
    if (!id || strcmp(id, "TestIF") != 0)
        return Fail(GC_ERR_INVALID_ID, "no such interface");
    return InterfaceInfo(cmd, type, buffer, size);
}

TP_EXPORT GC_ERROR TLOpenInterface(TL_HANDLE system, const char* id, IF_HANDLE* handle) {
    if (system != &g_system || !id || strcmp(id, "TestIF") != 0)
        return Fail(GC_ERR_INVALID_ID, "no such interface");
    g_interfaceOpen = 1;
    *handle = &g_interface;
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR TLUpdateInterfaceList(TL_HANDLE system, bool8_t* changed, uint64_t timeout) {
    (void)system, (void)timeout;
    if (changed)
        *changed = 0;
    return GC_ERR_SUCCESS;
}

/* ---- Interface ---------------------------------------------------------------------------- */

TP_EXPORT GC_ERROR IFClose(IF_HANDLE handle) {
    if (handle != &g_interface || !g_interfaceOpen)
        return Fail(GC_ERR_INVALID_HANDLE, "not the interface");
    g_interfaceOpen = 0;
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR IFGetInfo(IF_HANDLE handle, INTERFACE_INFO_CMD cmd, INFO_DATATYPE* type,
                             void* buffer, size_t* size) {
    (void)handle;
    return InterfaceInfo(cmd, type, buffer, size);
}

TP_EXPORT GC_ERROR IFGetNumDevices(IF_HANDLE handle, uint32_t* count) {
    (void)handle;
    *count = CAMERAS;
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR IFGetDeviceID(IF_HANDLE handle, uint32_t index, char* id, size_t* size) {
    (void)handle;
    if (index >= CAMERAS)
        return Fail(GC_ERR_INVALID_INDEX, "two cameras");
    char text[16];
    snprintf(text, sizeof(text), "TestCam%u", index);
    return Put(INFO_DATATYPE_STRING, text, strlen(text) + 1, NULL, id, size);
}

TP_EXPORT GC_ERROR IFUpdateDeviceList(IF_HANDLE handle, bool8_t* changed, uint64_t timeout) {
    CHECK_ARMED();
    (void)handle, (void)timeout;
    if (changed)
        *changed = 0;
    return GC_ERR_SUCCESS;
}

static GC_ERROR DeviceInfo(int index, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                           size_t* size) {
    char text[32];
    switch (cmd) {
    case DEVICE_INFO_ID:
        snprintf(text, sizeof(text), "TestCam%d", index);
        return PutText(text, type, buffer, size);
    case DEVICE_INFO_VENDOR:
        return PutText("TestWorks", type, buffer, size);
    case DEVICE_INFO_MODEL:
        return PutText("TestCam", type, buffer, size);
    case DEVICE_INFO_SERIAL_NUMBER:
        snprintf(text, sizeof(text), "TW-%04d", index);
        return PutText(text, type, buffer, size);
    case DEVICE_INFO_TLTYPE:
        return PutText("Custom", type, buffer, size);
    case DEVICE_INFO_DISPLAYNAME:
    case DEVICE_INFO_USER_DEFINED_NAME:
    case DEVICE_INFO_VERSION:
        return PutText("", type, buffer, size);
    case DEVICE_INFO_ACCESS_STATUS:
        return PutI32(g_cameras[index].open ? DEVICE_ACCESS_STATUS_OPEN_READWRITE
                                            : DEVICE_ACCESS_STATUS_READWRITE,
                      type, buffer, size);
    case DEVICE_INFO_TIMESTAMP_FREQUENCY:
        return PutU64(1000000000u, type, buffer, size);
    default:
        return Fail(GC_ERR_NOT_IMPLEMENTED, "unknown device info");
    }
}

TP_EXPORT GC_ERROR IFGetDeviceInfo(IF_HANDLE handle, const char* id, DEVICE_INFO_CMD cmd,
                                   INFO_DATATYPE* type, void* buffer, size_t* size) {
    (void)handle;
    int index = IndexOfId(id);
    if (index < 0)
        return Fail(GC_ERR_INVALID_ID, "no such camera");
    return DeviceInfo(index, cmd, type, buffer, size);
}

#ifndef TP_NO_OPEN_DEVICE
TP_EXPORT GC_ERROR IFOpenDevice(IF_HANDLE handle, const char* id, DEVICE_ACCESS_FLAGS flags,
                                DEV_HANDLE* device) {
    (void)flags;
    int index = IndexOfId(id);
    if (handle != &g_interface || index < 0)
        return Fail(GC_ERR_INVALID_ID, "no such camera");
    struct Camera* camera = &g_cameras[index];
    if (camera->open)
        return Fail(GC_ERR_RESOURCE_IN_USE, "camera already open");
    memset(camera->regs, 0, sizeof(camera->regs));
    camera->regs[REG_WIDTH / 4] = 64;
    camera->regs[REG_HEIGHT / 4] = 48;
    camera->open = 1;
    *device = camera;
    return GC_ERR_SUCCESS;
}
#endif

TP_EXPORT GC_ERROR IFGetParentTL(IF_HANDLE handle, TL_HANDLE* system) {
    (void)handle;
    *system = &g_system;
    return GC_ERR_SUCCESS;
}

/* ---- Device and ports ------------------------------------------------------------------- */

static void StopStream(struct Camera* camera);

TP_EXPORT GC_ERROR DevGetPort(DEV_HANDLE handle, PORT_HANDLE* port) {
    FIND_OR_FAIL(camera, DEVICE_OF(handle), "not an open device");
    *port = &camera->remote;
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR DevGetInfo(DEV_HANDLE handle, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type,
                              void* buffer, size_t* size) {
    FIND_OR_FAIL(camera, DEVICE_OF(handle), "not an open device");
    return DeviceInfo((int)(camera - g_cameras), cmd, type, buffer, size);
}

TP_EXPORT GC_ERROR DevClose(DEV_HANDLE handle) {
    FIND_OR_FAIL(camera, DEVICE_OF(handle), "not an open device");
    StopStream(camera);
    camera->streamOpen = camera->eventOn = 0;
    camera->open = 0;
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR DevGetParentIF(DEV_HANDLE handle, IF_HANDLE* parent) {
    (void)handle;
    *parent = &g_interface;
    return GC_ERR_SUCCESS;
}

static void UpdatePayload(struct Camera* camera) {
    camera->regs[REG_PAYLOAD / 4] = camera->regs[REG_WIDTH / 4] * camera->regs[REG_HEIGHT / 4];
}

static int ModuleOf(const void* handle) {
    for (int i = 0; i < CAMERAS; ++i)
        if (handle == &g_cameras[i] || handle == &g_cameras[i].stream)
            return handle == &g_cameras[i] ? 1 : 2;
    return handle == &g_interface ? 0 : -1;
}

static GC_ERROR ReadModule(int module, uint64_t address, void* data, size_t* size) {
    size_t length = strlen(g_moduleXml[module]) + 1;
    if (address + *size > length)
        return Fail(GC_ERR_INVALID_ADDRESS, "beyond the module description");
    memcpy(data, g_moduleXml[module] + address, *size);
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR GCReadPort(PORT_HANDLE port, uint64_t address, void* data, size_t* size) {
    if (ModuleOf(port) >= 0)
        return ReadModule(ModuleOf(port), address, data, size);
    FIND_OR_FAIL(camera, REMOTE_OF(port), "not a port");
    pthread_mutex_lock(&camera->mutex);
    UpdatePayload(camera);
    GC_ERROR result = GC_ERR_SUCCESS;
    if (address >= XML_ADDRESS && address + *size <= XML_ADDRESS + sizeof(kXml))
        memcpy(data, kXml + (address - XML_ADDRESS), *size);
    else if (address + *size <= sizeof(camera->regs))
        memcpy(data, (const char*)camera->regs + address, *size);
    else
        result = Fail(GC_ERR_INVALID_ADDRESS, "no register there");
    pthread_mutex_unlock(&camera->mutex);
    return result;
}

TP_EXPORT GC_ERROR GCWritePort(PORT_HANDLE port, uint64_t address, const void* data, size_t* size) {
    CHECK_ARMED();
    FIND_OR_FAIL(camera, REMOTE_OF(port), "only the cameras have registers");
    if (address + *size > sizeof(camera->regs))
        return Fail(GC_ERR_INVALID_ADDRESS, "no register there");
    pthread_mutex_lock(&camera->mutex);
    memcpy((char*)camera->regs + address, data, *size);
    if (camera->regs[REG_START / 4])
        camera->acquiring = 1;
    if (camera->regs[REG_STOP / 4])
        camera->acquiring = 0;
    camera->regs[REG_START / 4] = camera->regs[REG_STOP / 4] = 0;
    pthread_cond_broadcast(&camera->wake);
    pthread_mutex_unlock(&camera->mutex);
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR GCGetPortURL(PORT_HANDLE port, char* url, size_t* size) {
    char text[64];
    int module = ModuleOf(port);
    if (module >= 0)
        snprintf(text, sizeof(text), "local:%s;0;%zx", kModuleFiles[module],
                 strlen(g_moduleXml[module]) + 1);
    else if (REMOTE_OF(port))
        snprintf(text, sizeof(text), "local:TestCam.xml;%x;%zx", XML_ADDRESS, sizeof(kXml));
    else
        return Fail(GC_ERR_INVALID_HANDLE, "not a port");
    return Put(INFO_DATATYPE_STRING, text, strlen(text) + 1, NULL, url, size);
}

TP_EXPORT GC_ERROR GCGetNumPortURLs(PORT_HANDLE port, uint32_t* count) {
    *count = REMOTE_OF(port) ? 1 : 0;
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR GCGetPortURLInfo(PORT_HANDLE port, uint32_t index, URL_INFO_CMD cmd,
                                    INFO_DATATYPE* type, void* buffer, size_t* size) {
    if (!REMOTE_OF(port) || index != 0)
        return Fail(GC_ERR_INVALID_INDEX, "one description");
    if (cmd == URL_INFO_URL) {
        char url[64];
        size_t length = sizeof(url);
        GCGetPortURL(port, url, &length);
        return PutText(url, type, buffer, size);
    }
    if (cmd >= URL_INFO_SCHEMA_VER_MAJOR && cmd <= URL_INFO_FILE_VER_SUBMINOR)
        return PutI32(cmd == URL_INFO_SCHEMA_VER_MINOR || cmd == URL_INFO_FILE_VER_MAJOR, type,
                      buffer, size);
    return Fail(GC_ERR_NOT_IMPLEMENTED, "unknown URL info");
}

TP_EXPORT GC_ERROR GCGetPortInfo(PORT_HANDLE port, PORT_INFO_CMD cmd, INFO_DATATYPE* type,
                                 void* buffer, size_t* size) {
    (void)port;
    if (cmd == PORT_INFO_LITTLE_ENDIAN || cmd == PORT_INFO_ACCESS_READ ||
        cmd == PORT_INFO_ACCESS_WRITE)
        return PutBool(1, type, buffer, size);
    if (cmd == PORT_INFO_BIG_ENDIAN)
        return PutBool(0, type, buffer, size);
    if (cmd == PORT_INFO_PORTNAME)
        return PutText("Device", type, buffer, size);
    return Fail(GC_ERR_NOT_IMPLEMENTED, "unknown port info");
}

/* ---- Data stream and events ------------------------------------------------------------- */

#ifdef TP_CONTROL_ONLY
static void StopStream(struct Camera* camera) {
    (void)camera;
}
#else

/* Fills queued buffers in order while both the host (DSStartAcquisition) and the camera
 * (AcquisitionStart) run; a frame waits for a buffer, so none is ever lost here. */
static void* Acquire(void* argument) {
    struct Camera* camera = argument;
    pthread_mutex_lock(&camera->mutex);
    while (camera->started && camera->delivered < camera->toAcquire) {
        if (!camera->acquiring || camera->inputCount == 0) {
            pthread_cond_wait(&camera->wake, &camera->mutex);
            continue;
        }
        struct Buffer* buffer = &camera->buffers[camera->input[0]];
        int index = camera->input[0];
        memmove(camera->input, camera->input + 1, (size_t)--camera->inputCount * sizeof(int));
        UpdatePayload(camera);
        size_t bytes = camera->regs[REG_PAYLOAD / 4];
        bytes = bytes < buffer->size ? bytes : buffer->size;
        buffer->frameId = camera->nextFrame++;
        for (size_t i = 0; i < bytes; ++i)
            buffer->base[i] = (unsigned char)(buffer->frameId + i);
        buffer->filled = (int)bytes;
        camera->output[camera->outputCount++] = index;
        camera->delivered++;
        pthread_cond_broadcast(&camera->wake);
    }
    pthread_mutex_unlock(&camera->mutex);
    return NULL;
}

static void StopStream(struct Camera* camera) {
    pthread_mutex_lock(&camera->mutex);
    int started = camera->started;
    camera->started = 0;
    pthread_cond_broadcast(&camera->wake);
    pthread_mutex_unlock(&camera->mutex);
    if (started)
        pthread_join(camera->thread, NULL);
}

static struct Buffer* BufferOf(struct Camera* camera, const void* handle) {
    for (int i = 0; i < BUFFERS; ++i)
        if (handle == &camera->buffers[i] && camera->buffers[i].base)
            return &camera->buffers[i];
    return NULL;
}

TP_EXPORT GC_ERROR DevGetNumDataStreams(DEV_HANDLE handle, uint32_t* count) {
    *count = DEVICE_OF(handle) ? 1 : 0;
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR DevGetDataStreamID(DEV_HANDLE handle, uint32_t index, char* id, size_t* size) {
    if (!DEVICE_OF(handle) || index != 0)
        return Fail(GC_ERR_INVALID_INDEX, "one stream");
    return Put(INFO_DATATYPE_STRING, "Stream0", 8, NULL, id, size);
}

TP_EXPORT GC_ERROR DevOpenDataStream(DEV_HANDLE handle, const char* id, DS_HANDLE* stream) {
    struct Camera* camera = DEVICE_OF(handle);
    if (!camera || !id || strcmp(id, "Stream0") != 0)
        return Fail(GC_ERR_INVALID_ID, "no such stream");
    camera->streamOpen = 1;
    *stream = &camera->stream;
    return GC_ERR_SUCCESS;
}

static GC_ERROR Announce(DS_HANDLE handle, void* memory, int owned, size_t size, void* user,
                         BUFFER_HANDLE* out) {
    struct Camera* camera = STREAM_OF(handle);
    if (!camera || !memory)
        return Fail(GC_ERR_INVALID_PARAMETER, "no stream or no memory");
    for (int i = 0; i < BUFFERS; ++i) {
        struct Buffer* buffer = &camera->buffers[i];
        if (buffer->base)
            continue;
        *buffer = (struct Buffer){memory, size, user, owned, 0, 0, 0};
        *out = buffer;
        return GC_ERR_SUCCESS;
    }
    return Fail(GC_ERR_RESOURCE_EXHAUSTED, "too many buffers");
}

TP_EXPORT GC_ERROR DSAnnounceBuffer(DS_HANDLE handle, void* memory, size_t size, void* user,
                                    BUFFER_HANDLE* buffer) {
    return Announce(handle, memory, 0, size, user, buffer);
}

TP_EXPORT GC_ERROR DSAllocAndAnnounceBuffer(DS_HANDLE handle, size_t size, void* user,
                                            BUFFER_HANDLE* buffer) {
    void* memory = malloc(size ? size : 1);
    GC_ERROR result = Announce(handle, memory, 1, size, user, buffer);
    if (result != GC_ERR_SUCCESS)
        free(memory);
    return result;
}

TP_EXPORT GC_ERROR DSRevokeBuffer(DS_HANDLE handle, BUFFER_HANDLE buffer, void** memory,
                                  void** user) {
    struct Camera* camera = STREAM_OF(handle);
    struct Buffer* entry = camera ? BufferOf(camera, buffer) : NULL;
    if (!entry || entry->queued)
        return Fail(GC_ERR_INVALID_HANDLE, "not an announced, unqueued buffer");
    if (memory)
        *memory = entry->owned ? NULL : entry->base;
    if (user)
        *user = entry->user;
    if (entry->owned)
        free(entry->base);
    memset(entry, 0, sizeof(*entry));
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR DSQueueBuffer(DS_HANDLE handle, BUFFER_HANDLE buffer) {
    struct Camera* camera = STREAM_OF(handle);
    struct Buffer* entry = camera ? BufferOf(camera, buffer) : NULL;
    if (!entry)
        return Fail(GC_ERR_INVALID_HANDLE, "not an announced buffer");
    pthread_mutex_lock(&camera->mutex);
    entry->queued = 1;
    camera->input[camera->inputCount++] = (int)(entry - camera->buffers);
    pthread_cond_broadcast(&camera->wake);
    pthread_mutex_unlock(&camera->mutex);
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR DSFlushQueue(DS_HANDLE handle, ACQ_QUEUE_TYPE operation) {
    FIND_OR_FAIL(camera, STREAM_OF(handle), "not a stream");
    pthread_mutex_lock(&camera->mutex);
    int toInput = operation == ACQ_QUEUE_ALL_TO_INPUT || operation == ACQ_QUEUE_UNQUEUED_TO_INPUT;
    if (operation == ACQ_QUEUE_INPUT_TO_OUTPUT) {
        memcpy(camera->output + camera->outputCount, camera->input,
               (size_t)camera->inputCount * sizeof(int));
        camera->outputCount += camera->inputCount, camera->inputCount = 0;
    }
    if (operation != ACQ_QUEUE_INPUT_TO_OUTPUT && operation != ACQ_QUEUE_UNQUEUED_TO_INPUT) {
        for (int i = 0; i < camera->outputCount; ++i)
            camera->buffers[camera->output[i]].queued = 0;
        camera->outputCount = 0;
    }
    if (operation == ACQ_QUEUE_ALL_DISCARD || operation == ACQ_QUEUE_ALL_TO_INPUT) {
        for (int i = 0; i < camera->inputCount; ++i)
            camera->buffers[camera->input[i]].queued = 0;
        camera->inputCount = 0;
    }
    for (int i = 0; toInput && i < BUFFERS; ++i)
        if (camera->buffers[i].base && !camera->buffers[i].queued)
            camera->input[camera->inputCount++] = i, camera->buffers[i].queued = 1;
    pthread_mutex_unlock(&camera->mutex);
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR DSStartAcquisition(DS_HANDLE handle, ACQ_START_FLAGS flags, uint64_t count) {
    CHECK_ARMED();
    (void)flags;
    struct Camera* camera = STREAM_OF(handle);
    if (!camera || camera->started)
        return Fail(GC_ERR_RESOURCE_IN_USE, "not a stream, or started");
    camera->started = 1;
    camera->toAcquire = count;
    camera->delivered = 0;
    pthread_create(&camera->thread, NULL, Acquire, camera);
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR DSStopAcquisition(DS_HANDLE handle, ACQ_STOP_FLAGS flags) {
    (void)flags;
    FIND_OR_FAIL(camera, STREAM_OF(handle), "not a stream");
    StopStream(camera);
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR DSGetInfo(DS_HANDLE handle, STREAM_INFO_CMD cmd, INFO_DATATYPE* type,
                             void* buffer, size_t* size) {
    FIND_OR_FAIL(camera, STREAM_OF(handle), "not a stream");
    int announced = 0;
    for (int i = 0; i < BUFFERS; ++i)
        announced += camera->buffers[i].base != NULL;
    UpdatePayload(camera);
    switch (cmd) {
    case STREAM_INFO_ID:
        return PutText("Stream0", type, buffer, size);
    case STREAM_INFO_NUM_ANNOUNCED:
        return PutSize((size_t)announced, type, buffer, size);
    case STREAM_INFO_NUM_QUEUED:
        return PutSize((size_t)camera->inputCount, type, buffer, size);
    case STREAM_INFO_NUM_AWAIT_DELIVERY:
        return PutSize((size_t)camera->outputCount, type, buffer, size);
    case STREAM_INFO_NUM_DELIVERED:
    case STREAM_INFO_NUM_STARTED:
        return PutU64(camera->delivered, type, buffer, size);
    case STREAM_INFO_NUM_UNDERRUN:
        return PutU64(0, type, buffer, size);
    case STREAM_INFO_PAYLOAD_SIZE:
        return PutSize(camera->regs[REG_PAYLOAD / 4], type, buffer, size);
    case STREAM_INFO_IS_GRABBING:
        return PutBool(camera->started, type, buffer, size);
    case STREAM_INFO_DEFINES_PAYLOADSIZE:
        return PutBool(1, type, buffer, size);
    case STREAM_INFO_BUF_ANNOUNCE_MIN:
    case STREAM_INFO_BUF_ALIGNMENT:
        return PutSize(1, type, buffer, size);
    default:
        return Fail(GC_ERR_NOT_IMPLEMENTED, "unknown stream info");
    }
}

TP_EXPORT GC_ERROR DSGetBufferID(DS_HANDLE handle, uint32_t index, BUFFER_HANDLE* buffer) {
    struct Camera* camera = STREAM_OF(handle);
    for (int i = 0; camera && i < BUFFERS; ++i)
        if (camera->buffers[i].base && index-- == 0)
            return *buffer = &camera->buffers[i], GC_ERR_SUCCESS;
    return Fail(GC_ERR_INVALID_INDEX, "no buffer with that index");
}

TP_EXPORT GC_ERROR DSClose(DS_HANDLE handle) {
    FIND_OR_FAIL(camera, STREAM_OF(handle), "not a stream");
    StopStream(camera);
    for (int i = 0; i < BUFFERS; ++i)
        if (camera->buffers[i].owned)
            free(camera->buffers[i].base);
    memset(camera->buffers, 0, sizeof(camera->buffers));
    camera->inputCount = camera->outputCount = 0;
    camera->streamOpen = camera->eventOn = 0;
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR DSGetParentDev(DS_HANDLE handle, DEV_HANDLE* device) {
    struct Camera* camera = STREAM_OF(handle);
    *device = camera;
    return camera ? GC_ERR_SUCCESS : Fail(GC_ERR_INVALID_HANDLE, "not a stream");
}

static GC_ERROR BufferInfo(struct Camera* camera, struct Buffer* entry, BUFFER_INFO_CMD cmd,
                           INFO_DATATYPE* type, void* buffer, size_t* size) {
    void* pointer = cmd == BUFFER_INFO_BASE ? (void*)entry->base : entry->user;
    switch (cmd) {
    case BUFFER_INFO_BASE:
    case BUFFER_INFO_USER_PTR:
        return Put(INFO_DATATYPE_PTR, &pointer, sizeof(pointer), type, buffer, size);
    case BUFFER_INFO_SIZE:
        return PutSize(entry->size, type, buffer, size);
    case BUFFER_INFO_SIZE_FILLED:
    case BUFFER_INFO_DATA_SIZE:
        return PutSize((size_t)entry->filled, type, buffer, size);
    case BUFFER_INFO_WIDTH:
        return PutSize(camera->regs[REG_WIDTH / 4], type, buffer, size);
    case BUFFER_INFO_HEIGHT:
    case BUFFER_INFO_DELIVERED_IMAGEHEIGHT:
        return PutSize(camera->regs[REG_HEIGHT / 4], type, buffer, size);
    case BUFFER_INFO_XOFFSET:
    case BUFFER_INFO_YOFFSET:
    case BUFFER_INFO_XPADDING:
    case BUFFER_INFO_YPADDING:
    case BUFFER_INFO_IMAGEOFFSET:
        return PutSize(0, type, buffer, size);
    case BUFFER_INFO_PAYLOADTYPE:
        return PutSize(PAYLOAD_TYPE_IMAGE, type, buffer, size);
    case BUFFER_INFO_FRAMEID:
    case BUFFER_INFO_TIMESTAMP:
    case BUFFER_INFO_TIMESTAMP_NS:
        return PutU64(entry->frameId, type, buffer, size);
    case BUFFER_INFO_PIXELFORMAT:
        return PutU64(MONO8, type, buffer, size);
    case BUFFER_INFO_PIXELFORMAT_NAMESPACE:
        return PutU64(PIXELFORMAT_NAMESPACE_PFNC_32BIT, type, buffer, size);
    case BUFFER_INFO_IMAGEPRESENT:
    case BUFFER_INFO_NEW_DATA:
        return PutBool(1, type, buffer, size);
    case BUFFER_INFO_IS_QUEUED:
        return PutBool(entry->queued, type, buffer, size);
    case BUFFER_INFO_IS_INCOMPLETE:
    case BUFFER_INFO_IS_ACQUIRING:
    case BUFFER_INFO_CONTAINS_CHUNKDATA:
    case BUFFER_INFO_DATA_LARGER_THAN_BUFFER:
        return PutBool(0, type, buffer, size);
    default:
        return Fail(GC_ERR_NOT_IMPLEMENTED, "unknown buffer info");
    }
}

TP_EXPORT GC_ERROR DSGetBufferInfo(DS_HANDLE handle, BUFFER_HANDLE buffer, BUFFER_INFO_CMD cmd,
                                   INFO_DATATYPE* type, void* value, size_t* size) {
    struct Camera* camera = STREAM_OF(handle);
    struct Buffer* entry = camera ? BufferOf(camera, buffer) : NULL;
    if (!entry)
        return Fail(GC_ERR_INVALID_HANDLE, "not an announced buffer");
    return BufferInfo(camera, entry, cmd, type, value, size);
}

TP_EXPORT GC_ERROR GCRegisterEvent(EVENTSRC_HANDLE source, EVENT_TYPE kind, EVENT_HANDLE* event) {
    struct Camera* camera = STREAM_OF(source);
    if (!camera || kind != EVENT_NEW_BUFFER)
        return Fail(GC_ERR_NOT_IMPLEMENTED, "new-buffer events of streams only");
    camera->eventOn = 1;
    camera->killed = 0;
    *event = &camera->event;
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR GCUnregisterEvent(EVENTSRC_HANDLE source, EVENT_TYPE kind) {
    struct Camera* camera = STREAM_OF(source);
    if (!camera || kind != EVENT_NEW_BUFFER || !camera->eventOn)
        return Fail(GC_ERR_NOT_IMPLEMENTED, "not registered");
    camera->eventOn = 0;
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR EventGetData(EVENT_HANDLE event, void* data, size_t* size, uint64_t timeout) {
    struct Camera* camera = EVENT_OF(event);
    if (!camera || !camera->eventOn || !data || *size < sizeof(EVENT_NEW_BUFFER_DATA))
        return Fail(GC_ERR_INVALID_PARAMETER, "not an event, or no room for its data");
    struct timespec until;
    clock_gettime(CLOCK_REALTIME, &until);
    uint64_t ns =
        (uint64_t)until.tv_nsec + (timeout > 100000000u ? 100000000u : timeout) * 1000000u;
    until.tv_sec += (time_t)(ns / 1000000000u), until.tv_nsec = (long)(ns % 1000000000u);
    pthread_mutex_lock(&camera->mutex);
    int timedOut = 0;
    while (!camera->outputCount && !camera->killed && !timedOut)
        timedOut = pthread_cond_timedwait(&camera->wake, &camera->mutex, &until) != 0;
    GC_ERROR result = camera->killed ? Fail(GC_ERR_ABORT, "killed")
                      : timedOut     ? Fail(GC_ERR_TIMEOUT, "no buffer")
                                     : GC_ERR_SUCCESS;
    camera->killed = 0;
    if (result == GC_ERR_SUCCESS) {
        struct Buffer* buffer = &camera->buffers[camera->output[0]];
        memmove(camera->output, camera->output + 1, (size_t)--camera->outputCount * sizeof(int));
        buffer->queued = 0;
        EVENT_NEW_BUFFER_DATA record = {buffer, buffer->user};
        memcpy(data, &record, sizeof(record));
        *size = sizeof(record);
    }
    pthread_mutex_unlock(&camera->mutex);
    return result;
}

TP_EXPORT GC_ERROR EventKill(EVENT_HANDLE event) {
    FIND_OR_FAIL(camera, EVENT_OF(event), "not an event");
    pthread_mutex_lock(&camera->mutex);
    camera->killed = 1;
    pthread_cond_broadcast(&camera->wake);
    pthread_mutex_unlock(&camera->mutex);
    return GC_ERR_SUCCESS;
}

TP_EXPORT GC_ERROR EventFlush(EVENT_HANDLE event) {
    return EVENT_OF(event) ? DSFlushQueue(&EVENT_OF(event)->stream, ACQ_QUEUE_OUTPUT_DISCARD)
                           : Fail(GC_ERR_INVALID_HANDLE, "not an event");
}
#endif
