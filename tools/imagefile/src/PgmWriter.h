// The binary PGM (P5) form of a grey raster.
#ifndef ORVAN_IMAGEFILE_PGMWRITER_H
#define ORVAN_IMAGEFILE_PGMWRITER_H

#include "Raster.h"

#include <cstdio>

namespace Orvan {
namespace ImageFile {

// Writes the raster to an open file. Its maximum grey value is the largest value the
// significant bits can hold. Throws std::runtime_error for a raster with colour.
void WritePgm(const Raster& raster, std::FILE* file);

} // namespace ImageFile
} // namespace Orvan

#endif
