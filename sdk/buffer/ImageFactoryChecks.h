// The checks every image-factory operation runs first, each naming the operation in its
// message, and the factory's own failures.
#ifndef ORVAN_BUFFER_IMAGEFACTORYCHECKS_H
#define ORVAN_BUFFER_IMAGEFACTORYCHECKS_H

#include "core/ErrorTranslation.h"

#include <Orvan/ICompressedImage.h>
#include <Orvan/IImage.h>

#include <string>

namespace Orvan {
namespace ImageFactoryChecks {

extern const char* const kNeverInitialized;

template <class E>
[[noreturn]] void Fail(const std::string& description, const char* function) {
    ThrowLibraryError<E>(description, ORVAN_SITE("ImageFactory", function));
}

void CheckInit(const char* op);
void CheckParam(const uint8_t* data, const char* op);
void CheckParam(uint64_t value, const char* op);
void CheckParam(IBuffer* pImage, const char* op);
// A null destination block: "Ddata is null (op)".
void CheckDestination(uint8_t* destination, const char* op);
void CheckLen(size_t length, size_t expected, const char* op);

size_t ExpectedSize(size_t width, size_t height, uint64_t pixelFormat);

// The name of a format, as messages show it.
const char* FormatName(uint64_t pixelFormat);

// The checks of an operation on an existing image: on, not null, and a block at least as long
// as its geometry asks for. Returns that length.
size_t CheckSourceImage(IImage* pImage, const char* op);

} // namespace ImageFactoryChecks
} // namespace Orvan

#endif
