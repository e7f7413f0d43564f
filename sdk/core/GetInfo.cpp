#include "GetInfo.h"

#include "ErrorTranslation.h"

#include <type_traits>

namespace Orvan {
namespace {

// A bool is read through a byte: the producer may report any non-zero value as true, and such a
// byte is not a valid bool.
template <class T>
using Storage = std::conditional_t<std::is_same<T, bool>::value, uint8_t, T>;

template <class T>
T FromStorage(Storage<T> value) {
    if constexpr (std::is_same<T, bool>::value)
        return value != 0;
    else
        return value;
}

} // namespace

template <class T>
T GetInfo(TLDataStream* stream, void* bufferHandle, int32_t cmd) {
    if (!stream)
        ThrowLibraryError<GenICam::InvalidArgumentException>("DataStream is null",
                                                             ORVAN_SITE("Buffer", "GetInfo"));
    if (!bufferHandle)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Buffer is null",
                                                             ORVAN_SITE("Buffer", "GetInfo"));
    Storage<T> value{};
    int32_t type = 0;
    size_t size = sizeof(value);
    int32_t status = stream->GetBufferInfo(bufferHandle, cmd, &type, &value, &size);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to get buffer information", ORVAN_SITE("Buffer", "GetInfo"),
                        "DSGetBufferInfo");
    return FromStorage<T>(value);
}

template <class T>
T GetInfo(TLInterface* iface, const char* deviceId, int32_t cmd) {
    if (!iface)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Interface is null",
                                                             ORVAN_SITE("System", "GetInfo"));
    if (!deviceId)
        ThrowLibraryError<GenICam::InvalidArgumentException>("pDevId is null",
                                                             ORVAN_SITE("System", "GetInfo"));
    Storage<T> value{};
    int32_t type = 0;
    size_t size = sizeof(value);
    int32_t status = iface->GetDeviceInfo(deviceId, cmd, &type, &value, &size);
    // A producer without the item does not have the feature: its default value.
    if (status == GenTL::GC_ERR_NOT_IMPLEMENTED)
        return T{};
    // The device and interface queries share the buffer query's description on purpose.
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to get buffer information", ORVAN_SITE("System", "GetInfo"),
                        "IFGetDeviceInfo");
    return FromStorage<T>(value);
}

template <class T>
T GetInfo(TLInterface* iface, int32_t cmd) {
    if (!iface)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Interface is null",
                                                             ORVAN_SITE("System", "GetInfo"));
    T value{};
    int32_t type = 0;
    size_t size = sizeof(value);
    int32_t status = iface->GetInfo(cmd, &type, &value, &size);
    if (status == GenTL::GC_ERR_NOT_IMPLEMENTED)
        return T{};
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to get buffer information", ORVAN_SITE("System", "GetInfo"),
                        "IFGetInfo");
    return value;
}

GenICam::gcstring GetInfoString(TLInterface* iface, const char* deviceId, int32_t cmd) {
    char text[256] = {};
    int32_t type = 0;
    size_t size = sizeof(text);
    int32_t status = iface->GetDeviceInfo(deviceId, cmd, &type, text, &size);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to get device information",
                        ORVAN_SITE("System", "GetInfoString"), "IFGetDeviceInfo");
    if (type != GenTL::INFO_DATATYPE_STRING)
        ThrowLibraryError<GenICam::LogicalErrorException>(
            "Incorrect datatype returned (string expected)", ORVAN_SITE("System", "GetInfoString"));
    text[sizeof(text) - 1] = '\0';
    return text;
}

template uint8_t* GetInfo<uint8_t*>(TLDataStream*, void*, int32_t);
template uint64_t GetInfo<uint64_t>(TLDataStream*, void*, int32_t);
template bool GetInfo<bool>(TLDataStream*, void*, int32_t);
template int32_t GetInfo<int32_t>(TLDataStream*, void*, int32_t);

template uint32_t GetInfo<uint32_t>(TLInterface*, const char*, int32_t);
template bool GetInfo<bool>(TLInterface*, const char*, int32_t);
template int64_t GetInfo<int64_t>(TLInterface*, const char*, int32_t);

template uint64_t GetInfo<uint64_t>(TLInterface*, int32_t);
template int64_t GetInfo<int64_t>(TLInterface*, int32_t);

} // namespace Orvan
