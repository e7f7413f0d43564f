#include "Unpacking.h"

#include "UnpackingGroups.h"

namespace Orvan {
namespace Unpacking {

using namespace UnpackingGroups;

void From10p(const uint8_t* source, uint8_t* destination, size_t width, size_t height,
             size_t samplesPerPixel) {
    ConvertGroups<Group10p>(source, destination, width * height * samplesPerPixel);
}

void From10Packed(const uint8_t* source, uint8_t* destination, size_t width, size_t height,
                  size_t samplesPerPixel) {
    ConvertGroups<Group10Packed>(source, destination, width * height * samplesPerPixel);
}

void From12p(const uint8_t* source, uint8_t* destination, size_t width, size_t height,
             size_t samplesPerPixel) {
    ConvertGroups<Group12p>(source, destination, width * height * samplesPerPixel);
}

void From12Packed(const uint8_t* source, uint8_t* destination, size_t width, size_t height,
                  size_t samplesPerPixel) {
    ConvertGroups<Group12Packed>(source, destination, width * height * samplesPerPixel);
}

} // namespace Unpacking
} // namespace Orvan
