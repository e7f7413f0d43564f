// Rows of text printed in columns as wide as their widest cell.
#ifndef ORVAN_TOOLS_ORVAN_TEXTTABLE_H
#define ORVAN_TOOLS_ORVAN_TEXTTABLE_H

#include <ostream>
#include <string>
#include <vector>

namespace Orvan {
namespace Cli {

class TextTable {
public:
    explicit TextTable(std::vector<std::string> header);
    void AddRow(std::vector<std::string> row);
    void Print(std::ostream& out) const;

private:
    std::vector<std::vector<std::string>> m_rows;
};

} // namespace Cli
} // namespace Orvan

#endif
