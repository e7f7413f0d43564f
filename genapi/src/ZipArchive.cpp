#include "ZipArchive.h"

#include <Base/GCException.h>

#include <zip.h>

#include <cstring>
#include <memory>

namespace GenApi {
namespace detail {

namespace {

// Uncompressed descriptions larger than this are refused; real ones are a few megabytes.
constexpr zip_uint64_t kMaxUncompressedSize = 256u * 1024u * 1024u;

struct ArchiveCloser {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
struct FileCloser {
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};

bool EndsWith(const std::string& text, const char* suffix) {
    size_t length = std::strlen(suffix);
    return text.size() >= length && text.compare(text.size() - length, length, suffix) == 0;
}

zip_int64_t FindDescription(zip_t* archive) {
    zip_int64_t found = -1;
    zip_int64_t count = zip_get_num_entries(archive, 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        const char* rawName = zip_get_name(archive, static_cast<zip_uint64_t>(i), 0);
        if (!rawName)
            continue;
        std::string name(rawName);
        if (name.compare(0, 9, "__MACOSX/") == 0 || !EndsWith(name, ".xml"))
            continue;
        if (found >= 0)
            throw RUNTIME_EXCEPTION("The zipped description holds more than one .xml file");
        found = i;
    }
    if (found < 0)
        throw RUNTIME_EXCEPTION("The zipped description holds no .xml file");
    return found;
}

} // namespace

std::string ExtractSingleXml(const void* data, size_t size) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source = zip_source_buffer_create(data, size, 0, &error);
    if (!source) {
        zip_error_fini(&error);
        throw RUNTIME_EXCEPTION("Cannot read the zipped description");
    }
    std::unique_ptr<zip_t, ArchiveCloser> archive(
        zip_open_from_source(source, ZIP_RDONLY | ZIP_CHECKCONS, &error));
    if (!archive) {
        zip_source_free(source);
        std::string reason = zip_error_strerror(&error);
        zip_error_fini(&error);
        throw RUNTIME_EXCEPTION("The zipped description is not a valid zip archive: %s",
                                reason.c_str());
    }
    zip_error_fini(&error);

    zip_int64_t index = FindDescription(archive.get());
    zip_stat_t stat;
    zip_stat_init(&stat);
    if (zip_stat_index(archive.get(), static_cast<zip_uint64_t>(index), 0, &stat) != 0 ||
        !(stat.valid & ZIP_STAT_SIZE) || stat.size > kMaxUncompressedSize)
        throw RUNTIME_EXCEPTION("The description in the zip archive has no usable size");
    std::unique_ptr<zip_file_t, FileCloser> file(
        zip_fopen_index(archive.get(), static_cast<zip_uint64_t>(index), 0));
    if (!file)
        throw RUNTIME_EXCEPTION("Cannot open the description in the zip archive: %s",
                                zip_strerror(archive.get()));
    std::string text(static_cast<size_t>(stat.size), '\0');
    zip_int64_t read = zip_fread(file.get(), text.data(), stat.size);
    if (read < 0 || static_cast<zip_uint64_t>(read) != stat.size)
        throw RUNTIME_EXCEPTION("Cannot unpack the description in the zip archive: %s",
                                zip_file_strerror(file.get()));
    return text;
}

} // namespace detail
} // namespace GenApi
