#include "TextTable.h"

#include <algorithm>

namespace Orvan {
namespace Cli {

TextTable::TextTable(std::vector<std::string> header) {
    m_rows.push_back(std::move(header));
}

void TextTable::AddRow(std::vector<std::string> row) {
    row.resize(m_rows.front().size());
    m_rows.push_back(std::move(row));
}

void TextTable::Print(std::ostream& out) const {
    std::vector<size_t> widths(m_rows.front().size(), 0);
    for (const auto& row : m_rows)
        for (size_t c = 0; c < row.size(); ++c)
            widths[c] = std::max(widths[c], row[c].size());
    for (const auto& row : m_rows) {
        std::string line;
        for (size_t c = 0; c < row.size(); ++c) {
            line += row[c];
            if (c + 1 < row.size())
                line += std::string(widths[c] - row[c].size() + 2, ' ');
        }
        // Empty trailing cells would leave spaces at the end of the line.
        line.erase(line.find_last_not_of(' ') + 1);
        out << line << '\n';
    }
}

} // namespace Cli
} // namespace Orvan
