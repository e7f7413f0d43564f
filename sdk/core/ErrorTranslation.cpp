#include "ErrorTranslation.h"

#include <GenTL/GenTL.h>

namespace Orvan {
namespace {

enum class ExceptionKind {
    Generic,
    Runtime,
    InvalidArgument,
    OutOfRange,
    LogicalError,
    Timeout,
    Access
};

struct CodeRow {
    const char* name;
    ExceptionKind kind;
};

// Codes -1022 .. -1002, indexed by code + 1022.
constexpr CodeRow kCodeTable[] = {
    {"GC_ERR_BUSY", ExceptionKind::Runtime},
    {"GC_ERR_OUT_OF_MEMORY", ExceptionKind::Runtime},
    {"GC_ERR_RESOURCE_EXHAUSTED", ExceptionKind::Runtime},
    {"GC_ERR_INVALID_VALUE", ExceptionKind::InvalidArgument},
    {"GC_ERR_PARSING_CHUNK_DATA", ExceptionKind::Runtime},
    {"GC_ERR_INVALID_INDEX", ExceptionKind::OutOfRange},
    {"GC_ERR_BUFFER_TOO_SMALL", ExceptionKind::InvalidArgument},
    {"GC_ERR_INVALID_ADDRESS", ExceptionKind::InvalidArgument},
    {"GC_ERR_NOT_AVAILABLE", ExceptionKind::LogicalError},
    {"GC_ERR_INVALID_BUFFER", ExceptionKind::InvalidArgument},
    {"GC_ERR_ABORT", ExceptionKind::Runtime},
    {"GC_ERR_TIMEOUT", ExceptionKind::Timeout},
    {"GC_ERR_IO", ExceptionKind::Runtime},
    {"GC_ERR_INVALID_PARAMETER", ExceptionKind::InvalidArgument},
    {"GC_ERR_NO_DATA", ExceptionKind::Runtime},
    {"GC_ERR_INVALID_ID", ExceptionKind::InvalidArgument},
    {"GC_ERR_INVALID_HANDLE", ExceptionKind::InvalidArgument},
    {"GC_ERR_ACCESS_DENIED", ExceptionKind::Access},
    {"GC_ERR_RESOURCE_IN_USE", ExceptionKind::LogicalError},
    {"GC_ERR_NOT_IMPLEMENTED", ExceptionKind::LogicalError},
    {"GC_ERR_NOT_INITIALIZED", ExceptionKind::LogicalError},
};
constexpr CodeRow kOtherRow = {"GC_ERR_ERROR", ExceptionKind::Generic};

const CodeRow& RowFor(int32_t code) {
    if (code < -1022 || code > -1002)
        return kOtherRow;
    return kCodeTable[code + 1022];
}

template <class E>
[[noreturn]] void Throw(const std::string& message, const ErrorSite& site) {
    throw E(message.c_str(), site.sourcePath, site.sourceLine);
}

[[noreturn]] void ThrowKind(ExceptionKind kind, const std::string& message, const ErrorSite& site) {
    switch (kind) {
    case ExceptionKind::Runtime:
        Throw<GenICam::RuntimeException>(message, site);
    case ExceptionKind::InvalidArgument:
        Throw<GenICam::InvalidArgumentException>(message, site);
    case ExceptionKind::OutOfRange:
        Throw<GenICam::OutOfRangeException>(message, site);
    case ExceptionKind::LogicalError:
        Throw<GenICam::LogicalErrorException>(message, site);
    case ExceptionKind::Timeout:
        Throw<GenICam::TimeoutException>(message, site);
    case ExceptionKind::Access:
        Throw<GenICam::AccessException>(message, site);
    case ExceptionKind::Generic:
        break;
    }
    Throw<GenICam::GenericException>(message, site);
}

const char* KindName(ExceptionKind kind) {
    switch (kind) {
    case ExceptionKind::Runtime:
        return "RuntimeException";
    case ExceptionKind::InvalidArgument:
        return "InvalidArgumentException";
    case ExceptionKind::OutOfRange:
        return "OutOfRangeException";
    case ExceptionKind::LogicalError:
        return "LogicalErrorException";
    case ExceptionKind::Timeout:
        return "TimeoutException";
    case ExceptionKind::Access:
        return "AccessException";
    case ExceptionKind::Generic:
        break;
    }
    return "GenericException";
}

std::string MessageHead(const CodeRow& row, const std::string& description, const ErrorSite& site) {
    return std::string(KindName(row.kind)) + " (" + row.name + "): " + description + " (" +
           site.file + ", " + site.function;
}

} // namespace

std::string ProducerErrorText() {
    char buffer[2048] = {};
    size_t size = sizeof(buffer);
    GenTL::GC_ERROR code = 0;
    if (GenTL::GCGetLastError(&code, buffer, &size) != GenTL::GC_ERR_SUCCESS)
        return "Unable to get error from GenTL layer.";
    buffer[sizeof(buffer) - 1] = '\0';
    return buffer;
}

const char* GenTLErrorClassName(int32_t code) {
    return KindName(RowFor(code).kind);
}

const char* GenTLErrorName(int32_t code) {
    return RowFor(code).name;
}

void ThrowGenTLError(int32_t code, const std::string& description, const ErrorSite& site,
                     const char* call) {
    ThrowGenTLError(code, description, site, call, ProducerErrorText());
}

void ThrowGenTLError(int32_t code, const std::string& description, const ErrorSite& site,
                     const char* call, const std::string& producerText) {
    const CodeRow& row = RowFor(code);
    ThrowKind(row.kind,
              MessageHead(row, description, site) + "; GenTL::" + call + "); " + producerText,
              site);
}

void ThrowGenTLErrorShort(int32_t code, const std::string& description, const ErrorSite& site) {
    ProducerErrorText(); // fetched as for the long form, but not part of this message
    const CodeRow& row = RowFor(code);
    ThrowKind(row.kind, MessageHead(row, description, site) + ")", site);
}

} // namespace Orvan
