// The live line of a running stream. On a terminal it is redrawn in place; into a pipe or file
// it is written as separate lines, less often, so logs stay readable.
#ifndef ORVAN_TOOLS_ORVAN_PROGRESSLINE_H
#define ORVAN_TOOLS_ORVAN_PROGRESSLINE_H

#include <chrono>
#include <cstdio>
#include <string>

namespace Orvan {
namespace Cli {

class ProgressLine {
public:
    explicit ProgressLine(std::FILE* out);
    // Shows the text if the last one shown is old enough.
    void Update(const std::string& text);
    // Ends a line redrawn in place, so that what follows starts on a fresh line.
    void Finish();

private:
    std::FILE* m_out;
    bool m_terminal;
    std::chrono::steady_clock::duration m_interval;
    std::chrono::steady_clock::time_point m_lastShown{};
    size_t m_lastWidth = 0;
};

} // namespace Cli
} // namespace Orvan

#endif
