// The PNG form of a raster, through libpng.
#ifndef ORVAN_IMAGEFILE_PNGWRITER_H
#define ORVAN_IMAGEFILE_PNGWRITER_H

#include "Raster.h"

#include <cstdio>

namespace Orvan {
namespace ImageFile {

// Writes the raster to an open file; throws std::runtime_error with libpng's message.
void WritePng(const Raster& raster, std::FILE* file);

} // namespace ImageFile
} // namespace Orvan

#endif
