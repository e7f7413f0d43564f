// The producer headers as seen from C++: names live in namespace GenTL, the numbers are the ones
// GenTL consumers and the SDK depend on, and the extension entry points have the signatures the
// SDK's wrappers call. Compile-time checks only; nothing here needs a symbol at link time.
#include <GenTL/GenTL.h>
#include <GenTL/GenTLExtensions.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace {

using namespace GenTL;

// The SDK turns -1022..-1002 into a table index (code + 1022), so the range must be gap-free and
// in this order.
constexpr GC_ERROR kPositionalCodes[] = {GC_ERR_BUSY,
                                         GC_ERR_OUT_OF_MEMORY,
                                         GC_ERR_RESOURCE_EXHAUSTED,
                                         GC_ERR_INVALID_VALUE,
                                         GC_ERR_PARSING_CHUNK_DATA,
                                         GC_ERR_INVALID_INDEX,
                                         GC_ERR_BUFFER_TOO_SMALL,
                                         GC_ERR_INVALID_ADDRESS,
                                         GC_ERR_NOT_AVAILABLE,
                                         GC_ERR_INVALID_BUFFER,
                                         GC_ERR_ABORT,
                                         GC_ERR_TIMEOUT,
                                         GC_ERR_IO,
                                         GC_ERR_INVALID_PARAMETER,
                                         GC_ERR_NO_DATA,
                                         GC_ERR_INVALID_ID,
                                         GC_ERR_INVALID_HANDLE,
                                         GC_ERR_ACCESS_DENIED,
                                         GC_ERR_RESOURCE_IN_USE,
                                         GC_ERR_NOT_IMPLEMENTED,
                                         GC_ERR_NOT_INITIALIZED};

constexpr bool CodesArePositional() {
    for (std::size_t i = 0; i < sizeof(kPositionalCodes) / sizeof(kPositionalCodes[0]); ++i) {
        if (kPositionalCodes[i] != -1022 + static_cast<GC_ERROR>(i))
            return false;
    }
    return true;
}
static_assert(sizeof(kPositionalCodes) / sizeof(kPositionalCodes[0]) == 21, "21 mapped codes");
static_assert(CodesArePositional(), "GC_ERR codes -1022..-1002 out of place");
static_assert(GC_ERR_SUCCESS == 0 && GC_ERR_ERROR == -1001 && GC_ERR_AMBIGUOUS == -1023 &&
                  GC_ERR_CUSTOM_ID == -10000,
              "codes outside the mapped range");

// GenTL values the SDK names in its own logic.
static_assert(GenTL::INFO_DATATYPE_STRING == 1 && GenTL::INFO_DATATYPE_BOOL8 == 11, "data types");
static_assert(GenTL::EVENT_NEW_BUFFER == 1 && GenTL::EVENT_REMOTE_DEVICE == 4, "event types");
static_assert(GenTL::PAYLOAD_TYPE_IMAGE == 1 && GenTL::PAYLOAD_TYPE_CHUNK_DATA == 4 &&
                  GenTL::PAYLOAD_TYPE_CHUNK_ONLY == 8 && GenTL::PAYLOAD_TYPE_CUSTOM_ID == 1000,
              "payload types");
static_assert(GenTL::BUFFER_INFO_PAYLOADTYPE == 19 && GenTL::BUFFER_INFO_PIXELFORMAT == 20 &&
                  GenTL::BUFFER_INFO_PIXEL_ENDIANNESS == 26 && GenTL::BUFFER_INFO_DATA_SIZE == 27 &&
                  GenTL::BUFFER_INFO_TIMESTAMP_NS == 28 &&
                  GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA == 30,
              "buffer info commands");
static_assert(GenTL::DEVICE_INFO_VENDOR == 1 && GenTL::DEVICE_INFO_MODEL == 2 &&
                  GenTL::DEVICE_INFO_USER_DEFINED_NAME == 6 &&
                  GenTL::DEVICE_INFO_SERIAL_NUMBER == 7 && GenTL::DEVICE_INFO_VERSION == 8,
              "device info commands");
