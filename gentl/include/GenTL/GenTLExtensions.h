/*
 * Orvan producer extensions to GenTL: extra entry points for GigE Vision network set-up, unicast
 * discovery, leader waits, resend tuning and action commands, and the producer's own values in
 * the *_CUSTOM_ID ranges of the GenTL enumerations.
 *
 * Same layout as GenTL.h: global scope in C, namespace GenTL with C linkage in C++.
 *
 * IPv4 addresses are passed as numbers with the first octet in the most significant byte
 * (192.168.0.1 is 0xC0A80001); MAC addresses sit in the low 48 bits of a 64-bit value, first
 * octet most significant.
 */
#ifndef ORVAN_GENTL_GENTLEXTENSIONS_H
#define ORVAN_GENTL_GENTLEXTENSIONS_H

#include <GenTL/GenTL.h>

#ifdef __cplusplus
namespace GenTL {
extern "C" {
#endif

/* ---- Device info commands (IFGetDeviceInfo, DevGetInfo) ------------------------------------- */

enum ORVAN_DEVICE_INFO_CMD_LIST {
    /* INT64: the camera's MAC address. */
    DEVICE_INFO_ORVAN_GEV_MAC_ADDRESS = DEVICE_INFO_CUSTOM_ID + 1,
    /* UINT32: current IPv4 address. */
    DEVICE_INFO_ORVAN_GEV_IP_ADDRESS = DEVICE_INFO_CUSTOM_ID + 2,
    /* UINT32: current subnet mask. */
    DEVICE_INFO_ORVAN_GEV_SUBNET_MASK = DEVICE_INFO_CUSTOM_ID + 3,
    /* Reserved and never answered (GC_ERR_NOT_IMPLEMENTED); not to be given another meaning, so
     * the numbers around it keep their place. */
    DEVICE_INFO_ORVAN_RESERVED_1004 = DEVICE_INFO_CUSTOM_ID + 4,
    /* UINT32: current default gateway. */
    DEVICE_INFO_ORVAN_GEV_DEFAULT_GATEWAY = DEVICE_INFO_CUSTOM_ID + 5,
    /* BOOL8: the camera takes its address from DHCP. */
    DEVICE_INFO_ORVAN_GEV_DHCP_ENABLED = DEVICE_INFO_CUSTOM_ID + 6,
    /* BOOL8: the camera uses its stored (persistent) address. */
    DEVICE_INFO_ORVAN_GEV_PERSISTENT_IP_ENABLED = DEVICE_INFO_CUSTOM_ID + 7,
    /* BOOL8: the camera falls back to a link-local address. */
    DEVICE_INFO_ORVAN_GEV_LLA_ENABLED = DEVICE_INFO_CUSTOM_ID + 8,
    /* BOOL8: the open device still answers (DevGetInfo only). */
    DEVICE_INFO_ORVAN_CONNECTED = DEVICE_INFO_CUSTOM_ID + 9
};

/* ---- Interface info commands (TLGetInterfaceInfo, IFGetInfo) -------------------------------- */

enum ORVAN_INTERFACE_INFO_CMD_LIST {
    /* UINT64: MAC address of the host adapter. */
    INTERFACE_INFO_ORVAN_GEV_MAC_ADDRESS = INTERFACE_INFO_CUSTOM_ID + 1,
    /* UINT64: IPv4 address of the host adapter in the low 32 bits. */
    INTERFACE_INFO_ORVAN_GEV_IP_ADDRESS = INTERFACE_INFO_CUSTOM_ID + 2
};

/* ---- Payload types (BUFFER_INFO_PAYLOADTYPE) ------------------------------------------------ */

enum ORVAN_PAYLOADTYPE_INFO_IDS {
    /* Compressed image; BUFFER_INFO_PIXELFORMAT names the compressed format. */
    PAYLOAD_TYPE_ORVAN_COMPRESSED_IMAGE = PAYLOAD_TYPE_CUSTOM_ID + 1,
    /* Compressed image followed by chunk data; BUFFER_INFO_DATA_SIZE covers both. */
    PAYLOAD_TYPE_ORVAN_COMPRESSED_IMAGE_EXTENDED_CHUNK = PAYLOAD_TYPE_CUSTOM_ID + 2,
    /* Uncompressed image followed by chunk data: the GigE Vision extended-chunk bit (0x4000) set
     * on the image type, passed through as the camera sent it. */
    PAYLOAD_TYPE_ORVAN_IMAGE_EXTENDED_CHUNK = 0x4001
};

/* ---- Event types (GCRegisterEvent) ---------------------------------------------------------- */

enum ORVAN_EVENT_TYPE_LIST {
    /* Trigger events of an event-based-sensor stream, registered on its data stream. */
    EVENT_ORVAN_EVS_TRIGGER = EVENT_CUSTOM_ID + 1
};

/* ---- Entry points --------------------------------------------------------------------------- */

/* Sets a camera's IPv4 configuration by MAC address (GigE Vision FORCEIP), reaching it through
 * the given interface even when its current address is outside the interface's subnet. */
GC_API IFForceIp(IF_HANDLE hInterface, uint64_t macAddress, uint32_t ip, uint32_t subnet,
                 uint32_t gateway);

/* The interface keeps a list of camera addresses that IFUpdateDeviceList asks directly, in
 * addition to its broadcast discovery, so cameras behind routers can be found. Adding an address
 * already listed, or removing one that is not, succeeds without change. */
GC_API IFAddUnicastDiscoveryDevice(IF_HANDLE hInterface, uint32_t ip);
GC_API IFRemoveUnicastDiscoveryDevice(IF_HANDLE hInterface, uint32_t ip);
/* *count holds the capacity of ips on entry and the number of addresses on return. With ips null
 * only the number is returned; with too small a capacity the result is GC_ERR_BUFFER_TOO_SMALL
 * and *count is the number needed. */
GC_API IFGetUnicastDiscoveryDevices(IF_HANDLE hInterface, uint32_t* ips, uint32_t* count);

/* Blocks until the leader of the next frame arrives on the stream, up to timeoutMs milliseconds
 * (GENTL_INFINITE: no limit); GC_ERR_TIMEOUT when none came. */
GC_API DSWaitForNextLeader(DS_HANDLE hDataStream, uint64_t timeoutMs);
/* Forgets a leader that arrived before the next DSWaitForNextLeader. */
GC_API DSResetWaitForNextLeader(DS_HANDLE hDataStream);
/* Tunes packet-resend requests for the stream from what the camera will send: the number of
 * frames expected, frames per second, the camera's serial number and firmware version, and the
 * image width and height in pixels. */
GC_API DSSetupResendRetryParams(DS_HANDLE hDataStream, uint64_t frameCount, double frameRate,
                                const char* serialNumber, const char* firmwareVersion,
                                int32_t width, int32_t height);

/* Sends a GigE Vision action command to the device. scheduledTime is the device time, in device
 * clock ticks, at which to act; 0 asks for immediate action. */
GC_API DevSendActionCommand(DEV_HANDLE hDevice, uint32_t deviceKey, uint32_t groupKey,
                            uint32_t groupMask, uint64_t scheduledTime);

GC_API_P(PIFForceIp)
(IF_HANDLE hInterface, uint64_t macAddress, uint32_t ip, uint32_t subnet, uint32_t gateway);
GC_API_P(PIFAddUnicastDiscoveryDevice)(IF_HANDLE hInterface, uint32_t ip);
GC_API_P(PIFRemoveUnicastDiscoveryDevice)(IF_HANDLE hInterface, uint32_t ip);
GC_API_P(PIFGetUnicastDiscoveryDevices)(IF_HANDLE hInterface, uint32_t* ips, uint32_t* count);
GC_API_P(PDSWaitForNextLeader)(DS_HANDLE hDataStream, uint64_t timeoutMs);
GC_API_P(PDSResetWaitForNextLeader)(DS_HANDLE hDataStream);
GC_API_P(PDSSetupResendRetryParams)
(DS_HANDLE hDataStream, uint64_t frameCount, double frameRate, const char* serialNumber,
 const char* firmwareVersion, int32_t width, int32_t height);
GC_API_P(PDevSendActionCommand)
(DEV_HANDLE hDevice, uint32_t deviceKey, uint32_t groupKey, uint32_t groupMask,
 uint64_t scheduledTime);

#ifdef __cplusplus
} /* extern "C" */
} /* namespace GenTL */
#endif

#endif /* ORVAN_GENTL_GENTLEXTENSIONS_H */
