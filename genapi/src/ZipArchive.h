// Unpacks zipped camera descriptions.
#ifndef ORVAN_GENAPI_ZIPARCHIVE_H
#define ORVAN_GENAPI_ZIPARCHIVE_H

#include <cstddef>
#include <string>

namespace GenApi {
namespace detail {

// The text of the one .xml file in the archive; entries under __MACOSX/ (resource forks that
// archivers on one platform add) do not count. Throws RuntimeException otherwise.
std::string ExtractSingleXml(const void* data, size_t size);

} // namespace detail
} // namespace GenApi

#endif
