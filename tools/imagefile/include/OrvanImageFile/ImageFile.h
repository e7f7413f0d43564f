// Writing delivered or factory-made images to files: PNG for viewers, PGM for the simplest
// possible reader, raw for the bytes exactly as the camera sent them.
#ifndef ORVAN_IMAGEFILE_IMAGEFILE_H
#define ORVAN_IMAGEFILE_IMAGEFILE_H

#include <Orvan/IImage.h>

#include <optional>
#include <string>

namespace Orvan {
namespace ImageFile {

enum class Format { Png, Pgm, Raw };

// "png", "pgm" or "raw", in any letter case; nothing for any other name.
std::optional<Format> ParseFormat(const std::string& name);

// The usual file name extension with its dot: ".png", ".pgm", ".raw".
const char* Extension(Format format);

// Writes the image. PNG takes Mono8 to Mono16 (packed forms unpacked first), RGB8, BGR8, RGBa8
// and BGRa8; PGM takes the mono formats; raw takes anything and writes the pixel rows with their
// line padding but without chunk data. Samples narrower than their container keep their
// significant bit count: a PNG scales them to 16 bits and records the count (sBIT), a PGM keeps
// the values and sets its maximum to match.
// Throws std::runtime_error with a one-line message naming the path when the file cannot be
// written or the pixel format cannot be stored in that file format.
void Save(const IImage& image, const std::string& path, Format format);

} // namespace ImageFile
} // namespace Orvan

#endif
