#include "PgmWriter.h"

#include <stdexcept>
#include <vector>

namespace Orvan {
namespace ImageFile {

void WritePgm(const Raster& raster, std::FILE* file) {
    if (raster.channels != 1)
        throw std::runtime_error("PGM holds only grey images");
    std::fprintf(file, "P5\n%zu %zu\n%lu\n", raster.width, raster.height,
                 (1ul << raster.significantBits) - 1);
    const size_t rowBytes = raster.width * raster.bitDepth / 8;
    std::vector<uint8_t> row(rowBytes);
    for (size_t y = 0; y < raster.height; ++y) {
        const uint8_t* source = raster.Row(y);
        // PGM's 16-bit samples are big-endian.
        if (raster.bitDepth == 16)
            for (size_t i = 0; i < rowBytes; i += 2) {
                row[i] = source[i + 1];
                row[i + 1] = source[i];
            }
        else
            row.assign(source, source + rowBytes);
        std::fwrite(row.data(), 1, rowBytes, file);
    }
}

} // namespace ImageFile
} // namespace Orvan
