// The one way failures leave the library: producer failures and the library's own errors become
// GenICam exceptions with composed messages.
#ifndef ORVAN_CORE_ERRORTRANSLATION_H
#define ORVAN_CORE_ERRORTRANSLATION_H

#include <Base/GCException.h>

#include <cstdint>
#include <string>

namespace Orvan {

// Where a failure was met: the source file name without extension, the library function, and
// the throw site's path and line.
struct ErrorSite {
    const char* file;
    const char* function;
    const char* sourcePath;
    unsigned sourceLine;
};

// Fetches the calling thread's last producer error text; a failing query gives the fallback
// text. Must run right after the failing call, on its thread.
std::string ProducerErrorText();

// Throws the exception the table assigns to a failed producer call:
// "<class> (<GC_ERR name>): <description> (<file>, <function>; GenTL::<call>); <producer text>".
[[noreturn]] void ThrowGenTLError(int32_t code, const std::string& description,
                                  const ErrorSite& site, const char* call);

// The same with a producer text fetched earlier, on the thread that made the failing call: for
// calls made on helper threads and reported after they were joined.
[[noreturn]] void ThrowGenTLError(int32_t code, const std::string& description,
                                  const ErrorSite& site, const char* call,
                                  const std::string& producerText);

// The short form without call and producer text: "<class> (<GC_ERR name>): <description>
// (<file>, <function>)".
[[noreturn]] void ThrowGenTLErrorShort(int32_t code, const std::string& description,
                                       const ErrorSite& site);

// The name of the exception class a code maps to, and the code's name in messages.
const char* GenTLErrorClassName(int32_t code);
const char* GenTLErrorName(int32_t code);

template <class E>
struct ExceptionClassName;

#define ORVAN_EXCEPTION_NAME(E)                                                                    \
    template <>                                                                                    \
    struct ExceptionClassName<GenICam::E> {                                                        \
        static constexpr const char* value = #E;                                                   \
    }
ORVAN_EXCEPTION_NAME(GenericException);
ORVAN_EXCEPTION_NAME(RuntimeException);
ORVAN_EXCEPTION_NAME(InvalidArgumentException);
ORVAN_EXCEPTION_NAME(OutOfRangeException);
ORVAN_EXCEPTION_NAME(LogicalErrorException);
ORVAN_EXCEPTION_NAME(TimeoutException);
ORVAN_EXCEPTION_NAME(AccessException);
ORVAN_EXCEPTION_NAME(BadAllocException);
ORVAN_EXCEPTION_NAME(DynamicCastException);
#undef ORVAN_EXCEPTION_NAME

// Throws E with "<class>: <description> (<file>, <function>)".
template <class E>
[[noreturn]] void ThrowLibraryError(const std::string& description, const ErrorSite& site) {
    std::string message = std::string(ExceptionClassName<E>::value) + ": " + description + " (" +
                          site.file + ", " + site.function + ")";
    throw E(message.c_str(), site.sourcePath, site.sourceLine);
}

} // namespace Orvan

// A throw site in the current source file: ORVAN_SITE("Device", "GetBuffer").
#define ORVAN_SITE(file, function)                                                                 \
    ::Orvan::ErrorSite {                                                                           \
        file, function, __FILE__, __LINE__                                                         \
    }

#endif
