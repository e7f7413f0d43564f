// Reads a PNG back with libpng exactly as stored: no gamma, no expansion, no shift.
#ifndef ORVAN_TESTS_IMAGEFILE_PNGDECODER_H
#define ORVAN_TESTS_IMAGEFILE_PNGDECODER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace ImageFileTest {

struct DecodedPng {
    size_t width = 0;
    size_t height = 0;
    size_t bitDepth = 0;
    size_t channels = 0;
    size_t significantBits = 0; // from sBIT; 0 without one
    std::vector<uint16_t> samples;
};

// Throws std::runtime_error when the file is missing or not a valid PNG.
DecodedPng DecodePng(const std::string& path);

} // namespace ImageFileTest

#endif
