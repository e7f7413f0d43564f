// The pixel-format catalogue's name table and geometry table.
#ifndef ORVAN_BUFFER_PFNCCUSTOM_H
#define ORVAN_BUFFER_PFNCCUSTOM_H

#include <Orvan/PixelFormat.h>

namespace Orvan {

// The format's name; "InvalidPixelFormat" for 0, "UnknownPixelFormat" for an unlisted code.
// Internal: the library's messages name formats through it.
const char* GetPixelFormatName(PfncFormat pixelFormat);

} // namespace Orvan

#endif
