/*
 * Test control of the Orvan producer: a small C interface, separate from GenTL, through which a
 * test sets up the virtual cameras and injects faults. Nothing here is needed to use the
 * producer; a GenTL consumer never calls it.
 *
 * Every function may be called before GCInitLib, between GCInitLib and GCCloseLib, and after
 * GCCloseLib. They return 0 on success and a negative value on bad arguments (documented per
 * function). Settings persist until changed or until OrvanTC_Reset.
 */
#ifndef ORVAN_GENTL_ORVANTESTCONTROL_H
#define ORVAN_GENTL_ORVANTESTCONTROL_H

#include <GenTL/GenTL.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Failure results of the functions below. */
#define ORVAN_TC_OK 0
#define ORVAN_TC_BAD_ARGUMENT (-1) /* null pointer, zero count, unknown name */
#define ORVAN_TC_NOT_FOUND (-2)    /* no open system, or no camera with that id */

/* Frame faults for OrvanTC_InjectFrameFault. */
#define ORVAN_TC_FAULT_DROP 0       /* the frame is never delivered; it counts as lost */
#define ORVAN_TC_FAULT_CORRUPT 1    /* delivered with damaged pixels */
#define ORVAN_TC_FAULT_INCOMPLETE 2 /* delivered, marked incomplete */

/*
 * Chooses the virtual cameras: models[i] is one of "Mono", "Color", "LineScan", "MultiStream",
 * "Compressed", "EventSensor". Camera i sits on virtual interface i % interfaceCount. Takes
 * effect when the system module is next opened (TLOpen). The default is one "Mono" camera on one
 * interface. count may be 0 (interfaces without cameras). Unknown model or interfaceCount 0:
 * ORVAN_TC_BAD_ARGUMENT.
 */
GC_IMPORT_EXPORT int32_t OrvanTC_SetVirtualCameras(const char* const* models, uint32_t count,
                                                   uint32_t interfaceCount);

/*
 * Unplugs (connected = 0) or replugs (connected != 0) the camera with that device id (the
 * DEVICE_INFO_ID of IFGetDeviceID) in the open system. While unplugged the camera answers no
 * register access, sends no frames, leaves the device lists at the next IFUpdateDeviceList and
 * DevGetInfo(DEVICE_INFO_ORVAN_CONNECTED) reads false. Unplugging raises EVENT_ERROR on the open
 * device module. ORVAN_TC_NOT_FOUND without an open system or camera of that id.
 */
GC_IMPORT_EXPORT int32_t OrvanTC_SetDeviceConnected(const char* deviceId, int32_t connected);

/*
 * The next `count` frames of every stream of that camera suffer the fault
 * (ORVAN_TC_FAULT_*). ORVAN_TC_NOT_FOUND as above.
 */
GC_IMPORT_EXPORT int32_t OrvanTC_InjectFrameFault(const char* deviceId, int32_t fault,
                                                  uint32_t count);

/*
 * Makes the exported function named `function` (for example "DSQueueBuffer", "GCInitLib",
 * "GCGetLastError") fail once, on its nthCall-th call from now (1 = the next call), returning
 * `code` without doing anything; GCGetLastError then reports `code` and `text` (except when
 * GCGetLastError itself is the one failing). nthCall 0 disarms the function. Unknown name, null
 * text or code GC_ERR_SUCCESS: ORVAN_TC_BAD_ARGUMENT.
 */
GC_IMPORT_EXPORT int32_t OrvanTC_FailCall(const char* function, uint32_t nthCall, int32_t code,
                                          const char* text);

/*
 * Network cameras. Outside test control the producer lists, after the virtual interfaces, one
 * GigE Vision interface per IPv4 interface of the host ("GEV::<name>", loopback included). A
 * process under test control sees virtual cameras only: OrvanTC_SetVirtualCameras and
 * OrvanTC_Reset switch the network interfaces off, OrvanTC_EnableGigE (enabled != 0) switches
 * them back on. Takes effect at the next TLOpen.
 */
GC_IMPORT_EXPORT int32_t OrvanTC_EnableGigE(int32_t enabled);

/*
 * Narrows the GigE Vision interfaces to a comma-separated list of kernel interface names
 * ("lo" keeps every datagram on the machine) and sends discovery, FORCEIP and control to
 * `port` on the cameras. Null interfaces and port 0 fall back to the environment variables
 * ORVAN_GIGE_INTERFACES and ORVAN_GIGE_PORT, and those to every interface and port 3956.
 * Port above 65535: ORVAN_TC_BAD_ARGUMENT.
 */
GC_IMPORT_EXPORT int32_t OrvanTC_SetGigEDiscovery(const char* interfaces, uint32_t port);

/*
 * Other GenTL producers. Outside test control the producer loads, at TLOpen, every .cti file in
 * the folders of GENICAM_GENTL64_PATH (none when ORVAN_GENTL_PRODUCERS=0) and lists their
 * interfaces after its own. A process under test control loads none: OrvanTC_SetVirtualCameras
 * and OrvanTC_Reset switch them off, and this function names the folders (colon-separated)
 * to load from instead of the environment; null or empty switches them off. Takes effect at the
 * next TLOpen.
 */
GC_IMPORT_EXPORT int32_t OrvanTC_SetGenTLProducers(const char* folders);

/*
 * Disarms every injected call failure, restores the default cameras and the GigE Vision
 * settings, and switches the network interfaces and the other producers off.
 */
GC_IMPORT_EXPORT int32_t OrvanTC_Reset(void);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* ORVAN_GENTL_ORVANTESTCONTROL_H */
