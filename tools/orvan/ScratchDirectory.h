// A private temporary directory for the SDK's and the tool's file writers and readers (feature
// files, PNG images) when the viewer moves their content over HTTP instead. Removed with the
// object, with everything in it.
#ifndef ORVAN_TOOLS_ORVAN_SCRATCHDIRECTORY_H
#define ORVAN_TOOLS_ORVAN_SCRATCHDIRECTORY_H

#include <filesystem>
#include <string>

namespace Orvan {
namespace Cli {

class ScratchDirectory {
public:
    // Throws ToolError when the temporary directory refuses it.
    ScratchDirectory();
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    const std::filesystem::path& Path() const { return m_path; }
    // The content of the one file a writer left in the directory, whatever it named it.
    std::string ReadOnlyFile() const;
    void Write(const std::string& name, const std::string& content) const;

private:
    std::filesystem::path m_path;
};

} // namespace Cli
} // namespace Orvan

#endif
