#include <Base/GCException.h>

#include <cstdio>
#include <vector>

namespace GenICam {

GenericException::GenericException(const char* description, const char* sourceFile,
                                   unsigned sourceLine)
    : m_description(description ? description : ""), m_sourceFile(sourceFile ? sourceFile : ""),
      m_sourceLine(sourceLine) {}

std::string FormatExceptionDescription(const char* format, va_list args) noexcept {
    if (!format)
        return std::string();
    try {
        va_list sizing;
        va_copy(sizing, args);
        int needed = std::vsnprintf(nullptr, 0, format, sizing);
        va_end(sizing);
        if (needed < 0)
            return format;
        std::vector<char> text(static_cast<size_t>(needed) + 1);
        std::vsnprintf(text.data(), text.size(), format, args);
        return std::string(text.data(), static_cast<size_t>(needed));
    } catch (...) {
        return std::string();
    }
}

} // namespace GenICam
