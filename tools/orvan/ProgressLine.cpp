#include "ProgressLine.h"

#include <unistd.h>

namespace Orvan {
namespace Cli {

ProgressLine::ProgressLine(std::FILE* out)
    : m_out(out), m_terminal(isatty(fileno(out)) == 1),
      m_interval(m_terminal ? std::chrono::milliseconds(250) : std::chrono::seconds(1)),
      m_lastShown(std::chrono::steady_clock::now()) {}

void ProgressLine::Update(const std::string& text) {
    const auto now = std::chrono::steady_clock::now();
    if (now - m_lastShown < m_interval)
        return;
    m_lastShown = now;
    if (m_terminal) {
        // Blanks cover what a longer previous line left behind.
        const size_t pad = m_lastWidth > text.size() ? m_lastWidth - text.size() : 0;
        std::fprintf(m_out, "\r%s%*s", text.c_str(), static_cast<int>(pad), "");
        m_lastWidth = text.size();
    } else {
        std::fprintf(m_out, "%s\n", text.c_str());
    }
    std::fflush(m_out);
}

void ProgressLine::Finish() {
    if (m_terminal && m_lastWidth > 0) {
        std::fputc('\n', m_out);
        std::fflush(m_out);
    }
}

} // namespace Cli
} // namespace Orvan
