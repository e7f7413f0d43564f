// orvan xml CAMERA [FILE]: the camera's description file, to stdout or to FILE.
#include "CameraScope.h"
#include "Commands.h"
#include "ToolError.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace Orvan {
namespace Cli {

namespace {

struct XmlOptions {
    std::string camera;
    std::string file;
};

// The SDK hands the description out only as "<serial>.xml" in the working directory, so it is
// written into a private directory, read back and removed; the user's directory is never touched.
class ScratchDirectory {
public:
    ScratchDirectory() {
        std::string pattern = (std::filesystem::temp_directory_path() / "orvan-xml-XXXXXX");
        if (!mkdtemp(pattern.data()))
            throw ToolError("cannot create a temporary directory");
        m_path = pattern;
        m_previous = open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (m_previous < 0 || chdir(m_path.c_str()) != 0) {
            Leave();
            throw ToolError("cannot enter " + m_path.string());
        }
    }
    ~ScratchDirectory() { Leave(); }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    const std::filesystem::path& Path() const { return m_path; }

private:
    void Leave() {
        if (m_previous >= 0) {
            if (fchdir(m_previous) != 0) {
                // The output path was made absolute beforehand, so nothing is lost but the way
                // back.
            }
            close(m_previous);
        }
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    std::filesystem::path m_path;
    int m_previous = -1;
};

std::string DownloadDescription(IDevice& device, const std::string& serial) {
    ScratchDirectory scratch;
    device.DownloadXml();
    std::ifstream file(scratch.Path() / (serial + ".xml"), std::ios::binary);
    if (!file)
        throw ToolError("the camera has no description to download");
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

} // namespace

void AddXmlCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<XmlOptions>();
    CLI::App* command = app.add_subcommand("xml", "Write the camera's description file");
    command->add_option("camera", options->camera, "Serial number, name, index or IP address")
        ->required();
    command->add_option("file", options->file, "Output file (default: standard output)");
    command->callback([options, &exitCode] {
        const std::string output =
            options->file.empty() ? "" : std::filesystem::absolute(options->file).string();
        CameraScope scope;
        IDevice& device = scope.Open(options->camera);
        const std::string xml =
            DownloadDescription(device, scope.OpenedInfo().SerialNumber().c_str());
        if (output.empty()) {
            std::cout << xml;
        } else {
            std::ofstream out(output, std::ios::binary | std::ios::trunc);
            if (!(out << xml))
                throw ToolError("cannot write '" + options->file + "'");
        }
        exitCode = 0;
    });
}

} // namespace Cli
} // namespace Orvan
