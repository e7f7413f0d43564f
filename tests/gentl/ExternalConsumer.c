/*
 * An independent GenTL consumer in plain C: it knows the producer only as the file named on its
 * command line, resolves every function by name, and uses nothing but the GenTL C interface.
 * It lists the cameras, closes everything, opens the system again and opens the camera it saw
 * by its id without updating the new interface handle's device list (as consumers that cache
 * ids do), then streams a few images. Prints FAIL and exits non-zero at the first error.
 */
#include <GenTL/GenTL.h>

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define BUFFER_COUNT 4
#define FRAMES_WANTED 8
#define DISCOVERY_MS 300
#define FRAME_TIMEOUT_MS 3000

#define GENTL_FUNCTIONS(X)                                                                         \
    X(GCInitLib)                                                                                   \
    X(GCCloseLib)                                                                                  \
    X(GCGetLastError)                                                                              \
    X(GCGetPortURLInfo)                                                                            \
    X(GCReadPort)                                                                                  \
    X(GCWritePort)                                                                                 \
    X(GCRegisterEvent)                                                                             \
    X(GCUnregisterEvent)                                                                           \
    X(EventGetData)                                                                                \
    X(TLOpen)                                                                                      \
    X(TLClose)                                                                                     \
    X(TLUpdateInterfaceList)                                                                       \
    X(TLGetNumInterfaces)                                                                          \
    X(TLGetInterfaceID)                                                                            \
    X(TLOpenInterface)                                                                             \
    X(IFClose)                                                                                     \
    X(IFUpdateDeviceList)                                                                          \
    X(IFGetNumDevices)                                                                             \
    X(IFGetDeviceID)                                                                               \
    X(IFOpenDevice)                                                                                \
    X(DevClose)                                                                                    \
    X(DevGetPort)                                                                                  \
    X(DevGetNumDataStreams)                                                                        \
    X(DevGetDataStreamID)                                                                          \
    X(DevOpenDataStream)                                                                           \
    X(DSGetInfo)                                                                                   \
    X(DSAllocAndAnnounceBuffer)                                                                    \
    X(DSQueueBuffer)                                                                               \
    X(DSStartAcquisition)                                                                          \
    X(DSStopAcquisition)                                                                           \
    X(DSFlushQueue)                                                                                \
    X(DSGetBufferInfo)                                                                             \
    X(DSRevokeBuffer)                                                                              \
    X(DSClose)

#define DECLARE_POINTER(name) P##name name;
static struct { GENTL_FUNCTIONS(DECLARE_POINTER) } gentl;

typedef struct {
    char interfaceId[256];
    char deviceId[256];
} CameraAddress;

/* Reports the failed step with the producer's own explanation, then lets the producer close
 * whatever is still open. */
static void Fail(const char* step, GC_ERROR code) {
    char text[512] = "";
    size_t size = sizeof(text);
    GC_ERROR lastCode = 0;
    if (gentl.GCGetLastError(&lastCode, text, &size) != GC_ERR_SUCCESS)
        strcpy(text, "(GCGetLastError failed)");
    fprintf(stderr, "FAIL: %s returned %d: %s\n", step, (int)code, text);
    gentl.GCCloseLib();
    exit(EXIT_FAILURE);
}

