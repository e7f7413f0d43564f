// Decodes a PNG and prints its geometry, so that a test of a program that writes one can check
// the file is whole.
#include "PngDecoder.h"

#include <iostream>
#include <stdexcept>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: png-check <file.png>\n";
        return 2;
    }
    try {
        const ImageFileTest::DecodedPng png = ImageFileTest::DecodePng(argv[1]);
        std::cout << "PNG " << png.width << "x" << png.height << ", " << png.bitDepth << "-bit, "
                  << png.channels << " channel(s)\n";
        return 0;
    } catch (const std::runtime_error& e) {
        std::cerr << "png-check: " << e.what() << '\n';
        return 1;
    }
}
