// The exception classes through which every failure leaves the GenICam libraries.
#ifndef GENICAM_GCEXCEPTION_H
#define GENICAM_GCEXCEPTION_H

#include <Base/GCString.h>

#include <cstdarg>
#include <exception>
#include <string>

namespace GenICam {

class GenericException : public std::exception {
public:
    GenericException(const char* description, const char* sourceFile, unsigned sourceLine);

    // The description exactly as given; callers compose their own messages.
    const char* GetDescription() const noexcept { return m_description.c_str(); }
    const char* GetSourceFileName() const noexcept { return m_sourceFile.c_str(); }
    unsigned GetSourceLine() const noexcept { return m_sourceLine; }
    const char* what() const noexcept override { return m_description.c_str(); }

private:
    std::string m_description;
    std::string m_sourceFile;
    unsigned m_sourceLine;
};

#define GENICAM_DECLARE_EXCEPTION(Name)                                                            \
    class Name : public GenericException {                                                         \
    public:                                                                                        \
        using GenericException::GenericException;                                                  \
    }

GENICAM_DECLARE_EXCEPTION(BadAllocException);
GENICAM_DECLARE_EXCEPTION(InvalidArgumentException);
GENICAM_DECLARE_EXCEPTION(OutOfRangeException);
GENICAM_DECLARE_EXCEPTION(PropertyException);
GENICAM_DECLARE_EXCEPTION(RuntimeException);
GENICAM_DECLARE_EXCEPTION(LogicalErrorException);
GENICAM_DECLARE_EXCEPTION(AccessException);
GENICAM_DECLARE_EXCEPTION(TimeoutException);
GENICAM_DECLARE_EXCEPTION(DynamicCastException);

#undef GENICAM_DECLARE_EXCEPTION

// Builds an exception of class E that records where it was raised. Used through the
// *_EXCEPTION macros below: throw RUNTIME_EXCEPTION("Node '%s' not found", name);
template <class E>
class ExceptionReporter {
public:
    ExceptionReporter(const char* sourceFile, unsigned sourceLine)
        : m_sourceFile(sourceFile), m_sourceLine(sourceLine) {}

    E Report(const char* format, ...) const __attribute__((format(printf, 2, 3)));
    E Report(const gcstring& description) const {
        return E(description.c_str(), m_sourceFile, m_sourceLine);
    }
    E Report(const std::string& description) const {
        return E(description.c_str(), m_sourceFile, m_sourceLine);
    }

private:
    const char* m_sourceFile;
    unsigned m_sourceLine;
};

// printf-style formatting of an exception description; never throws.
std::string FormatExceptionDescription(const char* format, va_list args) noexcept;

template <class E>
E ExceptionReporter<E>::Report(const char* format, ...) const {
    va_list args;
    va_start(args, format);
    std::string description = FormatExceptionDescription(format, args);
    va_end(args);
    return E(description.c_str(), m_sourceFile, m_sourceLine);
}

} // namespace GenICam

#define GENICAM_EXCEPTION_AT(E)                                                                    \
    ::GenICam::ExceptionReporter<::GenICam::E>(__FILE__, __LINE__).Report
#define GENERIC_EXCEPTION GENICAM_EXCEPTION_AT(GenericException)
#define BAD_ALLOC_EXCEPTION GENICAM_EXCEPTION_AT(BadAllocException)
#define INVALID_ARGUMENT_EXCEPTION GENICAM_EXCEPTION_AT(InvalidArgumentException)
#define OUT_OF_RANGE_EXCEPTION GENICAM_EXCEPTION_AT(OutOfRangeException)
#define PROPERTY_EXCEPTION GENICAM_EXCEPTION_AT(PropertyException)
#define RUNTIME_EXCEPTION GENICAM_EXCEPTION_AT(RuntimeException)
#define LOGICAL_ERROR_EXCEPTION GENICAM_EXCEPTION_AT(LogicalErrorException)
#define ACCESS_EXCEPTION GENICAM_EXCEPTION_AT(AccessException)
#define TIMEOUT_EXCEPTION GENICAM_EXCEPTION_AT(TimeoutException)
#define DYNAMICCAST_EXCEPTION GENICAM_EXCEPTION_AT(DynamicCastException)

#endif