#define CHECK(call)                                                                                \
    do {                                                                                           \
        GC_ERROR status_ = (call);                                                                 \
        if (status_ != GC_ERR_SUCCESS)                                                             \
            Fail(#call, status_);                                                                  \
    } while (0)

static void Require(int condition, const char* what) {
    if (!condition) {
        fprintf(stderr, "FAIL: %s\n", what);
        gentl.GCCloseLib();
        exit(EXIT_FAILURE);
    }
}

/* dlsym hands out data pointers; copying the bits is how C turns them into function pointers. */
static void LoadProducer(const char* path) {
    void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        fprintf(stderr, "FAIL: cannot load %s: %s\n", path, dlerror());
        exit(EXIT_FAILURE);
    }
#define RESOLVE(name)                                                                              \
    do {                                                                                           \
        void* symbol_ = dlsym(library, #name);                                                     \
        if (!symbol_) {                                                                            \
            fprintf(stderr, "FAIL: %s does not export " #name "\n", path);                         \
            exit(EXIT_FAILURE);                                                                    \
        }                                                                                          \
        memcpy(&gentl.name, &symbol_, sizeof symbol_);                                             \
    } while (0);
    GENTL_FUNCTIONS(RESOLVE)
#undef RESOLVE
}

/* The first camera on any interface, noted by id; every handle is closed again. */
static CameraAddress Survey(void) {
    CameraAddress camera = {"", ""};
    TL_HANDLE system = NULL;
    uint32_t interfaces = 0;
    CHECK(gentl.TLOpen(&system));
    CHECK(gentl.TLUpdateInterfaceList(system, NULL, DISCOVERY_MS));
    CHECK(gentl.TLGetNumInterfaces(system, &interfaces));
    for (uint32_t i = 0; i < interfaces && !camera.deviceId[0]; ++i) {
        IF_HANDLE interface = NULL;
        uint32_t devices = 0;
        size_t size = sizeof(camera.interfaceId);
        CHECK(gentl.TLGetInterfaceID(system, i, camera.interfaceId, &size));
        CHECK(gentl.TLOpenInterface(system, camera.interfaceId, &interface));
        CHECK(gentl.IFUpdateDeviceList(interface, NULL, DISCOVERY_MS));
        CHECK(gentl.IFGetNumDevices(interface, &devices));
        size = sizeof(camera.deviceId);
        if (devices > 0)
            CHECK(gentl.IFGetDeviceID(interface, 0, camera.deviceId, &size));
        CHECK(gentl.IFClose(interface));
    }
    CHECK(gentl.TLClose(system));
    Require(camera.deviceId[0] != '\0', "no interface lists a camera");
    return camera;
}

/* The camera's description as plain XML text, read through its port as its URL says. */
static char* ReadDescription(PORT_HANDLE port) {
    char url[512];
    size_t size = sizeof(url);
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    CHECK(gentl.GCGetPortURLInfo(port, 0, URL_INFO_URL, &type, url, &size));
    char* fields = strchr(url, ';');
    Require(strncmp(url, "local:", 6) == 0 && fields, "the description is not in the camera");
    Require(fields - url > 4 && strncmp(fields - 4, ".xml", 4) == 0,
            "this consumer reads only uncompressed descriptions");
    char* end = NULL;
    const uint64_t address = strtoull(fields + 1, &end, 16);
    size_t length = strtoull(end + 1, NULL, 16);
    char* xml = calloc(length + 1, 1);
    Require(xml != NULL, "out of memory");
    CHECK(gentl.GCReadPort(port, address, xml, &length));
    return xml;
}

/* The text of the first <tag> element after from, into out. */
static const char* Element(const char* from, const char* tag, char* out, size_t capacity) {
    char open[64];
    snprintf(open, sizeof open, "<%s>", tag);
    const char* start = strstr(from, open);
    Require(start != NULL, "the description lacks an element the command needs");
    start += strlen(open);
    const size_t length = strcspn(start, "<");
    Require(length < capacity, "an element of the description is too long");
    memcpy(out, start, length);
    out[length] = '\0';
    return start + length;
}

/* Executes a command feature the way a node map does: its value register, written big-endian. */
static void ExecuteCommand(PORT_HANDLE port, const char* xml, const char* command) {
    char pattern[192], registerName[128], text[64];
    snprintf(pattern, sizeof pattern, "<Command Name=\"%s\"", command);
    const char* feature = strstr(xml, pattern);
    Require(feature != NULL, "the description has no such command");
    Element(feature, "pValue", registerName, sizeof registerName);
    snprintf(pattern, sizeof pattern, "Name=\"%s\"", registerName);
    const char* reg = strstr(xml, pattern);
    Require(reg != NULL, "the description lacks the command's register");
    Element(reg, "Address", text, sizeof text);
    const uint64_t address = strtoull(text, NULL, 0);
    Element(reg, "Length", text, sizeof text);
    size_t length = strtoull(text, NULL, 0);
    uint8_t value[8] = {0};
    Require(length >= 1 && length <= sizeof value, "command register length");
    value[length - 1] = 1;
    CHECK(gentl.GCWritePort(port, address, value, &length));
}

static void TakeFrames(DS_HANDLE stream, EVENT_HANDLE newBuffer) {
    for (int frame = 0; frame < FRAMES_WANTED; ++frame) {
        EVENT_NEW_BUFFER_DATA data;
        size_t size = sizeof(data);
        CHECK(gentl.EventGetData(newBuffer, &data, &size, FRAME_TIMEOUT_MS));
        size_t filled = 0;
        size = sizeof(filled);
        INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
        CHECK(gentl.DSGetBufferInfo(stream, data.BufferHandle, BUFFER_INFO_SIZE_FILLED, &type,
                                    &filled, &size));
        Require(filled > 0, "a delivered buffer holds no data");
        CHECK(gentl.DSQueueBuffer(stream, data.BufferHandle));
    }
}

static void Stream(DEV_HANDLE device) {
    PORT_HANDLE port = NULL;
    uint32_t streams = 0;
    char streamId[256];
    size_t size = sizeof(streamId);
    DS_HANDLE stream = NULL;
    CHECK(gentl.DevGetPort(device, &port));
    CHECK(gentl.DevGetNumDataStreams(device, &streams));
    Require(streams > 0, "the camera has no data stream");
    CHECK(gentl.DevGetDataStreamID(device, 0, streamId, &size));
    CHECK(gentl.DevOpenDataStream(device, streamId, &stream));

    size_t payload = 0;
    size = sizeof(payload);
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    CHECK(gentl.DSGetInfo(stream, STREAM_INFO_PAYLOAD_SIZE, &type, &payload, &size));
    BUFFER_HANDLE buffers[BUFFER_COUNT];
    for (int i = 0; i < BUFFER_COUNT; ++i) {
        CHECK(gentl.DSAllocAndAnnounceBuffer(stream, payload, NULL, &buffers[i]));
        CHECK(gentl.DSQueueBuffer(stream, buffers[i]));
    }
    EVENT_HANDLE newBuffer = NULL;
    CHECK(gentl.GCRegisterEvent(stream, EVENT_NEW_BUFFER, &newBuffer));
    char* xml = ReadDescription(port);
    CHECK(gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE));
    ExecuteCommand(port, xml, "AcquisitionStart");
    TakeFrames(stream, newBuffer);
    ExecuteCommand(port, xml, "AcquisitionStop");
    free(xml);
    CHECK(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT));
    CHECK(gentl.DSFlushQueue(stream, ACQ_QUEUE_ALL_DISCARD));
    CHECK(gentl.GCUnregisterEvent(stream, EVENT_NEW_BUFFER));
    for (int i = 0; i < BUFFER_COUNT; ++i)
        CHECK(gentl.DSRevokeBuffer(stream, buffers[i], NULL, NULL));
    CHECK(gentl.DSClose(stream));
}

int main(int argc, char** argv) {
    if (argc != 2) {
        fprintf(stderr, "usage: %s <producer.cti>\n", argv[0]);
        return EXIT_FAILURE;
    }
    LoadProducer(argv[1]);
    CHECK(gentl.GCInitLib());
    const CameraAddress camera = Survey();

    TL_HANDLE system = NULL;
    IF_HANDLE interface = NULL;
    DEV_HANDLE device = NULL;
    CHECK(gentl.TLOpen(&system));
    CHECK(gentl.TLOpenInterface(system, camera.interfaceId, &interface));
    CHECK(gentl.IFOpenDevice(interface, camera.deviceId, DEVICE_ACCESS_CONTROL, &device));
    Stream(device);
    CHECK(gentl.DevClose(device));
    CHECK(gentl.IFClose(interface));
    CHECK(gentl.TLClose(system));
    CHECK(gentl.GCCloseLib());
    printf("PASS: streamed %d images from %s on %s\n", FRAMES_WANTED, camera.deviceId,
           camera.interfaceId);
    return EXIT_SUCCESS;
}
