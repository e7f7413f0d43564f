// Zipped camera descriptions: GenTL consumers accept a description URL whose file ends in .zip
// and unpack the one XML file inside.
#ifndef ORVAN_GENTL_VIRTUAL_DESCRIPTIONARCHIVE_H
#define ORVAN_GENTL_VIRTUAL_DESCRIPTIONARCHIVE_H

#include <cstdint>
#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

// A zip archive, in memory, holding one deflated file. Throws std::runtime_error on failure.
std::vector<uint8_t> ZipSingleFile(const std::string& fileName, const std::string& content);

// The content of the first file of a zip archive; throws std::runtime_error when it has none.
std::string UnzipFirstFile(const std::vector<uint8_t>& archive);

} // namespace Producer
} // namespace Orvan

#endif
