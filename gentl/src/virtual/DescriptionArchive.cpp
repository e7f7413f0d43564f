#include "DescriptionArchive.h"

#include <zip.h>

#include <memory>
#include <stdexcept>

namespace Orvan {
namespace Producer {

namespace {

void Fail(const std::string& what) {
    throw std::runtime_error("zip: " + what);
}

struct SourceDeleter {
    void operator()(zip_source_t* source) const { zip_source_free(source); }
};
using SourcePtr = std::unique_ptr<zip_source_t, SourceDeleter>;

// Reads a whole buffer source after its archive was closed into it.
std::vector<uint8_t> ReadSource(zip_source_t* source) {
    zip_stat_t stat;
    zip_stat_init(&stat);
    if (zip_source_open(source) < 0)
        Fail("cannot reopen the archive buffer");
    if (zip_source_stat(source, &stat) < 0 || !(stat.valid & ZIP_STAT_SIZE)) {
        zip_source_close(source);
        Fail("cannot size the archive");
    }
    std::vector<uint8_t> bytes(stat.size);
    const zip_int64_t read = zip_source_read(source, bytes.data(), bytes.size());
    zip_source_close(source);
    if (read < 0 || zip_uint64_t(read) != stat.size)
        Fail("cannot read the archive back");
    return bytes;
}

} // namespace

std::vector<uint8_t> ZipSingleFile(const std::string& fileName, const std::string& content) {
    zip_error_t error;
    zip_error_init(&error);
    SourcePtr buffer(zip_source_buffer_create(nullptr, 0, 0, &error));
    if (!buffer)
        Fail("cannot create a buffer");
    zip_t* archive = zip_open_from_source(buffer.get(), ZIP_TRUNCATE, &error);
    if (!archive)
        Fail("cannot open an archive");
    // The archive takes its own reference; keep ours to read the result after closing.
    zip_source_keep(buffer.get());
    zip_source_t* file = zip_source_buffer(archive, content.data(), content.size(), 0);
    if (!file || zip_file_add(archive, fileName.c_str(), file, ZIP_FL_ENC_UTF_8) < 0) {
        zip_source_free(file);
        zip_discard(archive);
        Fail("cannot add " + fileName);
    }
    if (zip_close(archive) < 0) {
        zip_discard(archive);
        Fail("cannot write the archive");
    }
    return ReadSource(buffer.get());
}

std::string UnzipFirstFile(const std::vector<uint8_t>& archiveBytes) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source =
        zip_source_buffer_create(archiveBytes.data(), archiveBytes.size(), 0, &error);
    if (!source)
        Fail("cannot wrap the archive");
    zip_t* archive = zip_open_from_source(source, ZIP_RDONLY, &error);
    if (!archive) {
        zip_source_free(source);
        Fail("not an archive");
    }
    zip_stat_t stat;
    zip_file_t* file = nullptr;
    if (zip_get_num_entries(archive, 0) < 1 || zip_stat_index(archive, 0, 0, &stat) < 0 ||
        !(file = zip_fopen_index(archive, 0, 0))) {
        zip_discard(archive);
        Fail("no file inside");
    }
    std::string content(stat.size, '\0');
    const zip_int64_t read = zip_fread(file, content.data(), content.size());
    zip_fclose(file);
    zip_discard(archive);
    if (read < 0 || zip_uint64_t(read) != stat.size)
        Fail("cannot inflate");
    return content;
}

} // namespace Producer
} // namespace Orvan
