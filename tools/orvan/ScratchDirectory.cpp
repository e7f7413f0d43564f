#include "ScratchDirectory.h"

#include "ToolError.h"

#include <fstream>
#include <iterator>
#include <system_error>
#include <vector>

#include <stdlib.h>

namespace Orvan {
namespace Cli {

ScratchDirectory::ScratchDirectory() {
    std::error_code error;
    const std::string pattern =
        (std::filesystem::temp_directory_path(error) / "orvan-view-XXXXXX").string();
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    if (error || !mkdtemp(name.data()))
        throw ToolError("cannot create a temporary directory for " + pattern);
    m_path = name.data();
}

ScratchDirectory::~ScratchDirectory() {
    std::error_code error; // a leftover in the temporary directory is not worth an exception
    std::filesystem::remove_all(m_path, error);
}

std::string ScratchDirectory::ReadOnlyFile() const {
    std::error_code error;
    const std::filesystem::directory_iterator files(m_path, error);
    if (error || files == std::filesystem::directory_iterator())
        throw ToolError("nothing was written into " + m_path.string());
    std::ifstream in(files->path(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void ScratchDirectory::Write(const std::string& name, const std::string& content) const {
    std::ofstream out(m_path / name, std::ios::binary | std::ios::trunc);
    out << content;
    if (!out.flush())
        throw ToolError("cannot write " + (m_path / name).string());
}

} // namespace Cli
} // namespace Orvan
