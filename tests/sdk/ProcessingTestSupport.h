// Shared support of the image-processing suites: factory images from vectors, their pixels back
// as vectors, and the exact-message expectation of the factory's checks.
#ifndef ORVAN_TESTS_SDK_PROCESSINGTESTSUPPORT_H
#define ORVAN_TESTS_SDK_PROCESSINGTESTSUPPORT_H

#include "FactorySystem.h"

#include <Orvan/OrvanApi.h>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

inline FactoryImagePtr MakeImage(const std::vector<uint8_t>& pixels, size_t width, size_t height,
                                 uint64_t format) {
    return FactoryImagePtr(
        Orvan::ImageFactory::Create(pixels.data(), pixels.size(), width, height, format));
}

inline std::vector<uint8_t> PixelsOf(Orvan::IImage* image) {
    return std::vector<uint8_t>(image->GetData(), image->GetData() + image->GetSizeFilled());
}

template <class T>
std::vector<uint8_t> AsBytes(const std::vector<T>& samples) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(samples.data());
    return std::vector<uint8_t>(bytes, bytes + samples.size() * sizeof(T));
}

template <class T>
std::vector<T> SamplesOf(Orvan::IImage* image) {
    std::vector<T> samples(image->GetSizeFilled() / sizeof(T));
    std::memcpy(samples.data(), image->GetData(), samples.size() * sizeof(T));
    return samples;
}

// Runs `operation` and expects InvalidArgumentException with exactly `description` from the
// image factory's `function`.
inline void ExpectInvalid(const std::function<void()>& operation, const std::string& description,
                          const char* function) {
    const std::string message =
        "InvalidArgumentException: " + description + " (ImageFactory, " + function + ")";
    try {
        operation();
        ADD_FAILURE() << "no exception, expected: " << message;
    } catch (const GenICam::InvalidArgumentException& e) {
        EXPECT_EQ(std::string(e.what()), message);
    }
}

#endif
