// Test support for code that returns factory images: a fixture that keeps the system (and with
// it the image factory) open for a whole suite, and an owner that releases through the factory.
#ifndef ORVAN_TESTS_SDK_FACTORYSYSTEM_H
#define ORVAN_TESTS_SDK_FACTORYSYSTEM_H

#include <Orvan/OrvanApi.h>

#include <gtest/gtest.h>

#include <memory>

struct FactoryImageDeleter {
    void operator()(Orvan::IImage* image) const { Orvan::ImageFactory::Destroy(image); }
};
using FactoryImagePtr = std::unique_ptr<Orvan::IImage, FactoryImageDeleter>;

class WithOpenSystem : public ::testing::Test {
protected:
    static void SetUpTestSuite() { s_system = Orvan::OpenSystem(); }
    static void TearDownTestSuite() { Orvan::CloseSystem(s_system); }

private:
    static inline Orvan::ISystem* s_system = nullptr;
};

#endif