static_assert(GenTL::ACQ_START_FLAGS_DEFAULT == 0 && GenTL::ACQ_STOP_FLAGS_DEFAULT == 0 &&
                  GenTL::ACQ_QUEUE_ALL_DISCARD == 4,
              "acquisition flags");
static_assert(GENTL_INFINITE == UINT64_MAX, "infinite timeout is all ones");

// The producer's custom numbers, as the SDK queries them.
static_assert(DEVICE_INFO_ORVAN_GEV_MAC_ADDRESS == 1001 &&
                  DEVICE_INFO_ORVAN_GEV_IP_ADDRESS == 1002 &&
                  DEVICE_INFO_ORVAN_GEV_SUBNET_MASK == 1003 &&
                  DEVICE_INFO_ORVAN_GEV_DEFAULT_GATEWAY == 1005 &&
                  DEVICE_INFO_ORVAN_GEV_DHCP_ENABLED == 1006 &&
                  DEVICE_INFO_ORVAN_GEV_PERSISTENT_IP_ENABLED == 1007 &&
                  DEVICE_INFO_ORVAN_GEV_LLA_ENABLED == 1008 && DEVICE_INFO_ORVAN_CONNECTED == 1009,
              "device custom info commands");
static_assert(INTERFACE_INFO_ORVAN_GEV_MAC_ADDRESS == 1001 &&
                  INTERFACE_INFO_ORVAN_GEV_IP_ADDRESS == 1002,
              "interface custom info commands");
static_assert(PAYLOAD_TYPE_ORVAN_COMPRESSED_IMAGE == 0x3E9 &&
                  PAYLOAD_TYPE_ORVAN_COMPRESSED_IMAGE_EXTENDED_CHUNK == 0x3EA &&
                  PAYLOAD_TYPE_ORVAN_IMAGE_EXTENDED_CHUNK == 0x4001 &&
                  EVENT_ORVAN_EVS_TRIGGER == 1001,
              "custom payload and event types");

// The wrappers hold every handle as void* and pass commands as int32_t.
static_assert(std::is_same<TL_HANDLE, void*>::value && std::is_same<EVENT_HANDLE, void*>::value &&
                  std::is_same<BUFFER_INFO_CMD, std::int32_t>::value,
              "handle and command types");
static_assert(sizeof(GenTL::S_EVENT_NEW_BUFFER) == 2 * sizeof(void*), "new-buffer record");
static_assert(
    std::is_same<decltype(GenTL::S_SINGLE_CHUNK_DATA::ChunkOffset), std::ptrdiff_t>::value,
    "chunk offset is signed");

// Extension signatures called by the SDK's wrappers.
template <typename Fn, typename Expected>
constexpr bool kSignature = std::is_same<Fn, Expected>::value;

static_assert(
    kSignature<decltype(GenTL::IFForceIp),
               GC_ERROR(IF_HANDLE, std::uint64_t, std::uint32_t, std::uint32_t, std::uint32_t)>,
    "IFForceIp");
static_assert(
    kSignature<decltype(GenTL::IFAddUnicastDiscoveryDevice), GC_ERROR(IF_HANDLE, std::uint32_t)> &&
        kSignature<decltype(GenTL::IFRemoveUnicastDiscoveryDevice),
                   GC_ERROR(IF_HANDLE, std::uint32_t)> &&
        kSignature<decltype(GenTL::IFGetUnicastDiscoveryDevices),
                   GC_ERROR(IF_HANDLE, std::uint32_t*, std::uint32_t*)>,
    "unicast discovery");
static_assert(
    kSignature<decltype(GenTL::DSWaitForNextLeader), GC_ERROR(DS_HANDLE, std::uint64_t)> &&
        kSignature<decltype(GenTL::DSResetWaitForNextLeader), GC_ERROR(DS_HANDLE)> &&
        kSignature<decltype(GenTL::DSSetupResendRetryParams),
                   GC_ERROR(DS_HANDLE, std::uint64_t, double, const char*, const char*,
                            std::int32_t, std::int32_t)>,
    "stream extensions");
static_assert(
    kSignature<decltype(GenTL::DevSendActionCommand),
               GC_ERROR(DEV_HANDLE, std::uint32_t, std::uint32_t, std::uint32_t, std::uint64_t)>,
    "DevSendActionCommand");

} // namespace
