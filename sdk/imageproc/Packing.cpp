#include "Packing.h"

#include "PackingGroups.h"

namespace Orvan {
namespace Packing {

using namespace PackingGroups;

void To10p(const uint8_t* source, uint8_t* destination, size_t width, size_t height,
           size_t samplesPerPixel) {
    ConvertGroups<Group10p>(source, destination, width * height * samplesPerPixel);
}

void To10Packed(const uint8_t* source, uint8_t* destination, size_t width, size_t height,
                size_t samplesPerPixel) {
    ConvertGroups<Group10Packed>(source, destination, width * height * samplesPerPixel);
}

void To12p(const uint8_t* source, uint8_t* destination, size_t width, size_t height,
           size_t samplesPerPixel) {
    ConvertGroups<Group12p>(source, destination, width * height * samplesPerPixel);
}

void To12Packed(const uint8_t* source, uint8_t* destination, size_t width, size_t height,
                size_t samplesPerPixel) {
    ConvertGroups<Group12Packed>(source, destination, width * height * samplesPerPixel);
}

} // namespace Packing
} // namespace Orvan
